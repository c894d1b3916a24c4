"""Runs the programs of a benchmark in turn, round by round, and collects what they report.

    round 1: A B C ...    round 2: A B C ...

A machine's speed drifts; cases of one round are close in time, so a case is compared with its yardstick
round by round, and the median of these ratios is taken. Every program is a fresh process on one and the
same processor core, its files in the page cache. A program prints one line a case, its own seconds and
counts (see report.h); counts that differ from those of the data, or from round to round, are an error.
"""
import fnmatch
import os
import resource
import subprocess
import sys
from typing import NamedTuple

NOT_INSTALLED = 77  # exit code of a program that lacks what it is to compare with


class Places(NamedTuple):
    """Where things are."""
    programs: str
    scripts: str
    data: str


class DataFile(NamedTuple):
    """A file that programs read, made on demand."""
    kind: str
    megabytes: int
    path: str


class Case(NamedTuple):
    """One line of the result, from one line that a program reports."""
    name: str
    report: str
    yardstick: str             # name of the case to compare with
    whole_process: bool = True  # the process does nothing else, so that its peak memory is the case's
    unchecked: tuple = ()      # counts that need not be those of the data
    varying: tuple = ()        # counts that need not be the same in every round


class Program(NamedTuple):
    """One process of a round."""
    command: list
    data: DataFile
    cases: list
    environment: dict = {}
    output: str = ""  # a file that it leaves and nobody needs


class Result:
    """What the rounds say about a case."""

    def __init__(self, case, data, expected):
        self.case = case
        self.data = data
        self.expected = expected
        self.seconds = []  # one a round; None where the case failed
        self.peaks = []    # bytes; see own_peak
        self.counts = {}
        self.error = ""
        self.absent = False

    def add(self, report, peak):
        seconds = report.pop("seconds")
        self.seconds.append(seconds)
        self.peaks.append(peak)
        same = {what: count for what, count in report.items() if what not in self.case.varying}
        if any(self.counts.get(what, count) != count for what, count in same.items()):
            self.error = self.error or "counts differ from round to round"
        self.counts = report
        for what, count in report.items():
            wanted = self.expected.get(what, count)
            if count != wanted and what not in self.case.unchecked:
                self.error = self.error or f"{what} {count}, expected {wanted}"

    def fail(self, reason):
        self.seconds.append(None)
        self.error = self.error or reason

    def good_seconds(self):
        return [seconds for seconds in self.seconds if seconds is not None]

    def ratio_to(self, yardstick):
        """Median of the ratios within the rounds; None when there is none."""
        ratios = [mine / other for mine, other in zip(self.seconds, yardstick.seconds) if mine and other]
        return median(ratios) if ratios else None


def median(numbers):
    ordered = sorted(numbers)
    middle = len(ordered) // 2
    return ordered[middle] if len(ordered) % 2 else (ordered[middle - 1] + ordered[middle]) / 2


def chosen(programs, globs):
    """The programs with the cases whose names match, and with the cases these are compared with."""
    cases = {case.name: case for program in programs for case in program.cases}
    names = {name for name in cases if any(fnmatch.fnmatchcase(name, glob) for glob in globs)}
    names |= {cases[name].yardstick for name in names}
    kept = []
    for program in programs:
        wanted = [case for case in program.cases if case.name in names]
        if wanted:
            kept.append(program._replace(cases=wanted))
    return kept


def read_report(text):
    """The lines `name key=number ...` of a program, as dictionaries by name."""
    reports = {}
    for line in text.splitlines():
        name, *pairs = line.split()
        report = {}
        for pair in pairs:
            key, _, number = pair.partition("=")
            report[key] = float(number) if key == "seconds" else int(number)
        reports[name] = report
    return reports


def own_peak():
    """Peak memory of this process in bytes.

    The system hands it down: a program that needs less is reported with as much.
    """
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss * 1024


# A virtual machine hands free memory back to its host after a second or two, and gets it back page by page
# when it is touched again, at several times the cost of the work measured here. So every program starts
# right after another has touched this much memory, in huge pages, and gone.
LEAST_TOUCHED_MEGABYTES = 1200
TOUCHED_PER_MEGABYTE = 2  # of the data


def touch_memory(program):
    megabytes = LEAST_TOUCHED_MEGABYTES + TOUCHED_PER_MEGABYTE * program.data.megabytes
    subprocess.run([sys.executable, "-c", f"b'x' * ({megabytes} << 20)"], check=False,
                   env={**os.environ, "GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"})


def run_once(program):
    """@return exit code, standard output, standard error, peak memory in bytes"""
    environment = {**os.environ, **program.environment}
    touch_memory(program)
    process = subprocess.Popen(program.command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, env=environment, text=True)
    output = process.stdout.read()
    process.stdout.close()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)  # so that Popen does not wait again
    if program.output and os.path.exists(program.output):
        os.remove(program.output)
    return process.returncode, output, usage.ru_maxrss * 1024


def add_run(program, results):
    """Runs a program once and adds what it reports to the results of its cases."""
    mine = [results[case.name] for case in program.cases]
    if any(result.absent for result in mine):
        return
    try:
        code, output, peak = run_once(program)
    except FileNotFoundError:
        code, output, peak = NOT_INSTALLED, "", 0
    if code == NOT_INSTALLED:
        for result in mine:
            result.absent = True
        return
    reports = read_report(output) if code == 0 else {}
    for result in mine:
        report = reports.get(result.case.report)
        if report is not None:
            result.add(report, peak)
        else:
            last_words = output.strip().rsplit("\n", 1)[-1]
            result.fail(last_words if code != 0 and last_words else f"no result, exit code {code}")


def bring_into_page_cache(path):
    with open(path, "rb", buffering=0) as file:
        while file.read(1 << 20):
            pass


def measure(programs, expected, rounds):
    """Runs all rounds.

    `expected` holds the counts of each data file. @return the results by the name of the case, in order
    """
    results = {case.name: Result(case, program.data, expected[program.data])
               for program in programs for case in program.cases}
    load = os.getloadavg()[0]
    if load > 0.5:
        print(f"The machine is busy (load {load:.1f}): expect the figures to vary.", file=sys.stderr)
    core = max(os.sched_getaffinity(0))
    os.sched_setaffinity(0, {core})  # inherited by every program
    for data in dict.fromkeys(program.data for program in programs):
        bring_into_page_cache(data.path)
    for number in range(1, rounds + 1):
        print(f"Round {number} of {rounds} on core {core} ...", file=sys.stderr)
        for program in programs:
            add_run(program, results)
    return results
