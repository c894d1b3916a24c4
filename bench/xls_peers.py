#!/usr/bin/env python3
"""Makes text of a workbook with one program: xls_peers.py converter|xlsx2csv|openpyxl SOURCE TARGET CONVERTER

Prints `NAME seconds=... rows=... values=...`; what was counted comes from the text, after the measured part.
Exit code 77 when the program is not installed.
"""
import csv
import os
import shutil
import subprocess
import sys
import time
import warnings

NOT_INSTALLED = 77


def converter(source, target, program):
    subprocess.run([program, source, "-destFolder", os.path.dirname(target), "-delimiter", "$"], check=True)


def xlsx2csv(source, target, _program):
    subprocess.run(["xlsx2csv", "-d", "$", source, target], check=True)


def openpyxl(source, target, _program):
    import openpyxl as package  # pylint: disable=import-outside-toplevel
    warnings.simplefilter("ignore")  # of styles, which would stand among the results
    sheet = package.load_workbook(source, read_only=True, data_only=True).active
    with open(target, "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, delimiter="$")
        for row in sheet.iter_rows(values_only=True):
            writer.writerow(row)


def is_installed(name):
    if name == "xlsx2csv":
        return shutil.which("xlsx2csv") is not None
    if name == "openpyxl":
        return subprocess.run([sys.executable, "-c", "import openpyxl"], stderr=subprocess.DEVNULL,
                              check=False).returncode == 0
    return True


def main():
    name, source, target, program = sys.argv[1:]
    if not is_installed(name):
        return NOT_INSTALLED
    begin = time.monotonic()
    {"converter": converter, "xlsx2csv": xlsx2csv, "openpyxl": openpyxl}[name](source, target, program)
    seconds = time.monotonic() - begin
    rows = values = size = 0
    with open(target, encoding="utf-8", newline="\n") as file:
        for line in file:
            rows += 1
            values += line.count("$") + 1
            size += len(line.encode())
    print(f"{name} seconds={seconds:.6f} rows={rows} values={values} bytes={size}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
