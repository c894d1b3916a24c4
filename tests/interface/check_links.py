#!/usr/bin/env python3
"""What the pages (README.md, docs/ and the other .md files) point at is there.

usage: check_links.py SOURCE_DIR TOOL   checks the tree with the tool that was built from it; a line per
                                        difference, exit code 1 if there is any
       check_links.py --self-test       checks this script on small pages of its own

Rules:
  link     a relative link leads to a file or folder, its #part to a heading of that page
  path     a path in backticks that begins with a folder of the project is there (`*` and `<name>` stand for any text)
  command  a line that calls vok_table or ./run names a command of the tool, and options that this command has
  script   ./test, bench/run and scripts/install_packages.sh are called with words that they know
"""
import glob
import os
import re
import subprocess
import sys
import tempfile

SKIPPED = ("build", ".git", "tests")
FENCE = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
QUOTED = re.compile(r"`([^`]+)`")
HEADING = re.compile(r"^#+ +(.*)$", re.MULTILINE)
CALL = re.compile(r"^(?:\$ )?(?:source <\()?(?:vok_table|\./run)(?: +(.*))?$")
SCRIPT = re.compile(r"^(?:\$ )?(\./test|bench/run|scripts/install_packages\.sh)(?: +(.*))?$")
OPTION = re.compile(r"(?<![\w-])--?[A-Za-z][\w-]*")


def pages_of(root):
    for folder, subfolders, names in os.walk(root):
        if folder == root:
            subfolders[:] = [name for name in subfolders if name not in SKIPPED]
        subfolders.sort()
        for name in sorted(names):
            if name.endswith(".md"):
                yield os.path.relpath(os.path.join(folder, name), root).replace(os.sep, "/")


def text_of(root, page):
    with open(os.path.join(root, page), encoding="utf-8") as file:
        return file.read()


def anchors_of(text):
    """Names of the headings as those who show the pages make them: a second one of a name gets -1."""
    seen = {}
    for heading in HEADING.findall(FENCE.sub("", text)):
        name = re.sub(r"[^\w\- ]", "", heading.replace("`", "").strip().lower()).replace(" ", "-")
        count = seen.get(name, 0)
        seen[name] = count + 1
        yield f"{name}-{count}" if count else name


def lines_of_code(text):
    """Lines of blocks, and pieces in backticks, which may run over a line's end."""
    for block in FENCE.findall(text):
        lines = block.split("\n")
        language = lines[0].strip("` ")
        if not language:  # a block without a language is typed into a shell
            yield from lines[1:-1]
    for piece in QUOTED.findall(FENCE.sub("", text)):
        yield " ".join(piece.split())


def check_links(root, page, text):
    for target in LINK.findall(FENCE.sub("", text)):
        if re.match(r"[a-z]+:", target):
            continue
        path, _, anchor = target.partition("#")
        linked = os.path.normpath(os.path.join(os.path.dirname(page), path)) if path else page
        if not os.path.exists(os.path.join(root, linked)):
            yield f"{page}: [link] {target}: there is no {linked}"
        elif anchor and anchor not in anchors_of(text_of(root, linked)):
            yield f"{page}: [link] {target}: no heading of {linked} has this name"


def check_paths(root, page, text):
    folders = [name for name in os.listdir(root) if os.path.isdir(os.path.join(root, name)) and name != "build"]
    for piece in QUOTED.findall(FENCE.sub("", text)):
        if not re.fullmatch(r"[\w.*<>{}-]+(?:/[\w.*<>{}-]*)+", piece) or piece.split("/")[0] not in folders:
            continue
        pattern = re.sub(r"<[^>]*>", "*", piece)
        # The name of a pair of files may stand without its ending.
        if not glob.glob(os.path.join(root, pattern)) and not glob.glob(os.path.join(root, pattern) + ".*"):
            yield f"{page}: [path] there is no {piece}"


def check_command(page, words, help_of):
    """words: what stands behind the tool's name."""
    words = re.split(r"\s#\s|\s[|>)]|\)", words)[0].split()
    if not words or words[0].startswith("-") or not re.fullmatch(r"[a-z]+", words[0]):
        return  # the tool itself, or COMMAND in a usage
    help_text = help_of(words[0])
    if help_text is None:
        yield f"{page}: [command] there is no command {words[0]}"
        return
    for option in OPTION.findall(re.sub(r"\"[^\"]*\"", "", " ".join(words[1:]))):
        if not re.search(rf"(?<![\w-]){re.escape(option)}(?![\w-])", help_text):
            yield f"{page}: [command] {words[0]} has no option {option}"


def check_script(root, page, script, words):
    words = re.split(r"\s#\s|\s{3,}", words)[0].split()
    known = text_of(root, script.removeprefix("./"))
    for word in words:
        if re.fullmatch(r"(--)?[a-z-]+", word) and not re.search(rf"(?<![\w-]){re.escape(word)}(?![\w-])", known):
            yield f"{page}: [script] {script} does not know {word}"


def check_tree(root, help_of):
    """The differences, and the number of pages looked at."""
    problems = []
    pages = list(pages_of(root))
    for page in pages:
        text = text_of(root, page)
        problems += check_links(root, page, text)
        problems += check_paths(root, page, text)
        for line in lines_of_code(text):
            call, script = CALL.match(line), SCRIPT.match(line)
            if call:
                problems += check_command(page, call.group(1) or "", help_of)
            if script:
                problems += check_script(root, page, script.group(1), script.group(2) or "")
    return problems, len(pages)


def help_of_tool(tool):
    texts = {}

    def help_of(command):
        if command == "help":
            return ""
        if command not in texts:
            run = subprocess.run([tool, command, "--help"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                 check=False)
            # For a word that is no command the answer is the help of the tool itself.
            known = run.returncode == 0 and f"Usage: vok_table {command} ".encode() in run.stdout
            texts[command] = run.stdout.decode("utf-8") if known else None
        return texts[command]

    return help_of


# --- self-test ------------------------------------------------------------------------------------

FILES = {"docs/a.md": "# One\n\n## Two `x`: y\n\n## One\n", "test": "native)\n", "src/a_b.cpp": "", "src/a_b.h": ""}
# A page, and the rules that must be found broken in it.
SELF_TEST = [
    ("[a](docs/a.md) [b](docs/) [c](https://example.org) [d](docs/a.md#two-x-y) [e](docs/a.md#one-1)", []),
    ("# Here\n[a](#here)", []),
    ("[a](docs/b.md)", ["link"]),
    ("[a](docs/a.md#three)", ["link"]),
    ("[a](#there)", ["link"]),
    ("`src/a_b` `src/a_b.h` `src/<x>.cpp` `src/*.h` `src/` `other/b.h` `a/b`", []),
    ("`src/b.h` `src/*.c`", ["path", "path"]),
    ("`vok_table cat FILE --table T` `vok_table` `vok_table COMMAND --help`", []),
    ("`vok_table dog`", ["command"]),
    ("```\n$ ./run cat a.csv --tabel T   # --this is none\nvok_table cat --table \"--x\"\n```", ["command"]),
    ("`./run cat -n 5`", ["command"]),
    ("```python\nvok_table dog\n```", []),
    ("`./test native`", []),
    ("`./test asan`", ["script"]),
]


def self_test():
    failures = 0
    for page, expected in SELF_TEST:
        with tempfile.TemporaryDirectory() as root:
            for path, content in {**FILES, "README.md": page}.items():
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as file:
                    file.write(content)
            problems, _ = check_tree(root, {"cat": "--table T", "help": ""}.get)
        answer = [re.search(r"\[(\w+)\]", problem).group(1) for problem in problems]
        if answer != expected:
            failures += 1
            print(f"{page!r}: found {problems}, expected {expected}")
    print(f"self-test: {len(SELF_TEST)} pages, {failures} failures")
    return 1 if failures else 0


def main():
    if sys.argv[1:] == ["--self-test"]:
        return self_test()
    if len(sys.argv) != 3:
        sys.exit("usage: check_links.py SOURCE_DIR TOOL | --self-test")
    problems, count = check_tree(sys.argv[1], help_of_tool(sys.argv[2]))
    for problem in problems:
        print(problem)
    print(f"{count} pages, {len(problems)} differences")
    return 1 if problems or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
