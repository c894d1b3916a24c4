#!/usr/bin/env python3
"""Compares what the shared library exports with exports.txt, and what it needs with what a system has.

usage: check_exports.py [--update] [--nm NM] [--objdump OBJDUMP] [--cxxfilt CXXFILT] LIBRARY

LIBRARY is the .so or the .dll; one list serves both, so names are brought to one form:
  - demangled; the C functions are themselves
  - 64-bit integers are `long` or `unsigned long`, whichever way a target spells them
  - std::__cxx11:: is std::, default template arguments and ABI tags are left out, std::wstring and
    std::string are called so
  - vtables, type information and thunks are left out: they belong to a class that is in the list, and
    the two targets number and place them differently
--update writes the list anew from LIBRARY; look at the difference before it is committed.
"""
import argparse
import os
import re
import subprocess
import sys

LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)), "exports.txt")

# What each system has itself, or the library is meant to load. libpthread and the like are part of
# libc since glibc 2.34; the dynamic loader appears where thread-local variables are used.
ALLOWED_NEEDS = {
    "dll": {"kernel32", "msvcrt", "user32", "advapi32", "shell32", "odbc32"},
    "so": {"libstdc++", "libm", "libgcc_s", "libc", "libz", "libsqlite3", "libodbc",
           "ld-linux-x86-64"},
}

COMPILER_MADE = re.compile(
    r"^(?:vtable for|typeinfo for|typeinfo name for|VTT for|construction vtable for|guard variable for"
    r"|non-virtual thunk to|virtual thunk to|covariant return thunk to) ")


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True,
                          env={**os.environ, "LC_ALL": "C"}).stdout


def without_argument(name, template):
    """The name without every template argument `, template<...>`, brackets counted."""
    start = f", {template}<"
    position = name.find(start)
    while position >= 0:
        end = position + len(start)
        depth = 1
        while depth and end < len(name):
            depth += {"<": 1, ">": -1}.get(name[end], 0)
            end += 1
        name = name[:position] + name[end:]
        position = name.find(start)
    return name


def normalised(name):
    """One spelling for both targets; None for what the list leaves out."""
    if COMPILER_MADE.match(name):
        return None
    name = name.replace("std::__cxx11::", "std::").replace("[abi:cxx11]", "").replace("long long", "long")
    for template in ("std::char_traits", "std::allocator"):
        name = without_argument(name, template)
    name = re.sub(r"\s+>", ">", name)
    return name.replace("std::basic_string<wchar_t>", "std::wstring").replace(
        "std::basic_string<char>", "std::string")


def dll_names(objdump_text):
    """The names in the table [Ordinal/Name Pointer] of `objdump -p`."""
    names, inside = [], False
    for line in objdump_text.splitlines():
        if line.startswith("[Ordinal/Name Pointer] Table"):
            inside = True
        elif inside:
            entry = re.match(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\S+)$", line)
            if not entry:
                break
            names.append(entry.group(1))
    return names


def so_names(nm_text):
    """The names of `nm -D --defined-only`: the last word of each line, without a version."""
    return [line.split()[-1].split("@")[0] for line in nm_text.splitlines() if line.strip()]


def exported(options, kind, headers):
    if kind == "dll":
        raw = dll_names(headers)
    else:
        raw = so_names(run(options.nm, "-D", "--defined-only", options.shared_library))
    demangled = run(options.cxxfilt, text="\n".join(raw)).splitlines() if raw else []
    return {name for name in map(normalised, demangled) if name}


def needed(kind, headers):
    pattern = r"^\s*DLL Name: (\S+)" if kind == "dll" else r"^\s*NEEDED\s+(\S+)"
    return re.findall(pattern, headers, re.MULTILINE)


def needs_violations(kind, names):
    for name in names:
        stem = name.lower().removesuffix(".dll") if kind == "dll" else name.split(".so")[0]
        if stem not in ALLOWED_NEEDS[kind]:
            yield f"needs {name}, which is not on the list of what the library may load"


def read_list():
    if not os.path.exists(LIST):
        return set()
    with open(LIST, encoding="utf-8") as file:
        return {line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")}


def write_list(names):
    with open(LIST, "w", encoding="utf-8", newline="\n") as file:
        file.write("# What the shared library exports, on both targets. Kept by check_exports.py, which\n"
                   "# says how names are written here; --update makes the list anew.\n")
        file.writelines(name + "\n" for name in sorted(names))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("shared_library", metavar="library")
    parser.add_argument("--update", action="store_true", help="write exports.txt from this library")
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--objdump", default="objdump", help="one that knows the library's format")
    parser.add_argument("--cxxfilt", default="c++filt")
    options = parser.parse_args()

    kind = "dll" if options.shared_library.lower().endswith(".dll") else "so"
    headers = run(options.objdump, "-p", options.shared_library)
    names = exported(options, kind, headers)
    if options.update:
        write_list(names)
        print(f"{LIST}: {len(names)} names")
        return 0

    wanted = read_list()
    complaints = [f"exported, but not in exports.txt: {name}" for name in sorted(names - wanted)]
    complaints += [f"in exports.txt, but not exported: {name}" for name in sorted(wanted - names)]
    if not names:
        complaints.append("nothing is exported")
    needs = needed(kind, headers)
    if not needs:
        complaints.append("no needed libraries were found: the output of objdump was not understood")
    complaints += needs_violations(kind, needs)
    for complaint in complaints:
        print(f"{os.path.basename(options.shared_library)}: {complaint}")
    if complaints:
        print("If the change is meant: check_exports.py --update LIBRARY, and a line in the changelog.")
    print(f"{len(names)} names, needs {' '.join(sorted(needs))}: {len(complaints)} complaints")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
