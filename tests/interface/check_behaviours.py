#!/usr/bin/env python3
"""docs/behaviours.md and the sources say the same of the odd behaviours that are kept.

usage: check_behaviours.py SOURCE_DIR     checks the tree; a line per difference, exit code 1 if there is any
       check_behaviours.py --self-test    checks this script on small trees of its own

Three rules:
  mark   a source with N marks `ODD:` is named by N rows, in their column "marked in"
  file   what that column names is one source of the folders that are looked at, by the end of its path
  test   what the last column names is a test: `suite.name` of a TEST, or a file in tests/
"""
import collections
import os
import re
import sys
import tempfile

PAGE = "docs/behaviours.md"
FOLDERS = ("platform", "suite", "table_rw", "database", "converter")
HEADING = ["behaviour", "who relies on it", "marked in", "test"]
SOURCE_ENDINGS = (".h", ".c", ".cpp", ".inc", ".py")
MARK = re.compile(r"(?://|/\*|\*|#).*?\bODD:")
TEST = re.compile(r"\bTEST(?:_F|_P)?\s*\(\s*(\w+)\s*,\s*(\w+)\s*\)")
QUOTED = re.compile(r"`([^`]+)`")


def files_below(root, folders):
    for top in folders:
        for folder, subfolders, names in os.walk(os.path.join(root, top)):
            subfolders.sort()
            for name in sorted(names):
                if name.endswith(SOURCE_ENDINGS):
                    yield os.path.join(folder, name)


def text_of(path):
    with open(path, encoding="utf-8", errors="replace") as file:
        return file.read()


def rows_of(page):
    """Number of the line, files and tests of every row of the tables under HEADING."""
    inside = False
    for number, line in enumerate(page.split("\n"), 1):
        if not line.startswith("|"):
            inside = False
            continue
        cells = [cell.strip() for cell in line.strip("|").split(" | ")]
        if cells == HEADING:
            inside = True
        elif inside and not line.startswith("|---"):
            # WHY from the end: the text of a behaviour may hold the sign too.
            yield number, QUOTED.findall(cells[-2]), QUOTED.findall(cells[-1])


def check_tree(root):
    """The differences, and the number of rows looked at."""
    problems = []
    marks = {}
    sources = []
    for path in files_below(root, FOLDERS):
        name = os.path.relpath(path, root).replace(os.sep, "/")
        sources.append(name)
        count = sum(1 for line in text_of(path).split("\n") if MARK.search(line))
        if count:
            marks[name] = count
    tests = set()
    for path in files_below(root, ("tests",)):
        tests.add(os.path.basename(path))
        tests.update(".".join(found) for found in TEST.findall(text_of(path)))

    rows = list(rows_of(text_of(os.path.join(root, PAGE))))
    named = collections.Counter()
    for number, files, row_tests in rows:
        for file in files:
            found = [name for name in sources if name.endswith("/" + file)]
            if len(found) == 1:
                named[found[0]] += 1
            else:
                problems.append(f"{PAGE}:{number}: [file] {file} is {'no source' if not found else found}")
        if not files:
            problems.append(f"{PAGE}:{number}: [file] no file is named")
        if not row_tests:
            problems.append(f"{PAGE}:{number}: [test] no test is named")
        problems += [f"{PAGE}:{number}: [test] there is no test {test}" for test in row_tests if test not in tests]
    for name in sorted(set(marks) | set(named)):
        if marks.get(name, 0) != named[name]:
            problems.append(f"{name}: [mark] {marks.get(name, 0)} marks ODD:, but {named[name]} rows in {PAGE}")
    return problems, len(rows)


# --- self-test ------------------------------------------------------------------------------------

HEAD = "| behaviour | who relies on it | marked in | test |\n|---|---|---|---|\n"
GOOD = {"table_rw/a.cpp": "// ODD: so\n", "tests/a_test.cpp": "TEST(aTest, so) {}\n"}
# What differs from GOOD and its page, and the rules that must be found broken.
SELF_TEST = [
    ("all is well", HEAD + "| so | hosts | `a.cpp` | `aTest.so` |\n", {}, []),
    ("a file as a test", HEAD + "| so | hosts | `a.cpp` | `a_test.cpp` |\n", {}, []),
    ("another table", HEAD + "| so | hosts | `a.cpp` | `aTest.so` |\n\n| a | b |\n|---|---|\n| x | `y` |\n", {}, []),
    ("a mark without a row", HEAD, {}, ["mark"]),
    ("two marks, one row", HEAD + "| so | hosts | `a.cpp` | `aTest.so` |\n",
     {"table_rw/a.cpp": "// ODD: so\n/// text. ODD: so\n"}, ["mark"]),
    ("a row without a mark", HEAD + "| so | hosts | `a.cpp` | `aTest.so` |\n", {"table_rw/a.cpp": "int odd;\n"}, ["mark"]),
    ("a missing file", HEAD + "| so | hosts | `b.cpp` | `aTest.so` |\n", {}, ["file", "mark"]),
    ("a name of two files", HEAD + "| so | hosts | `a.cpp` | `aTest.so` |\n", {"suite/a.cpp": ""}, ["file", "mark"]),
    ("the end of a path", HEAD + "| so | hosts | `x/a.cpp` | `aTest.so` |\n", {"table_rw/a.cpp": "", "table_rw/x/a.cpp": "// ODD: so\n"}, []),
    ("no file", HEAD + "| so | hosts |  | `aTest.so` |\n", {"table_rw/a.cpp": ""}, ["file"]),
    ("a missing test", HEAD + "| so | hosts | `a.cpp` | `aTest.other` |\n", {}, ["test"]),
    ("no test", HEAD + "| so | hosts | `a.cpp` | later |\n", {}, ["test"]),
]


def self_test():
    failures = 0
    for name, page, files, expected in SELF_TEST:
        with tempfile.TemporaryDirectory() as root:
            for path, content in {**GOOD, **files, PAGE: page}.items():
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as file:
                    file.write(content)
            problems, _ = check_tree(root)
        answer = [re.search(r"\[(\w+)\]", problem).group(1) for problem in problems]
        if answer != expected:
            failures += 1
            print(f"{name}: found {problems}, expected {expected}")
    print(f"self-test: {len(SELF_TEST)} trees, {failures} failures")
    return 1 if failures else 0


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check_behaviours.py SOURCE_DIR | --self-test")
    if sys.argv[1] == "--self-test":
        return self_test()
    problems, count = check_tree(sys.argv[1])
    for problem in problems:
        print(problem)
    print(f"{count} rows, {len(problems)} differences")
    return 1 if problems or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
