"""The cases of SQLite tables: the engine's plain C interface as the yardstick, and this library.

A case is called KIND/WHAT; KIND is text or mixed (see sqlite_data.cpp). The size that results are given by is
that of all values as text, not that of the file.
"""
import os
import subprocess
import sys

import csv_cases
from rounds import Case, DataFile, Program, read_report

KINDS = ("text", "mixed")
ROWS_PER_MEGABYTE = 10000  # so that the default size has 1,000,000 rows
CSV_FOR_ROWS = 1.1         # megabytes of text that hold so many rows, and some more


def programs(places, megabytes, _with_peers):
    """All programs of a round, each database's together."""
    all_programs = []
    for kind in KINDS:
        data = DataFile(kind, megabytes, os.path.join(places.data, str(megabytes), f"wells_{kind}.sqlite"))
        for program, what in (("sqlite_floor", "b"), ("sqlite_table", "read")):
            all_programs.append(Program([os.path.join(places.programs, program), data.path], data,
                                        [Case(f"{kind}/{what}", what, f"{kind}/b")]))
    return all_programs


def scaling_programs(places):
    return [program._replace(cases=[case._replace(name=f"{megabytes} MB {case.name}",
                                                  yardstick=f"{megabytes} MB {case.yardstick}")
                                    for case in program.cases])
            for megabytes in (10, 100) for program in programs(places, megabytes, False)]


def make_data(places, chosen_programs):
    """Makes the databases that the programs read, where they are missing. @return the counts of each"""
    files = list(dict.fromkeys(program.data for program in chosen_programs))
    for data in files:
        if not os.path.exists(csv_cases.counts_path(data)):
            make_file(places, data)
    return {data: counts_of(data) for data in files}


def make_file(places, data):
    source = csv_cases.data_file(places, "utf8", int(data.megabytes * CSV_FOR_ROWS) + 1)
    if not os.path.exists(csv_cases.counts_path(source)):
        csv_cases.make_file(os.path.join(places.programs, "csv_data"), source)
    print(f"Making {data.path} ...", file=sys.stderr)
    os.makedirs(os.path.dirname(data.path), exist_ok=True)
    command = [os.path.join(places.programs, "sqlite_data"), data.kind, source.path,
               str(data.megabytes * ROWS_PER_MEGABYTE), data.path]
    report = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if report.returncode != 0:
        sys.exit(f"{data.path} could not be made")
    with open(csv_cases.counts_path(data), "w", encoding="utf-8") as file:
        file.write(report.stdout)


def counts_of(data):
    with open(csv_cases.counts_path(data), encoding="utf-8") as file:
        counts = read_report(file.read())[data.kind]
    return {**counts, "size": counts["bytes"]}
