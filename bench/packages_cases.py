"""The cases of Petrel tables and Micromine data files.

The yardstick of a Petrel table is this library's reader of delimited text on the same bytes; the yardstick of a
Micromine data file is a program that reads the file and copies the bytes of its values.
"""
import os
import subprocess
import sys

from rounds import Case, DataFile, Program


def data_file(places, kind, megabytes):
    return DataFile(kind, megabytes, os.path.join(places.data, str(megabytes), f"package_{kind}.dat"))


def programs(places, megabytes, _with_peers):
    """All programs of a round."""
    table = os.path.join(places.programs, "packages_table")
    listed = []
    for kind, mode, yardstick in (("petrel", "petrel", "csv"), ("micromine", "micromine", "slices"),
                                  ("mixed", "micromine", "slices")):
        data = data_file(places, kind, megabytes)
        floor = f"{kind}/{yardstick}"
        # As delimited text the table has one row less: the first line of data is its header.
        listed += [Program([table, yardstick, data.path], data,
                           [Case(floor, "read", floor, unchecked=("rows",) if yardstick == "csv" else ())]),
                   Program([table, mode, data.path], data, [Case(f"{kind}/read", "read", floor)])]
    return listed


def scaling_programs(_places):
    sys.exit("How these files scale is not measured")


def rows_in(path, kind):
    """Rows of a file, counted by its lines or by its size."""
    with open(path, "rb") as file:
        data = file.read()
    if kind == "petrel":
        return data.count(b"\n") - data[:4096].split(b"END HEADER\n")[0].count(b"\n") - 1
    lines = data[4096:8192].split(b"\r\n")
    count = int(lines[0].split()[0])
    begin = 4096 + sum(len(line) + 2 for line in lines[:count + 1])
    return (len(data) - begin) // (sum(int(line[11:14]) for line in lines[1:count + 1]) + 2)


def make_data(places, chosen_programs):
    """Makes the files where they are missing. @return their counts"""
    counts = {}
    for data in dict.fromkeys(program.data for program in chosen_programs):
        os.makedirs(os.path.dirname(data.path), exist_ok=True)
        if not os.path.exists(data.path):
            print(f"Making {data.path} ...", file=sys.stderr)
            subprocess.run([os.path.join(places.programs, "packages_table"), f"make-{data.kind}",
                            data.path + ".new", str(data.megabytes)], check=True)
            os.replace(data.path + ".new", data.path)
        counts[data] = {"rows": rows_in(data.path, data.kind), "rejected": 0}
    return counts
