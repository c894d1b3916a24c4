#!/usr/bin/env python3
"""Measures which branches of the library's own code the tests reach: coverage.py [--report | --list]

Builds the preset `coverage`, runs all of its tests, and compares what no test reached with
tests/coverage/unreached.tsv, where each such branch has its reason. Prints the figures per folder and exits with 1
when a branch is unreached without a reason, when an entry of the list matches nothing, or when a test failed.

  --report   the same from the last run's records, without building or running anything
  --list     prints the entries that the list lacks, as lines for it, but for their reasons

An entry names the file, the function, the source text of the line (line numbers go stale), how many branches of that
line are unreached, the class of the reason, and the reason. Counted is what is unreached on the edge:

  * a branch that is never taken on a line that is reached; what lies behind it needs no entry
  * a function that is never called, by the line it begins in, with 0 branches
  * a `catch` that never catches, with 0 branches

Branches that the compiler makes for exceptions are left out, since every call has one: that nothing leaks or breaks
when an allocation fails is shown by the sweeps over allocations. Needs gcc and gcovr.
"""
import argparse
import collections
import csv
import json
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.join(ROOT, "build", "coverage")
RECORD = os.path.join(BUILD, "coverage.json")
LIST = os.path.join(ROOT, "tests", "coverage", "unreached.tsv")
FOLDERS = ("table_rw/text", "table_rw/core", "table_rw/readers", "table_rw/writers", "table_rw/capi", "suite/basic",
           "suite/file_dbf", "suite/file_micromine", "suite/io", "platform", "database", "converter", "tools")
GENERATED = "platform/posix/(codePageTables|lowerCaseTable).cpp"
NEVER_EXECUTED = re.compile(r"branch +\d+ never executed")
# They take minutes here, and go over ground that their shorter neighbours reach.
TOO_LONG = ("csvTwin.agreesOnAMillionRandomLines|csvTwin.agreesOnEveryPositionOfWhatStandsOverABorder|"
            "petrelTwin.agreesAcrossBlockBorders|micromineDamage.everyByteOfTheHeaderChanged")
JOBS = os.environ.get("VOK_JOBS") or str(os.cpu_count())

# One unreached place: `branches` of the line with this text. Entries of the list have a reason, too.
Place = collections.namedtuple("Place", "file function text branches")


def run(*command, **settings):
    return subprocess.run(command, cwd=ROOT, check=False, stdin=subprocess.DEVNULL, **settings).returncode


def measure():
    """Builds, runs the tests and records; the answer is whether all of it went well."""
    run(os.path.join(ROOT, "scripts", "install_packages.sh"), "coverage")
    for command in (("cmake", "--preset", "coverage"), ("cmake", "--build", "--preset", "coverage", "-j", JOBS)):
        if run(*command, stdout=subprocess.DEVNULL) != 0:
            sys.exit("coverage.py: the build failed: " + " ".join(command))
    for folder, _, names in os.walk(BUILD):
        for name in names:
            if name.endswith(".gcda"):
                os.remove(os.path.join(folder, name))
    # A program that may not write says so on standard error, which tests compare: that goes to a file.
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "GCOV_ERROR_FILE": os.path.join(BUILD, "gcov_errors.txt")}
    with open(os.path.join(BUILD, "ctest.log"), "w", encoding="utf-8") as log:
        passed = run("ctest", "--test-dir", BUILD, "-j", JOBS, "--timeout", "900", "--output-on-failure", "-E",
                     TOO_LONG, stdout=log, stderr=subprocess.STDOUT, env=environment) == 0
    if not passed:
        print("coverage.py: tests failed, see build/coverage/ctest.log")
    read_counters()
    return passed


def run_gcov(arguments):
    """gcov as gcovr calls it, without the branches of code that did not run.

    WHY: the clean-up behind an exception is such code, and there gcov does not say which branches are the exceptions'.
    What else did not run lies behind a branch that was not taken, and that one stays.
    """
    answer = subprocess.run(["gcov", *arguments], check=False, stdout=subprocess.PIPE, text=True)
    print(answer.stdout, end="")
    for path in re.findall(r"^Creating '(.*)'$", answer.stdout, re.MULTILINE):
        with open(path, encoding="utf-8", errors="surrogateescape") as file:
            lines = file.readlines()
        with open(path, "w", encoding="utf-8", errors="surrogateescape") as file:
            file.writelines(line for line in lines if not NEVER_EXECUTED.match(line))
    return answer.returncode


def read_counters():
    command = ["gcovr", "--root", ROOT, "--object-directory", BUILD, "-j", JOBS, "--json", RECORD,
               "--gcov-executable", os.path.abspath(__file__) + " gcov",
               "--exclude-throw-branches", "--exclude-unreachable-branches", "--exclude", GENERATED,
               "--exclude-branches-by-pattern", ".*_mm_"]  # calls that are single instructions: no branch at all
    for folder in FOLDERS:
        command += ["--filter", folder + "/"]
    if run(*command, BUILD) != 0:
        sys.exit("coverage.py: gcovr failed")


def short_name(name):
    """`tableRW::csv::parse(int) const` as `csv::parse`: what a reader of the list looks for."""
    depth = 0
    plain = ""
    for character in name.split("[abi:")[0].replace("(anonymous namespace)", "").replace("operator()", "lambda"):
        if character == "(" and depth == 0:
            break
        depth += (character == "<") - (character == ">")
        plain += character if depth == 0 and character != ">" else ""
    parts = [part for part in plain.split(" ")[-1].split("::") if part]
    return "::".join(parts[-2:])


def unreached(entry):
    """What one file has unreached: pairs of a line's number and the place, in that order."""
    with open(os.path.join(ROOT, entry["file"]), encoding="utf-8") as file:
        source = file.read().split("\n")
    begins = sorted((function["lineno"], function["name"]) for function in entry["functions"])

    def place(line, branches):
        names = [name for begin, name in begins if begin <= line]  # the last of them is the line's
        return Place(entry["file"], short_name(names[-1]) if names else "", source[line - 1].strip(), branches)

    called = {}
    for function in entry["functions"]:
        called[function["lineno"]] = called.get(function["lineno"], 0) + function["execution_count"]
    places = [(line, place(line, 0)) for line, count in called.items() if count == 0]
    for line in entry["lines"]:
        if line.get("gcovr/noncode"):
            continue
        number = line["line_number"]
        missing = sum(1 for branch in line["branches"] if branch["count"] == 0)
        if line["count"] > 0 and missing:
            places.append((number, place(number, missing)))
        elif line["count"] == 0 and "catch (" in source[number - 1]:
            places.append((number, place(number, 0)))
    return sorted(places)


def read_list():
    """The entries of the list as pairs of a place and the class of its reason."""
    entries = []
    with open(LIST, encoding="utf-8", newline="") as file:
        for row in csv.reader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            if not row or row[0].startswith("#"):
                continue
            if len(row) != 6 or not row[4] or not row[5]:
                sys.exit("coverage.py: unreached.tsv: an entry has 6 columns: " + "\t".join(row))
            entries.append((Place(row[0], row[1], row[2], int(row[3])), row[4]))
    return entries


def print_figures(files):
    print(f"{'folder':24}{'lines':>16}{'':>7}{'branches':>16}")
    total = [0, 0, 0, 0]
    for folder in FOLDERS:
        figures = [0, 0, 0, 0]
        for entry in files:
            if not entry["file"].startswith(folder + "/"):
                continue
            lines = [line for line in entry["lines"] if not line.get("gcovr/noncode")]
            branches = [branch for line in lines for branch in line["branches"]]
            for i, value in enumerate((sum(line["count"] > 0 for line in lines), len(lines),
                                       sum(branch["count"] > 0 for branch in branches), len(branches))):
                figures[i] += value
        print_row(folder, figures)
        total = [a + b for a, b in zip(total, figures)]
    print_row("all", total)


def print_row(name, figures):
    def part(reached, of):
        return f"{reached:>7} of {of:>5} {100 * reached / of:>6.2f}%" if of else f"{'-':>23}"
    print(f"{name:24}{part(*figures[:2])}{part(*figures[2:])}")


def main():
    if sys.argv[1:2] == ["gcov"]:
        return run_gcov(sys.argv[2:])
    parser = argparse.ArgumentParser(description="Which branches no test reaches; see the file's first lines.")
    parser.add_argument("--report", action="store_true", help="from the last run's records")
    parser.add_argument("--list", action="store_true", help="print the entries that the list lacks")
    arguments = parser.parse_args()
    passed = True
    if not arguments.report and not arguments.list:
        passed = measure()
    with open(RECORD, encoding="utf-8") as file:
        files = json.load(file)["files"]
    # The public headers, once more, as examples see them through the build's own folder.
    files = [entry for entry in files if not entry["file"].startswith("build/")]

    listed = collections.Counter(place for place, _ in read_list())
    found = []
    for entry in files:
        found += unreached(entry)
    lacking = []
    for line, place in found:
        if listed[place] > 0:
            listed[place] -= 1
        else:
            lacking.append((place, line))
    stale = list(listed.elements())
    if arguments.list:
        for place, _ in lacking:
            print("\t".join(str(column) for column in place) + "\t\t")
        return 0
    print_figures(files)
    print("listed as unreached, by the class of the reason:")
    for reason, count in sorted(collections.Counter(reason for _, reason in read_list()).items()):
        print(f"  {count:4} {reason}")
    for place, line in lacking:
        print(f"{place.file}:{line}: in {place.function}: no reason is listed for {place.branches} unreached "
              f"branches of: {place.text}")
    for place in stale:
        print(f"unreached.tsv: nothing unreached is like this any more: {' | '.join(map(str, place))}")
    print(f"{len(lacking)} unreached without a reason, {len(stale)} entries that match nothing")
    return 0 if passed and not lacking and not stale else 1


if __name__ == "__main__":
    sys.exit(main())
