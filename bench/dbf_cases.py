"""The cases of DBF files: 500,000 records of 12 fields, read and written, against shapelib and dbfread.

Yardsticks are shapelib reading every value as text into an arena, and shapelib writing text as it is.
"""
import os
import subprocess
import sys

from csv_cases import SYSTEM_PYTHON
from rounds import Case, DataFile, Program

RECORDS = 500000
FIELDS = 12
MEGABYTES = 59


def data_file(places):
    return DataFile("dbf", MEGABYTES, os.path.join(places.data, f"wells_{RECORDS}.dbf"))


def programs(places, _megabytes, with_peers):
    """All programs of a round. shapelib is the yardstick, so it takes part in any case."""
    data = data_file(places)
    table = os.path.join(places.programs, "dbf_table")
    shapelib = os.path.join(places.programs, "dbf_shapelib")
    output = os.path.join(places.data, "written.dbf")
    listed = [
        Program([shapelib, "read", data.path], data, [Case("read/shapelib", "shapelib", "read/shapelib")]),
        Program([table, "read", data.path], data, [Case("read/table", "read", "read/shapelib")]),
        Program([shapelib, "write", data.path, output], data,
                [Case("write/shapelib", "shapelib-write", "write/shapelib", whole_process=False)],
                output=output),
        Program([table, "write", data.path, output], data,
                [Case("write/table", "write", "write/shapelib", whole_process=False)], output=output),
    ]
    if with_peers:
        dbfread = [SYSTEM_PYTHON, os.path.join(places.scripts, "dbf_peers.py"), data.path]
        listed.insert(2, Program(dbfread, data, [Case("read/dbfread", "dbfread", "read/shapelib")]))
    return listed


def scaling_programs(_places):
    sys.exit("How DBF files scale is not measured")


def make_data(places, chosen_programs):
    """Makes the file where it is missing. @return its counts"""
    data = data_file(places)
    os.makedirs(places.data, exist_ok=True)
    if not os.path.exists(data.path):
        print(f"Making {data.path} ...", file=sys.stderr)
        made = data.path + ".new.dbf"
        subprocess.run([os.path.join(places.programs, "dbf_table"), "make", made, str(RECORDS)], check=True)
        os.replace(made, data.path)
    counts = {"rows": RECORDS, "values": RECORDS * FIELDS}
    return {program.data: counts for program in chosen_programs}
