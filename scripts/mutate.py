#!/usr/bin/env python3
"""Tells how well the tests notice faults: changes one place of the sources at a time and runs the tests.

  mutate.py [--seed N] [--count N] text|csv|dbf|FILE...   tries N mutants that compile of each group or file
  mutate.py --replay [text|csv|dbf|FILE...]               tries again those that survived
  mutate.py --summary                                     prints the figures of all runs

Each mutant is built in a copy of the sources, build/mutation/source, with the preset `mutation`, and the tests of
text, CSV and DBF run until the first failure. Results are added to build/mutation/results.tsv: group, file, line,
source text, mutant text, verdict; what stands there is not tried again, so a run that was stopped goes on. Mutants
that cannot change any answer are listed with their reasons in tests/mutation/equivalent.tsv and count apart.
The exit code is 1 when a mutant that is not listed there survived.
"""
import argparse
import collections
import fnmatch
import glob
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

import mutants

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.path.join(ROOT, "build", "mutation")
SOURCE = os.path.join(WORK, "source")
BUILD = os.path.join(WORK, "build")
RESULTS = os.path.join(WORK, "results.tsv")
EQUIVALENT = os.path.join(ROOT, "tests", "mutation", "equivalent.tsv")
TESTS = "vok_mutation_tests"
# Included by most sources: a mutant of theirs takes minutes to build. They are tried when they are named.
WIDE = {"table_rw/core/valueTable.h", "table_rw/text/growingArray.h"}
GROUPS = {
    "text": ["table_rw/text/*", "platform/singleByteEncoder.cpp", "platform/posix/codePages.cpp",
             "platform/posix/utf8.h", "platform/asciiSteps.h"],
    "csv": ["table_rw/readers/csv*", "table_rw/readers/tableReader_csv.*", "table_rw/writers/tableWriter_csv.*",
            "table_rw/core/valueTable.*"],
    "dbf": ["suite/file_dbf/*", "table_rw/readers/tableReader_dbf.*", "table_rw/writers/tableWriter_dbf.*"],
}
# These take longest; they run when no other has failed.
LONG = ":".join((
    "codePages.*LikeTheTwin", "csvAllocationFailure.*", "csvDamage.everyByteReplaced", "csvTwin.*",
    "dbfDamage.everyByteReplaced", "dbfWriting.table", "readTextLine.aNulAtEveryPositionOfAChunk",
    "readTextLine.filesOfManyBlocks", "readTextLine.random*", "tableReader_csv.aVeryLongLine", "textModeInput.folds*",
    "blockSizes.*", "twins.csvLines", "twins.textMode*"))
LEFT_OUT = "twins.written:twins.petrelRows:twins.plainPetrelFiles:twins.names"
PARTS = (f"*-{LONG}:{LEFT_OUT}", LONG)
MEMORY_LIMIT = 8 << 30


def files_of(name):
    patterns = GROUPS.get(name, [name])
    found = [os.path.relpath(path, SOURCE) for p in patterns for path in sorted(glob.glob(os.path.join(SOURCE, p)))]
    return [path for path in found if path.endswith((".cpp", ".h")) and (path not in WIDE or path == name)]


def group_of(file):
    matching = (group for group, patterns in GROUPS.items() if any(fnmatch.fnmatch(file, p) for p in patterns))
    return next(matching, "other")


def read_table(path):
    if not os.path.exists(path):
        return []
    with open(path, encoding="utf-8", newline="") as table:
        return [line.rstrip("\n").split("\t") for line in table if line.strip()]


def key(mutant):
    return mutant.file, mutant.source, mutant.mutant


def results():
    """The verdicts on each mutant, in the order in which they were reached."""
    verdicts = collections.OrderedDict()
    for group, file, _, source, mutant, verdict in read_table(RESULTS):
        verdicts.setdefault((file, source, mutant), (group, []))[1].append(verdict)
    return verdicts


def copy_sources():
    """Brings the copy up to date; what is the same there keeps its time, so that it is not compiled again."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=ROOT, check=True,
                           capture_output=True).stdout.decode().split("\0")
    for name in filter(None, names):
        origin, copy = os.path.join(ROOT, name), os.path.join(SOURCE, name)
        with open(origin, "rb") as file:
            content = file.read()
        write_changed(copy, content)
        shutil.copymode(origin, copy)


def write_changed(path, content):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    if os.path.exists(path):
        with open(path, "rb") as file:
            if file.read() == content:
                return
    with open(path, "wb") as file:
        file.write(content)


def build(log):
    command = ["cmake", "--build", BUILD, "--target", TESTS, "-j", os.environ.get("VOK_JOBS", "2")]
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, check=False).returncode == 0


def limit_child():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (MEMORY_LIMIT, MEMORY_LIMIT))


def run_tests(names, seconds):
    """@return None when all pass, else what failed"""
    temporary = os.path.join(WORK, "temporary")
    shutil.rmtree(temporary, ignore_errors=True)
    os.makedirs(temporary)
    environment = {k: v for k, v in os.environ.items() if not k.startswith(("VOK_", "LC_"))}
    environment.update(TMPDIR=temporary, LC_ALL="C.UTF-8")
    output = os.path.join(WORK, "tests.log")
    command = [os.path.join(BUILD, "bin", TESTS), "--gtest_filter=" + names, "--gtest_break_on_failure"]
    with open(output, "wb") as log:
        child = subprocess.Popen(command, cwd=WORK, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                 start_new_session=True, preexec_fn=limit_child)
        try:
            code = child.wait(seconds)
            how = "" if code in (0, 1, -signal.SIGTRAP) else f" ({signal.Signals(-code).name})" if code < 0 else ""
        except subprocess.TimeoutExpired:
            os.killpg(child.pid, signal.SIGKILL)
            code = child.wait()
            how = " (time limit)"
    if code == 0:
        return None
    with open(output, encoding="utf-8", errors="replace") as log:
        started = re.findall(r"^\[ RUN      \] (\S+)", log.read(), re.MULTILINE)
    return (started[-1] if started else "start") + how


def run_all(limits):
    for names, seconds in zip(PARTS, limits):
        failed = run_tests(names, seconds)
        if failed is not None:
            return failed
    return None


def try_mutant(mutant, limits, log):
    path = os.path.join(SOURCE, mutant.file)
    with open(path, encoding="utf-8", newline="") as file:
        text = file.read()
    write_changed(path, (text[:mutant.start] + mutant.replacement + text[mutant.end:]).encode())
    try:
        if not build(log):
            return "did not compile"
        failed = run_all(limits)
        return "survived" if failed is None else "killed by " + failed
    finally:
        write_changed(path, text.encode())


def prepare(log):
    """Builds the tests as they are. @return time limits for their two parts"""
    copy_sources()
    if not os.path.exists(os.path.join(BUILD, "CMakeCache.txt")):
        linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"] if shutil.which("ld.lld") else []
        subprocess.run(["cmake", "--preset", "mutation", "-B", BUILD, *linker], cwd=SOURCE, stdout=log, check=True)
    if not build(log):
        sys.exit(f"the tests do not compile; see {log.name}")
    limits = []
    for names in PARTS:
        start = time.monotonic()
        failed = run_tests(names, 600)
        if failed is not None:
            sys.exit(f"the tests fail as they are: {failed}")
        limits.append(10 + 5 * (time.monotonic() - start))
    return limits


def summary():
    """Prints the figures. @return mutants that survived and are not called equivalent"""
    equivalent = {tuple(row[:3]) for row in read_table(EQUIVALENT)}
    counts = collections.defaultdict(collections.Counter)
    open_ones = []
    for mutant, (group, verdicts) in results().items():
        if verdicts[-1] == "did not compile":
            continue
        counts[group]["all"] += 1
        if mutant in equivalent:
            counts[group]["equivalent"] += 1
        elif verdicts[-1] == "survived":
            open_ones.append(mutant)
            counts[group]["open"] += 1
        else:
            counts[group]["at once" if verdicts[0] != "survived" else "since"] += 1
    print("| group | mutants | killed | equivalent | survived, killed since | survived |\n|---|---|---|---|---|---|")
    for group, count in sorted(counts.items()):
        figures = (count[name] for name in ("all", "at once", "equivalent", "since", "open"))
        print(f"| {group} | {' | '.join(map(str, figures))} |")
    for file, source, mutant in open_ones:
        print(f"survived: {file}: {source}  ->  {mutant}")
    return open_ones


def chosen(arguments, names, verdicts):
    """Yields what is to be tried, in batches that are sorted by file: each change of file compiles one more."""
    equivalent = {tuple(row[:3]) for row in read_table(EQUIVALENT)}
    for name in names:
        # Of equal lines in one file the first stands for all.
        pool = list({key(m): m for f in files_of(name) for m in reversed(list(mutants.mutants_of(SOURCE, f)))}.values())
        if arguments.replay:
            yield [m for m in pool if key(m) not in equivalent and verdicts.get(key(m), ("", [""]))[1][-1] == "survived"]
            continue
        random.Random(f"{arguments.seed} {name}").shuffle(pool)
        done = 0
        while pool and done < arguments.count:
            batch = pool[:arguments.count - done]
            del pool[:len(batch)]
            yield sorted((m for m in batch if key(m) not in verdicts), key=lambda m: (m.file, m.start))
            done += sum(verdicts[key(m)][1][-1] != "did not compile" for m in batch)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--replay", action="store_true")
    parser.add_argument("--summary", action="store_true")
    parser.add_argument("names", nargs="*", metavar="text|csv|dbf|FILE")
    arguments = parser.parse_args()
    names = arguments.names or list(GROUPS)
    os.makedirs(WORK, exist_ok=True)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # the copy is put right before
    if not arguments.summary:
        with open(os.path.join(WORK, "build.log"), "w", encoding="utf-8") as log:
            limits = prepare(log)
            verdicts = results()
            for batch in chosen(arguments, names, verdicts):
                for mutant in batch:
                    verdict = try_mutant(mutant, limits, log)
                    group = group_of(mutant.file)
                    row = (group, mutant.file, str(mutant.line), mutant.source, mutant.mutant, verdict)
                    verdicts.setdefault(key(mutant), (group, []))[1].append(verdict)
                    with open(RESULTS, "a", encoding="utf-8", newline="") as table:
                        table.write("\t".join(row) + "\n")
                    print(f"{mutant.file}:{mutant.line}: {mutant.mutant}: {verdict}", flush=True)
    return 1 if summary() else 0


if __name__ == "__main__":
    sys.exit(main())
