"""The cases of delimited text: the yardsticks, this library, and other libraries on the same files.

A case is called FILE/WHAT. Its yardstick is f2 on the same file, f2q on the quoted one, and Python's csv
module for writing. Data files are named by kind (see csv_data.cpp) and kept by size.
"""
import os
import shutil
import subprocess
import sys

from rounds import Case, DataFile, Program, read_report

ENCODINGS = {"utf8": 0, "ascii": 0, "cp1251": 8, "quoted": 0}  # numbers of tableReaderOptions::encoding
PYTHON_ENCODINGS = {"utf8": "utf-8", "cp1251": "cp1251"}
# Packages of the system belong to its own Python, which need not be the first one in the path.
SYSTEM_PYTHON = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable
HUGE_PAGES = {"GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"}
SCALING_MEGABYTES = (10, 100, 1000)
ACCESSORS = ("value", "getRow", "values", "search-all", "search-first")


def data_file(places, kind, megabytes):
    return DataFile(kind, megabytes, os.path.join(places.data, str(megabytes), f"wells_{kind}.csv"))


def yardstick_of(kind):
    return "f2q" if kind == "quoted" else "f2"


def case(kind, what, report="", **more):
    return Case(f"{kind}/{what}", report or what, f"{kind}/{yardstick_of(kind)}", **more)


def floor_programs(places, data):
    """The yardsticks, and the library's reading beside the one that it is compared with."""
    kind = data.kind
    program = os.path.join(places.programs, "csv_floors")
    plain = [] if kind == "quoted" else ["f2"]  # f2 would cut quoted values
    programs = []
    for mode in ["f1", *plain, "f2q", "f3"]:
        programs.append(Program([program, mode, data.path, kind], data, [case(kind, mode)]))
        if mode == yardstick_of(kind):
            # Neighbours: what they are compared for, they do on the machine in the same state. Behind a
            # program that took and gave back a gigabyte, fresh memory can cost several times as much.
            programs.append(reading_program(places, data))
            programs.append(Program([program, mode, data.path], data, [case(kind, mode + "-huge", mode)],
                                    environment=HUGE_PAGES))
    return programs


def reading_program(places, data):
    # The library's dialect rejects some lines of the quoted file: rows and rejected lines together must
    # be those of the file.
    unchecked = ("rows", "values", "rejected") if data.kind == "quoted" else ()
    command = [os.path.join(places.programs, "csv_table"), "read", data.path, str(ENCODINGS[data.kind])]
    return Program(command, data, [case(data.kind, "read", unchecked=unchecked)])


def access_programs(places, data):
    kind, encoding = data.kind, str(ENCODINGS[data.kind])
    table = [os.path.join(places.programs, "csv_table"), "access", data.path, encoding]
    capi = [os.path.join(places.programs, "csv_capi"), data.path, encoding]
    return [Program(table, data, [case(kind, what, whole_process=False) for what in ACCESSORS]),
            Program(capi, data, [case(kind, what, whole_process=False) for what in ("c-value", "c-row")])]


def peer_programs(places, data):
    kind = data.kind
    programs = []
    if kind == "utf8":
        for peer in ("libcsv", "gdal"):
            command = [os.path.join(places.programs, "csv_" + peer), data.path]
            programs.append(Program(command, data, [case(kind, peer)]))
    if kind in PYTHON_ENCODINGS:
        for peer in ("pandas", "python"):
            command = [SYSTEM_PYTHON, os.path.join(places.scripts, "csv_peers.py"), peer, data.path,
                       PYTHON_ENCODINGS[kind]]
            programs.append(Program(command, data, [case(kind, peer)]))
    return programs


def writing_programs(places, data):
    output = os.path.join(os.path.dirname(data.path), "written.csv")
    table = [os.path.join(places.programs, "csv_table"), "write", data.path, "0", output]
    python = [SYSTEM_PYTHON, os.path.join(places.scripts, "csv_peers.py"), "python-write", data.path,
              "utf-8", output]
    return [Program(command, data, [Case(f"write/{what}", report, "write/python", whole_process=False)],
                    output=output)
            for what, report, command in (("table", "write", table), ("python", "python-write", python))]


def programs(places, megabytes, with_peers):
    """All programs of a round, each file's together."""
    all_programs = []
    for kind in ENCODINGS:
        data = data_file(places, kind, megabytes)
        all_programs += floor_programs(places, data)
        if kind in ("utf8", "ascii"):
            all_programs += access_programs(places, data)
        if with_peers:
            all_programs += peer_programs(places, data)
    # Python's writer is a yardstick, so it takes part in any case.
    return all_programs + writing_programs(places, data_file(places, "utf8", megabytes))


def scaling_programs(places):
    """Reading of the UTF-8 file in several sizes, and f2 beside it."""
    scaled = []
    for megabytes in SCALING_MEGABYTES:
        data = data_file(places, "utf8", megabytes)
        floor = Program([os.path.join(places.programs, "csv_floors"), "f2", data.path], data, [])
        for program, what in ((floor, "f2"), (reading_program(places, data), "read")):
            line = Case(f"{megabytes} MB/{what}", what, f"{megabytes} MB/f2")
            scaled.append(program._replace(cases=[line]))
    return scaled


# --- data -----------------------------------------------------------------------------------------


def make_data(places, chosen_programs):
    """Makes the files that the programs read, where they are missing. @return the counts of each"""
    files = list(dict.fromkeys(program.data for program in chosen_programs))
    missing = [data for data in files if not os.path.exists(counts_path(data))]
    os.makedirs(places.data, exist_ok=True)
    outputs = [program.data for program in chosen_programs if program.output]
    kept = sum(data.megabytes for data in missing)
    needed = 1e6 * (kept + max((data.megabytes for data in outputs), default=0))
    if shutil.disk_usage(places.data).free < needed * 1.1:
        sys.exit(f"{places.data} needs {needed * 1.1 / 1e9:.1f} GB of free space")
    for data in missing:
        make_file(os.path.join(places.programs, "csv_data"), data)
    return {data: counts_of(data) for data in files}


def counts_path(data):
    return data.path + ".counts"


def make_file(generator, data):
    print(f"Making {data.path} ...", file=sys.stderr)
    os.makedirs(os.path.dirname(data.path), exist_ok=True)
    command = [generator, data.kind, str(data.megabytes * 1000000), data.path]
    report = subprocess.run(command, stdout=subprocess.PIPE, text=True)
    if report.returncode != 0:
        if os.path.exists(data.path):
            os.remove(data.path)
        sys.exit(f"{data.path} could not be made")
    # Only a finished file has its counts beside it.
    with open(counts_path(data), "w", encoding="utf-8") as file:
        file.write(report.stdout)


def counts_of(data):
    with open(counts_path(data), encoding="utf-8") as file:
        counts = read_report(file.read())[data.kind]
    # What a reader may report besides: every line is a row, and none is rejected.
    return {**counts, "lines": counts["rows"], "rejected": 0}
