#!/usr/bin/env python3
"""The layering test: which folder may include which, read off the #include lines of all sources.

usage: check_layers.py SOURCE_DIR     checks the tree; a line per violation, exit code 1 if there is any
       check_layers.py --self-test    checks this script on a small tree of its own

Three rules:
  arrow     an include must follow an arrow of ARROWS; a folder may always include itself
  system    a header of one operating system belongs in platform/, suite/ and tests/support/
  switch    a test for an operating system (_WIN32, __linux__ ...) belongs there too; where the two
            systems differ, platform/ declares a service and posix/ and windows/ define it
"""
import os
import re
import sys
import tempfile
from typing import NamedTuple

# Layers by folder; the first entry that holds a file decides.
LAYERS = [
    ("platform/posix", "platform/posix"),
    ("platform/windows", "platform/windows"),
    ("platform", "platform"),
    ("suite", "suite"),
    ("table_rw/text", "text"),
    ("table_rw/core", "core"),
    ("table_rw/readers", "readers"),
    ("table_rw/writers", "writers"),
    ("table_rw/capi", "capi"),
    ("database", "database"),
    ("converter/container", "converter/container"),
    ("converter/syntax", "converter/syntax"),
    ("converter/workbook", "converter/workbook"),
    ("converter/text", "converter/text"),
    ("converter", "converter"),
    ("tools", "tools"),
    ("examples", "examples"),
    ("tests", "tests"),
    ("fuzz", "tests"),
    ("bench", "tests"),
]

# What a host may include, and so the tool and the examples.
PUBLIC_HEADERS = {
    "database/odbc_database.h",
    "database/odbc_result.h",
    "database/well_queries.h",
    "platform/vok_basic.h",
    "platform/vok_export.h",
    "table_rw/capi/vo_table_reader.h",
    "table_rw/capi/vo_table_reader_utf.h",
    "table_rw/capi/vo_table_writer.h",
    "table_rw/capi/vo_text_list.h",
    "table_rw/core/tableReader.h",
    "table_rw/core/tableReaderOptions.h",
    "table_rw/text/textEncoding.h",
    "table_rw/writers/tableWriter.h",
}
PUBLIC = "public headers"

# From each layer, the layers that it may include beside itself.
ARROWS = {
    "platform": set(),
    "platform/posix": {"platform"},
    "platform/windows": {"platform"},
    "suite": {"platform"},
    "text": {"platform"},
    "core": {"text", "platform"},
    "readers": {"database", "core", "text", "platform"},
    "writers": {"core", "text", "platform"},
    "database": {"core", "text", "platform"},
    "capi": {"readers", "writers", "database", "core", "text", "platform"},
    "converter/container": {"platform"},
    "converter/syntax": {"converter/container", "platform"},
    "converter/workbook": {"converter/syntax", "converter/container", "platform"},
    "converter/text": {"converter/workbook", "platform"},
    "converter": {"converter/text", "converter/workbook", "platform"},
    "tools": {PUBLIC, "platform"},
    "examples": {PUBLIC},
    "tests": None,  # everything
}

SYSTEM_FOLDERS = ("platform/", "suite/", "tests/support/")
SYSTEM_HEADERS = re.compile(
    r"""(?: sys/.* | linux/.* | net/.* | netinet/.* | arpa/.*
        | (?: windows | windef | winbase | winnls | winsock2? | ws2tcpip | shlobj | shellapi | psapi
            | tlhelp32 | io | direct | process | conio | share
            | unistd | fcntl | dlfcn | dirent | pwd | grp | pthread | poll | spawn | termios | glob
            | fnmatch | ftw | langinfo | iconv | libgen | syscall | utime )\.h )""",
    re.VERBOSE | re.IGNORECASE)
SYSTEM_SWITCHES = re.compile(
    r"\b(?:_WIN32|_WIN64|WIN32|__MINGW\w*|_MSC_VER|__CYGWIN__|__linux(?:__)?|linux|__unix(?:__)?|unix"
    r"|__APPLE__|__MACH__|__FreeBSD__|_POSIX_VERSION)\b")

DIRECTIVE = re.compile(r"^\s*#\s*(include|if|ifdef|ifndef|elif|elifdef|elifndef)\b\s*(.*)$")
INCLUDE = re.compile(r'^(?:"([^"]+)"|<([^>]+)>)')
SOURCE_ENDINGS = (".h", ".hpp", ".c", ".cpp", ".inc")


class Violation(NamedTuple):
    path: str
    line: int
    rule: str
    text: str

    def __str__(self):
        return f"{self.path}:{self.line}: [{self.rule}] {self.text}"


def layer_of(path):
    for folder, layer in LAYERS:
        if path.startswith(folder + "/"):
            return layer
    return None


def without_comments(text):
    """The text with comments blanked out and spliced lines joined, line numbers kept."""
    def blank(match):
        piece = match.group(0)
        return piece if piece[0] in "\"'" else " " + "\n" * piece.count("\n")

    text = re.sub(r'//(?:\\\n|[^\n])*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', blank, text,
                  flags=re.DOTALL)
    joined = re.compile(r"((?:[^\n]*\\\n)+)([^\n]*)")
    return joined.sub(
        lambda m: m.group(1).replace("\\\n", " ") + m.group(2) + "\n" * m.group(1).count("\n"), text)


def resolve(root, path, name):
    """The project's file that an include names, as a path from the root; None when there is none."""
    for base in (os.path.dirname(path), ""):
        candidate = os.path.normpath(os.path.join(base, name)).replace(os.sep, "/")
        if not candidate.startswith("..") and os.path.isfile(os.path.join(root, candidate)):
            return candidate
    return None


def arrow_violation(source, target):
    """The reason why one project file must not include another; None when it may."""
    source_layer, target_layer = layer_of(source), layer_of(target)
    if source_layer is None:
        return None
    allowed = ARROWS[source_layer]
    if allowed is None or source_layer == target_layer or target_layer in allowed:
        return None
    if PUBLIC in allowed and target in PUBLIC_HEADERS:
        return None
    may = ", ".join(sorted(allowed)) if allowed else "itself alone"
    return f'includes "{target}" ({target_layer or "no layer"}); {source_layer} may include {may}'


def check_file(root, path):
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        lines = without_comments(file.read()).split("\n")
    system_allowed = path.startswith(SYSTEM_FOLDERS)
    for number, line in enumerate(lines, 1):
        directive = DIRECTIVE.match(line)
        if not directive:
            continue
        if directive.group(1) != "include":
            switch = SYSTEM_SWITCHES.search(directive.group(2))
            if switch and not system_allowed:
                yield Violation(path, number, "switch",
                                f"tests for {switch.group(0)}; only platform/, suite/ and tests/support/ "
                                "may, so declare a service in platform/ instead")
            continue
        include = INCLUDE.match(directive.group(2))
        if not include:
            yield Violation(path, number, "arrow", f"include of a macro: {line.strip()}")
            continue
        name = include.group(1) or include.group(2)
        target = resolve(root, path, name)
        if target:
            reason = arrow_violation(path, target)
            if reason:
                yield Violation(path, number, "arrow", reason)
        elif include.group(1):
            yield Violation(path, number, "arrow",
                            f'includes "{name}", which is no file of this project; use <{name}>')
        elif SYSTEM_HEADERS.fullmatch(name) and not system_allowed:
            yield Violation(path, number, "system",
                            f"includes <{name}>; only platform/, suite/ and tests/support/ may, so declare "
                            "a service in platform/ instead")


def sources(root):
    for top in sorted({folder.split("/")[0] for folder, _ in LAYERS}):
        for folder, subfolders, names in os.walk(os.path.join(root, top)):
            subfolders.sort()
            for name in sorted(names):
                if name.endswith(SOURCE_ENDINGS):
                    yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def check_tree(root):
    """All violations, and the number of files looked at."""
    paths = list(sources(root))
    return [violation for path in paths for violation in check_file(root, path)], len(paths)


# --- self-test ------------------------------------------------------------------------------------

# Path, content, and the line:rule of each violation that must be found in it.
SELF_TEST_TREE = [
    ("platform/files.h", "#include <cstdint>\n", []),
    ("platform/vok_basic.h", '#ifdef _WIN32\n#endif\n#include "platform/files.h"\n', []),
    ("platform/posix/files.cpp", '#include "platform/files.h"\n#include <unistd.h>\n', []),
    ("platform/posix/far.cpp", '#include "table_rw/text/utf8.h"\n', ["1:arrow"]),
    ("platform/windows/near.cpp", '#include "platform/posix/inner.h"\n', ["1:arrow"]),
    ("platform/posix/inner.h", "", []),
    ("platform/up.h", '#include "platform/posix/inner.h"\n', ["1:arrow"]),
    ("suite/basic/a.cpp", '#include "suite/io/b.h"\n#include "platform/files.h"\n', []),
    ("suite/io/b.h", '#include "table_rw/core/tableReader.h"\n', ["1:arrow"]),
    ("table_rw/text/utf8.h", '#include "platform/files.h"\n#include "splitText.h"\n', []),
    ("table_rw/text/splitText.h", '#include "table_rw/core/tableReader.h"\n', ["1:arrow"]),
    ("table_rw/core/tableReader.h", '#include "../text/utf8.h"\n#include "../readers/r.h"\n', ["2:arrow"]),
    ("table_rw/core/angle.h", "#include <table_rw/capi/vo_table_reader.h>\n", ["1:arrow"]),
    ("table_rw/core/suite.h", '\n#include "suite/io/b.h"\n', ["2:arrow"]),
    ("table_rw/readers/r.h", '#include "table_rw/core/tableReader.h"\n', []),
    ("table_rw/readers/w.cpp", '#include "table_rw/writers/tableWriter.h"\n', ["1:arrow"]),
    ("table_rw/writers/tableWriter.h", "#include <string>\n", []),
    ("table_rw/writers/xlsx/part.cpp", '#include "table_rw/writers/tableWriter.h"\n', []),
    ("table_rw/capi/vo_table_reader.h", '#include "table_rw/readers/r.h"\n', []),
    ("table_rw/core/lost.cpp", '#include "table_rw/core/gone.h"\n', ["1:arrow"]),
    ("table_rw/core/macro.cpp", "#include SOMETHING\n", ["1:arrow"]),
    ("table_rw/core/comment.cpp", '/*\n#include "tools/t.h"\n*/\n// #include <unistd.h>\n'
                                  'const char* s = "/*";\n#include "tools/t.h"\n', ["6:arrow"]),
    ("table_rw/core/system.cpp", "#include <windows.h>\n#include <sys/stat.h>\n#include <Windows.h>\n"
                                 "#include <string.h>\n", ["1:system", "2:system", "3:system"]),
    ("table_rw/core/switch.cpp", "#if defined(A) && \\\n    defined(_WIN32)\n#elif __linux__\n#endif\n"
                                 "#ifdef NOT_WIN32_AT_ALL\n#endif\nint linux;\n", ["1:switch", "3:switch"]),
    ("tools/t.h", '#include "table_rw/core/tableReader.h"\n#include "platform/files.h"\n'
                  '#include "table_rw/readers/r.h"\n#include "t2.h"\n#include <CLI/CLI.hpp>\n', ["3:arrow"]),
    ("tools/t2.h", '#include "platform/posix/inner.h"\n', ["1:arrow"]),
    ("examples/e.cpp", '#include "table_rw/core/tableReader.h"\n#include "platform/files.h"\n', ["2:arrow"]),
    ("converter/container/z.h", '#include "converter/syntax/x.h"\n', ["1:arrow"]),
    ("converter/syntax/x.h", '#include "converter/container/z.h"\n#include "platform/files.h"\n', []),
    ("converter/text/t.cpp", '#include "converter/syntax/x.h"\n', ["1:arrow"]),
    ("converter/c.cpp", '#include "platform/files.h"\n#include "table_rw/text/utf8.h"\n', ["2:arrow"]),
    ("tests/a_test.cpp", '#include "table_rw/readers/r.h"\n#include "tools/t.h"\n#include <unistd.h>\n',
     ["3:system"]),
    ("tests/support/posix/s.cpp", '#include <unistd.h>\n#ifdef __linux__\n#endif\n', []),
    ("fuzz/f.cpp", '#include "table_rw/readers/r.h"\n', []),
]


def self_test():
    failures = []
    with tempfile.TemporaryDirectory() as root:
        for path, content, _ in SELF_TEST_TREE:
            full = os.path.join(root, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write(content)
        found, count = check_tree(root)
    if count != len(SELF_TEST_TREE):
        failures.append(f"{count} files were looked at, expected {len(SELF_TEST_TREE)}")
    for path, _, expected in SELF_TEST_TREE:
        answer = [f"{v.line}:{v.rule}" for v in found if v.path == path]
        if answer != expected:
            failures.append(f"{path}: found {answer}, expected {expected}")
    for line in failures:
        print(line)
    print(f"self-test: {len(SELF_TEST_TREE)} files, {len(failures)} failures")
    return 1 if failures else 0


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_layers.py SOURCE_DIR | --self-test")
    if sys.argv[1] == "--self-test":
        return self_test()
    violations, count = check_tree(sys.argv[1])
    for violation in violations:
        print(violation)
    print(f"{count} files, {len(violations)} violations")
    if count == 0:
        print(f"no sources found in {sys.argv[1]}")
        return 1
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main())
