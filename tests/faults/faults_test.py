#!/usr/bin/env python3
"""Whole runs of vok_table and of the converter program while the n-th call of the system fails.

tests/support/preload/failing_calls.cpp, loaded before the program, makes one call fail, or that one and all behind
it: an open, a read, a request for memory. For every number until a run makes fewer calls, one of two things must come of it:

  - the exit code of the undisturbed run, with the same standard output and the same files, byte for byte
  - an exit code of a failure and a message; each target is the old file or the new one, whole, and nothing else
    is left in any folder (but what could not be removed, where removing is what fails)

Short counts and interruptions of reads and writes must change nothing at all.

An ordinary run tries a few numbers of each kind of call; VOK_FAULT_MOST says how many, and with VOK_FULL_SWEEP it is
every one. With VOK_FAULT_FIGURES each test prints how many runs it has made.

faults_test.py --tool TOOL --converter CONVERTER --faults LIBRARY [TEST...]
"""
import argparse
import io
import os
import re
import shutil
import sqlite3
import struct
import subprocess
import sys
import tempfile
import unittest
import zipfile

sys.dont_write_bytecode = True
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "fuzz"))
sys.path.insert(0, os.path.join(ROOT, "tests", "tool", "support"))
from make_seeds import biff, dbf_table  # noqa: E402
from workbooks import book, cell, sheet  # noqa: E402

CALLS = ("open", "read", "write", "lseek", "stat", "mmap", "close", "rename", "unlink", "mkdir", "chmod", "fsync")
MODES = ("once", "rest")
REMOVING = ("unlink",)  # where a file may stay
FULL = os.environ.get("VOK_FULL_SWEEP", "") not in ("", "0")
MOST = int(os.environ.get("VOK_FAULT_MOST", "3"))  # numbers of a kind of call in an ordinary run
MOST_OF_MEMORY = 2 * MOST
BIG = 9000  # rows, so that a source takes more than one block


class Settings:
    """The command line of the script."""
    tool = converter = faults = ""


# --- the sources ----------------------------------------------------------------------------------

def big_rows():
    return [[f"W-{number}", str(number / 4), f"clay, sand {number % 7}"] for number in range(BIG)]


def csv_source(rows):
    lines = ["WELL;DEPTH;ROCK"] + [";".join(row) for row in rows]
    lines[5:5] = ["too;few", "one;too;many;values"]
    return ("\r\n".join(lines) + "\r\n").encode()


def petrel_source(rows):
    head = "# Petrel well tops\nVERSION 2\nBEGIN HEADER\nWELL\nDEPTH\nROCK\nEND HEADER\n"
    return (head + "".join(f'{row[0]} {row[1]} "{row[2]}" \n' for row in rows)).encode()


def micromine_source(rows):
    head = "wells\r\n3 VARIABLES\r\nWELL      C 20 0\r\nDEPTH     N 10 2\r\nROCK      C 20 0\r\n"
    return (head + "".join(f"{row[0]:<20}{row[1]:>10}{row[2]:<20}\r\n" for row in rows)).encode()


def sqlite_source(rows):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "t.sqlite")
        with sqlite3.connect(path) as connection:
            connection.execute("CREATE TABLE t(WELL TEXT, DEPTH FLOAT, ROCK)")
            connection.execute("CREATE TABLE second(A, B)")
            connection.executemany("INSERT INTO t VALUES(?, ?, ?)", rows)
            connection.execute("INSERT INTO second VALUES('x', 1)")
        connection.close()
        with open(path, "rb") as file:
            return file.read()


def xlsx_source(rows):
    lines = "".join(f"<row r='{number}'>" + "".join(f"<c r='{column}{number}' t='str'><v>{value}</v></c>"
                                                    for column, value in zip("ABC", row)) + "</row>"
                    for number, row in enumerate(rows, 1))
    merged = "<mergeCells count='1'><mergeCell ref='A3:A4'/></mergeCells>"
    return book({"One": sheet(lines, merged), "Two": sheet(f"<row>{cell('A1', 7)}</row>")})


def xls_source(rows):
    """@return the stream of a workbook of one sheet"""
    def begin(kind):
        return biff(0x809, struct.pack("<HHHHII", 0x600, kind, 0, 0, 0, 0))

    cells = b"".join(biff(0x204, struct.pack("<HHHHB", row, column, 0, len(value), 0) + value.encode())
                     for row, values in enumerate(rows) for column, value in enumerate(values))
    cells += biff(0xE5, struct.pack("<HHHHH", 1, 2, 3, 0, 0))  # a merged range

    def bound(place):
        return biff(0x85, struct.pack("<IHBB", place, 0, 3, 0) + b"One")

    size = len(begin(5) + bound(0) + biff(0xA, b""))
    return begin(5) + bound(size) + biff(0xA, b"") + begin(0x10) + cells + biff(0xA, b"")


def compound_source(stream):
    """A compound file of that stream, with sectors of 4 KiB."""
    end, size = 0xFFFFFFFE, 4096
    sectors = -(-len(stream) // size)
    table = [0xFFFFFFFD, end] + [number + 3 for number in range(sectors - 1)] + [end]
    table += [0xFFFFFFFF] * (size // 4 - len(table))

    def entry(label, kind, start, length):
        units = label.encode("utf-16-le")
        name = units.ljust(64, b"\0") + struct.pack("<HBB", len(units) + 2, kind, 1) + b"\xff" * 12
        return name.ljust(116, b"\0") + struct.pack("<IQ", start, length)

    header = b"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + bytes(16) + struct.pack("<HHHHH", 0x3E, 4, 0xFFFE, 12, 6) + bytes(10)
    header += struct.pack("<10I", 0, 1, 1, 0, 4096, end, 0, end, 0, 0)
    directory = entry("Root Entry", 5, end, 0) + entry("Workbook", 2, 2, len(stream))
    return (header.ljust(512, b"\xff").ljust(size, b"\0") + struct.pack("<1024I", *table) + directory.ljust(size, b"\0")
            + stream.ljust(sectors * size, b"\0"))


def sources():
    rows = big_rows()
    table, memos = dbf_table(rows[:300], memo=True)
    plain, _ = dbf_table(rows[:2000])
    stream = xls_source(rows[:6000])
    return {
        "t.csv": csv_source(rows), "small.csv": csv_source(rows[:20]), "first.txt": csv_source(rows[:20]),
        "t.petrel": petrel_source(rows), "t.micromine": micromine_source(rows),
        "t.dbf": plain, "memo.dbf": table, "memo.dbt": memos,
        "t.sqlite": sqlite_source(rows[:3000]), "small.sqlite": sqlite_source(rows[:5]),
        "small.petrel": petrel_source(rows[:20]), "small.dbf": dbf_table(rows[:5], memo=True)[0],
        "small.dbt": dbf_table(rows[:5], memo=True)[1], "small.xlsx": xlsx_source(rows[:20]),
        "t.xlsx": xlsx_source(rows[:4000]), "t.xls": compound_source(stream), "bare.xls": stream,
    }


# --- running --------------------------------------------------------------------------------------

def without_times(content):
    """A workbook's parts without the times that it tells; any other file as it is."""
    if not content.startswith(b"PK"):
        return content
    try:
        with zipfile.ZipFile(io.BytesIO(content)) as archive:
            return [(name, re.sub(rb"\d{4}-\d\d-\d\dT[\d:]+Z", b"", archive.read(name)))
                    for name in archive.namelist()]
    except (zipfile.BadZipFile, zipfile.zlib.error, EOFError):
        return content


class FaultTest(unittest.TestCase):
    """A folder with all sources in one folder and the targets in another, and the sweep over a command."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="vok_faults_")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        for name in ("source", "target", "temporary"):
            os.mkdir(os.path.join(cls.folder, name))
        for name, content in sources().items():
            with open(os.path.join(cls.folder, "source", name), "wb") as file:
                file.write(content)
        cls.before = cls.content("source")
        cls.runs = 0

    @classmethod
    def content(cls, folder, names_only=False):
        found = {}
        for where, folders, names in os.walk(os.path.join(cls.folder, folder)):
            for name in names:
                path = os.path.join(where, name)
                if names_only:
                    found[path] = None
                    continue
                with open(path, "rb") as file:
                    found[path] = without_times(file.read())
            for name in folders:
                found[os.path.join(where, name)] = "folder"
        return found

    def put(self, old):
        """Empties the folders of targets and puts the old ones there."""
        for name in ("target", "temporary"):
            shutil.rmtree(os.path.join(self.folder, name), ignore_errors=True)
            os.mkdir(os.path.join(self.folder, name))
        for name, content in old.items():
            with open(os.path.join(self.folder, "target", name), "wb") as file:
                file.write(content)

    def run_once(self, command, call=None, number=0, mode="once"):
        """@return exit code, standard output, standard error, what the processes reported"""
        report = self.folder + ".report"
        environment = {"PATH": os.environ.get("PATH", ""), "LC_ALL": "C.UTF-8", "HOME": self.folder,
                       "TMPDIR": os.path.join(self.folder, "temporary"), "TEMP": os.path.join(self.folder, "temporary"),
                       "USERNAME": "tester", "LOGNAME": "tester"}
        if call is not None:
            environment.update(LD_PRELOAD=Settings.faults, VOK_FAULT_CALL=call, VOK_FAULT_NUMBER=str(number),
                               VOK_FAULT_MODE=mode, VOK_FAULT_FOLDER=self.folder, VOK_FAULT_REPORT=report)
        if os.path.exists(report):
            os.remove(report)
        out = os.path.join(self.folder, "output")
        with open(out, "wb") as output:
            done = subprocess.run([part.replace("@", self.folder + "/") for part in command], env=environment,
                                  cwd=self.folder, check=False, stdin=subprocess.DEVNULL, stdout=output,
                                  stderr=subprocess.PIPE, close_fds=False)
        type(self).runs += 1
        with open(out, "rb") as output:
            printed = output.read()
        reported = []
        if os.path.exists(report):
            with open(report, encoding="ascii") as file:
                reported = file.read().splitlines()
            os.remove(report)
        return done.returncode, printed, done.stderr.decode("utf-8", "replace"), reported

    def sweep(self, command, old=None, calls=CALLS, most=MOST):
        """Every call of each kind fails, in both modes."""
        old = old or {}
        self.put(old)
        old_content = self.content("target")
        code, printed, error, _ = self.run_once(command)
        self.assertIn(code, (0, 1), error)
        expected = (code, printed, {**self.content("target"), **self.content("temporary")})
        for call in calls:
            self.put(old)
            counted = self.run_once(command, call)[3]
            count = max(int(line.split()[1]) for line in counted if line.startswith("counted"))
            for mode in MODES:
                for number in self.numbers(count, most):
                    with self.subTest(" ".join(command[1:]), call=call, number=number, mode=mode):
                        self.put(old)
                        run = self.run_once(command, call, number, mode)
                        self.check(command, run, expected, old_content, call)
            if count > 0 and call in ("read", "write"):
                with self.subTest(" ".join(command[1:]), call=call, mode="short"):
                    self.put(old)
                    run = self.run_once(command, call, 1, "short")
                    left = {**self.content("target"), **self.content("temporary")}
                    self.assertTrue((*run[:2], left) == expected, run[2])
        self.assertTrue(self.content("source") == self.before)

    @staticmethod
    def numbers(count, most):
        # One more than there are: a run that is disturbed may make more calls than others.
        every = list(range(1, count + (2 if FULL else 1)))
        if FULL or count <= most:
            return every
        return sorted({every[round(place * (count - 1) / (most - 1))] for place in range(most)})

    def check(self, command, run, expected, old, call):
        code, printed, error, reported = run
        left = {**self.content("target"), **self.content("temporary")}
        self.assertGreaterEqual(code, 0, f"a crash; {error}")
        processes = sum(line.startswith("counted") for line in reported)
        self.assertGreaterEqual(processes, sum(line == "failed" for line in reported), "a crash of the converter")
        if code == expected[0]:
            # WHY not assertEqual: showing where two long texts differ takes minutes.
            self.assertTrue(printed == expected[1], f"other output, {len(printed)} bytes; {error}")
            if call not in REMOVING:
                self.assertTrue(left == expected[2], f"other files: {sorted(left)}; {error}")
            return
        # To the tool 1 is an answer, to the converter a failure.
        self.assertGreater(code, 1 if command[0] == Settings.tool else 0, error)
        if b'"command"' not in printed:
            self.assertNotEqual(error, "")
        for path, content in left.items():
            new = expected[2].get(path, b"")
            if path not in expected[2] and path not in old:
                self.assertIn(call, REMOVING, f"left: {path}; {error}")
            else:
                self.assertTrue(content in (new, old.get(path, new)), f"half of {path}; {error}")
        for path in old:
            self.assertIn(path, left, error)

    @classmethod
    def tearDownClass(cls):
        if os.environ.get("VOK_FAULT_FIGURES"):
            print(f"{cls.__name__}: {cls.runs} runs", file=sys.stderr)


def sweeps(**table):
    """Class decorator: every command becomes a test method."""
    def add(cls):
        for name, (command, old) in table.items():
            def disturbed(self, command=command, old=old):
                self.sweep([Settings.tool if command[0] == "tool" else Settings.converter, *command[1:]], old)

            setattr(cls, "test_" + name, disturbed)
        return cls
    return add


def tool(*arguments, **old):
    return ("tool", *arguments), {name.replace("_", "."): content for name, content in old.items()}


def converter(*arguments):
    return ("converter", *arguments), {}


@sweeps(
    cat_csv=tool("cat", "@source/t.csv"),
    head_of_unknown_extension=tool("head", "@source/first.txt"),
    cat_petrel=tool("cat", "@source/t.petrel", "--encoding", "CP1251"),
    cat_micromine=tool("cat", "@source/t.micromine"),
    cat_dbf=tool("cat", "@source/t.dbf"),
    cat_memos=tool("cat", "@source/memo.dbf"),
    cat_sqlite=tool("cat", "@source/t.sqlite", "--table", "t"),
    tables_of_petrel=tool("tables", "@source/t.petrel"),
    tables_of_sqlite=tool("tables", "@source/t.sqlite"),
    fields_of_csv=tool("fields", "@source/t.csv"),
    fields_of_micromine=tool("fields", "@source/t.micromine"),
    fields_of_dbf=tool("fields", "@source/memo.dbf"),
    count_json=tool("count", "@source/t.csv", "--json"),
    stats=tool("stats", "@source/t.csv"),
    stats_of_sqlite=tool("stats", "@source/t.sqlite", "--table", "t"),
    errors=tool("errors", "@source/t.csv"),
    doctor_of_petrel=tool("doctor", "@source/t.petrel"),
    find=tool("find", "@source/t.dbf", "--where", "WELL=W-7", "--show", "ROCK"),
)
class Reading(FaultTest):
    pass


@sweeps(
    csv_to_csv=tool("convert", "@source/t.csv", "@target/o.csv"),
    replaced_csv=tool("convert", "@source/t.csv", "@target/o.csv", "--force", o_csv=b"old;one\r\n"),
    csv_to_dbf=tool("convert", "@source/t.csv", "@target/o.dbf"),
    replaced_dbf=tool("convert", "@source/small.csv", "@target/o.dbf", "--force", o_dbf=b"old one", o_cpg=b"UTF-8"),
    csv_to_xlsx=tool("convert", "@source/small.csv", "@target/o.xlsx"),
    replaced_xlsx=tool("convert", "@source/t.csv", "@target/o.xlsx", "--force", o_xlsx=b"old one"),
    dbf_to_csv=tool("convert", "@source/memo.dbf", "@target/o.csv"),
    micromine_to_csv=tool("convert", "@source/t.micromine", "@target/o.csv"),
    petrel_to_csv=tool("convert", "@source/t.petrel", "@target/o.csv"),
    sqlite_to_csv=tool("convert", "@source/t.sqlite", "@target/o.csv", "--table", "t"),
    rejects=tool("convert", "@source/t.csv", "@target/o.csv", "--rejects", "@target/bad.csv"),
    replaced_rejects=tool("convert", "@source/small.csv", "@target/o.csv", "--rejects", "@target/bad.csv", "--force",
                          o_csv=b"old", bad_csv=b"old"),
    all_tables=tool("convert", "@source/t.sqlite", "@target/all", "--all-tables"),
    all_tables_as_dbf=tool("convert", "@source/t.sqlite", "@target/all", "--all-tables", "--to", "dbf"),
)
class Writing(FaultTest):
    pass


@sweeps(
    cat_xlsx=tool("cat", "@source/t.xlsx"),
    cat_xls=tool("cat", "@source/t.xls"),
    fields_of_xlsx=tool("fields", "@source/t.xlsx"),
    tables_of_xlsx=tool("tables", "@source/t.xlsx"),
    xlsx_to_csv=tool("convert", "@source/t.xlsx", "@target/o.csv", "--table", "One"),
    converter_list=converter("@source/t.xlsx", "-destFolder", "@target", "-tablelist"),
    converter_xlsx=converter("@source/t.xlsx", "-destFolder", "@target"),
    converter_merged=converter("@source/t.xlsx", "-destFolder", "@target", "-copyMerged"),
    converter_header=converter("@source/t.xlsx", "-destFolder", "@target", "-headers", "2"),
    converter_xls=converter("@source/t.xls", "-destFolder", "@target", "-copyMerged"),
    converter_bare_xls=converter("@source/bare.xls", "-destFolder", "@target"),
)
class Workbooks(FaultTest):
    pass


class Memory(FaultTest):
    """Every request for memory fails: those of SQLite, zlib and expat, too."""
    COMMANDS = (
        tool("cat", "@source/small.csv"),
        tool("errors", "@source/small.csv", "--json"),
        tool("stats", "@source/small.petrel"),
        tool("fields", "@source/t.micromine"),
        tool("count", "@source/small.dbf"),
        tool("cat", "@source/small.sqlite", "--table", "second"),
        tool("tables", "@source/small.sqlite"),
        tool("convert", "@source/small.csv", "@target/o.csv", "--rejects", "@target/bad.csv"),
        tool("convert", "@source/small.csv", "@target/o.dbf", "--force", o_dbf=b"old"),
        tool("convert", "@source/small.csv", "@target/o.xlsx"),
        tool("convert", "@source/small.sqlite", "@target/all", "--all-tables"),
        tool("tables", "@source/small.xlsx"),
        converter("@source/small.xlsx", "-destFolder", "@target", "-copyMerged"),
        converter("@source/t.xls", "-destFolder", "@target"),
    )

    def test_memory(self):
        for command, old in self.COMMANDS:
            program = Settings.tool if command[0] == "tool" else Settings.converter
            self.sweep([program, *command[1:]], old, ("malloc",), MOST_OF_MEMORY)


def main():
    parser = argparse.ArgumentParser()
    for name in ("tool", "converter", "faults"):
        parser.add_argument("--" + name, required=True)
    arguments, rest = parser.parse_known_args()
    for name, value in vars(arguments).items():
        setattr(Settings, name, value)
    unittest.main(module="__main__", argv=[sys.argv[0], *rest])


if __name__ == "__main__":
    main()
