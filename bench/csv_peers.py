#!/usr/bin/env python3
"""Python on the same files: csv_peers.py python|pandas FILE ENCODING | python-write FILE ENCODING OUT

  python        the csv module, into a list of lists
  pandas        read_csv with its default settings, into a data frame
  python-write  the csv module writes the rows of the file, trimmed and held in memory, as CP1251

A pandas that is not installed ends the program with code 77.
"""
import csv
import os
import sys
import time


def report(name, seconds, **counts):
    print(name, f"seconds={seconds:.6f}", *(f"{what}={count}" for what, count in counts.items()))
    # Freeing the rows is not what is measured, and takes its time.
    sys.stdout.flush()
    os._exit(0)


def read_rows(path, encoding):
    with open(path, encoding=encoding, newline="") as file:
        return list(csv.reader(file, delimiter=";"))


def measure_python(path, encoding):
    start = time.perf_counter()
    rows = read_rows(path, encoding)
    seconds = time.perf_counter() - start
    report("python", seconds, rows=len(rows) - 1, values=sum(map(len, rows)) - len(rows[0]))


def measure_pandas(path, encoding):
    try:
        import pandas
    except ImportError:
        sys.exit(77)
    start = time.perf_counter()
    frame = pandas.read_csv(path, sep=";", encoding=encoding)
    seconds = time.perf_counter() - start
    report("pandas", seconds, rows=len(frame), values=frame.size)


def measure_write(path, encoding, target):
    rows = [[value.strip() for value in row] for row in read_rows(path, encoding)]
    start = time.perf_counter()
    with open(target, "w", encoding="cp1251", newline="") as file:
        csv.writer(file, delimiter=";").writerows(rows)
    seconds = time.perf_counter() - start
    report("python-write", seconds, rows=len(rows) - 1, written=os.path.getsize(target))


MODES = {"python": measure_python, "pandas": measure_pandas, "python-write": measure_write}

if __name__ == "__main__":
    MODES[sys.argv[1]](*sys.argv[2:])
