"""The cases of spreadsheets: the converter, and other programs that make text of the same workbook.

The yardstick is xlsx2csv on the same file. The million rows are there for the memory: only the converter
reads them. The old format is compared with the new one, for the same sheet. Every program is started as a user starts it, so its seconds are those of the whole process.
"""
import os
import subprocess
import sys

from csv_cases import SYSTEM_PYTHON, counts_path
from rounds import Case, DataFile, Program, read_report

ROWS = 200_000
MANY_ROWS = 1_000_000
ROWS_OF_XLS = 65_536


def data_file(places, rows, kind):
    path = os.path.join(places.data, "xls", f"samples_{rows}.{kind}")
    return DataFile("xlsx", rows * 75 // 1_000_000, path)


def peer(places, what, data, output):
    return [SYSTEM_PYTHON, os.path.join(places.scripts, "xls_peers.py"), what, data.path, output,
            os.path.join(places.programs, "vok_xls2csv.exe")]


def program(places, rows, what):
    data = data_file(places, rows, "xlsx")
    output = os.path.join(places.data, "xls", "out", f"samples_{rows}.csv")
    yardstick = "xlsx2csv" if rows == ROWS else "converter"  # no other program gets the other sheets
    case = Case(f"{rows} rows/{what}", what, f"{rows} rows/{yardstick}", unchecked=("bytes",))
    return Program(peer(places, what, data, output), data, [case], output=output)


def xls_program(places):
    data = data_file(places, ROWS_OF_XLS, "xls")
    output = os.path.join(places.data, "xls", "out", f"samples_{ROWS_OF_XLS}.csv")
    case = Case(f"{ROWS_OF_XLS} rows/converter of .xls", "converter", f"{ROWS_OF_XLS} rows/converter",
                unchecked=("bytes",))
    return Program(peer(places, "converter", data, output), data, [case], output=output)


def programs(places, _megabytes, with_peers):
    whats = ["converter", "xlsx2csv"] + (["openpyxl"] if with_peers else [])
    chosen = [program(places, ROWS, what) for what in whats] + [program(places, MANY_ROWS, "converter")]
    if with_peers:  # which bring what writes the old format
        chosen += [program(places, ROWS_OF_XLS, "converter"), xls_program(places)]
    return chosen


def scaling_programs(places):
    return [program(places, rows, "converter") for rows in (20_000, ROWS, MANY_ROWS)]


def make_data(places, chosen_programs):
    """Makes the workbooks that the programs read, where they are missing. @return the counts of each"""
    os.makedirs(os.path.join(places.data, "xls", "out"), exist_ok=True)
    counts = {}
    for data in dict.fromkeys(program.data for program in chosen_programs):
        if not os.path.exists(counts_path(data)):
            rows = os.path.basename(data.path).split("_")[1].split(".")[0]
            print(f"Making {data.path} ...", file=sys.stderr)
            report = subprocess.run([SYSTEM_PYTHON, os.path.join(places.scripts, "xls_data.py"), rows, data.path],
                                    stdout=subprocess.PIPE, text=True, check=True)
            with open(counts_path(data), "w", encoding="utf-8") as file:
                file.write(report.stdout)
        with open(counts_path(data), encoding="utf-8") as file:
            counts[data] = read_report(file.read())["xlsx"]
    return counts
