#!/usr/bin/env python3
"""Access databases, drill-hole databases and workbooks through real ODBC drivers, each test with a configuration
of the driver manager of its own. mdb-export of mdbtools is the judge of every value.

Real databases are no part of the project: VOK_REAL_FILES names a folder that holds them in its subfolder access.
"""
import csv
import glob
import io
import os
import shutil
import sqlite3
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import CaseTest, Settings, main, run_tool  # noqa: E402

ACCESS_DRIVER = "Microsoft Access Driver (*.mdb, *.accdb)"


def library(name):
    found = glob.glob(f"/usr/lib/*/odbc/{name}") + glob.glob(f"/usr/lib*/odbc/{name}")
    return found[0] if found else None


MDBTOOLS = library("libmdbodbc.so")
SQLITE = library("libsqlite3odbc.so")


def real_databases():
    folder = os.path.join(os.environ.get("VOK_REAL_FILES", ""), "access")
    found = [os.path.join(path, name) for path, _, names in os.walk(folder) for name in names]
    return sorted(path for path in found if path.endswith((".mdb", ".accdb")))


class OdbcCase(CaseTest):
    """A configuration in files of the test's folder."""

    def configure(self, drivers="", sources=""):
        self.write({"etc/odbcinst.ini": drivers, "etc/odbc.ini": sources})
        # Text passes through the system's code page, and the databases hold letters of many.
        self.environment = {"ODBCSYSINI": self.path("etc"), "ODBCINI": self.path("etc/odbc.ini"), "LC_ALL": "C.UTF-8"}

    def configure_access(self):
        self.configure(f"[{ACCESS_DRIVER}]\nDriver={MDBTOOLS}\n",
                       f"[MS Access Database]\nDriver={ACCESS_DRIVER}\n")

    def tool(self, *arguments, code=0):
        run = run_tool(*arguments, cwd=self.folder, env=self.environment)
        self.assertEqual(run.code, code, run.err)
        return run

    def lines(self, *arguments, code=0):
        return self.tool(*arguments, code=code).out.decode("utf-8").splitlines()


@unittest.skipUnless(MDBTOOLS and shutil.which("mdb-export"), "mdbtools is not installed")
@unittest.skipUnless(real_databases(), "VOK_REAL_FILES names no folder with databases")
class RealDatabases(OdbcCase):
    """Every table of every database, value by value."""

    def judge(self, *command):
        """What a program of mdbtools prints; in UTF-8, since it reads its own command line by the locale."""
        return subprocess.run(command, env=dict(os.environ, LC_ALL="C.UTF-8"), capture_output=True,
                              check=True).stdout.decode("utf-8")

    def exported(self, path, table):
        text = self.judge("mdb-export", "-D", "%Y-%m-%d %H:%M:%S", "-T", "%Y-%m-%d %H:%M:%S", "-b", "hex", path, table)
        rows = list(csv.reader(io.StringIO(text, newline="")))
        # Rows whose values are all empty are left out here.
        rows = rows[:1] + [row for row in rows[1:] if any(row)]
        for character, word in (("\t", "\\t"), ("\n", "\\n"), ("\r", "\\r")):
            rows = [[value.replace(character, word) for value in row] for row in rows]
        return rows

    def is_readable(self, path):
        # Narrow text below Wine is UTF-8, which is not what Windows' own drivers take.
        return not Settings.is_windows() or all(table.isascii() for table in self.tables(path))

    def tables(self, path):
        return self.judge("mdb-tables", "-1", path).splitlines()

    def given(self, *arguments):
        return [line.split("\t") for line in self.tool("cat", *arguments).out.decode("utf-8").split("\n")[:-1]]

    def test_tables_and_values(self):
        self.configure_access()
        for path in real_databases():
            tables = self.tables(path)
            if not self.is_readable(path):
                continue
            with self.subTest(path):
                self.assertEqual(self.lines("tables", path, code=0), tables)
                for table in tables:
                    expected = self.exported(path, table)
                    rows = self.given(path, "--table", table)
                    # mdbtools' driver gives columns of type Binary as they are, mdb-export as digits.
                    raw = [i for i, name in enumerate(expected[0]) if name in ("BinAsc", "BinDsc")]
                    for row in expected[1:]:
                        for i in raw:
                            row[i] = bytes.fromhex(row[i]).decode("utf-8", "replace")
                    if not Settings.is_windows():
                        self.assertEqual(rows, expected, table)
                    self.assertEqual(len(rows), len(expected), table)
                    self.assertEqual(self.given(path, "--table", table, "--type", "dhdb"), rows)

    def test_types(self):
        self.configure_access()
        path = next((path for path in real_databases() if path.endswith("nwind.mdb")), None)
        if path is None:
            self.skipTest("nwind.mdb is not there")
        self.assertEqual(self.lines("fields", path, "--table", "Order Details"),
                         ["OrderID\tnumber", "ProductID\tnumber", "UnitPrice\tnumber", "Quantity\tnumber",
                          "Discount\tnumber"])
        self.assertEqual(self.lines("count", path, "--table", "Orders"), ["830"])
        self.assertEqual(len(self.lines("head", path, "--table", "Orders", "-n", "3")), 4)
        run = self.tool("cat", path, "--table", "Nothing", code=3)
        self.assertIn("name one of its tables with --table: Order Details, Orders", run.err)

    def test_names_of_files(self):
        self.configure_access()
        source = next(path for path in real_databases() if self.tables(path) and self.is_readable(path))
        names = [" a b.mdb", "a=b.mdb", "{a.mdb", "{a}.mdb", "a'b[].mdb"]
        if not Settings.is_windows():
            names += ["\u0431\u0430\u0437\u0430 \u0434\u0430\u043d\u043d\u044b\u0445.mdb", 'a"b.mdb']
        for name in names + [name.replace(".mdb", ".dhdb") for name in names]:
            with self.subTest(name):
                shutil.copy(source, self.path(name))
                self.assertEqual(self.lines("tables", name), self.tables(source))

    def test_the_file_is_the_one_that_was_named(self):
        # mdbtools alone opens the data source's own file.
        first, second = [path for path in real_databases() if self.tables(path) and self.is_readable(path)][:2]
        self.configure(f"[mdb]\nDriver={MDBTOOLS}\n", f"[access]\nDriver=mdb\nDatabase={first}\n"
                       f"[access by library]\nDriver={MDBTOOLS}\nDatabase={first}\n")
        self.assertEqual(self.lines("tables", second), self.tables(second))


@unittest.skipUnless(MDBTOOLS, "the mdbtools driver is not installed")
class Damage(OdbcCase):
    """Files that are no databases."""

    def test_no_database(self):
        self.configure_access()
        self.write({"t.mdb": "a;b\n1;2\n", "t.dhdb": "", "t.accdb": "\0" * 4096})
        for name in ("t.mdb", "t.dhdb", "t.accdb"):
            run = self.tool("cat", name, code=3)
            self.assertEqual(run.out, b"")
            self.assertIn(f"{name}", run.err)
        run = self.tool("cat", "t.mdb", code=3)
        self.assertIn("MS Access Database: the driver refuses the file and gives no reason", run.err)

    def test_doctor_of_a_file(self):
        self.configure_access()
        self.write({"t.mdb": "a;b\n1;2\n", "t.dhdb": ""})
        run = self.tool("doctor", "t.mdb", code=3)
        self.assertIn("connecting by MS Access Database\tthe driver refuses the file", run.out.decode("utf-8"))
        run = self.tool("doctor", "t.dhdb", code=3)
        self.assertIn(f"connecting by {ACCESS_DRIVER}\tworks", run.out.decode("utf-8"))
        self.assertIn("t.dhdb holds no table", run.err)


class Advice(OdbcCase):
    """What to do where nothing is set up for Access databases."""

    def test_the_package_is_named_where_its_driver_is_not_there(self):
        if Settings.is_windows():
            self.skipTest("another package there")
        self.write({"t.mdb": "x"})
        for drivers, words in (("", "hint: install the package odbc-mdbtools; a data source whose name"),
                               ("[MDBTools]\nDriver=libmdbodbc.so\n", "hint: a data source whose name holds")):
            self.configure(drivers)
            self.assertIn(words, self.tool("cat", "t.mdb", code=4).err)


@unittest.skipUnless(SQLITE, "the SQLite driver is not installed")
class Workbooks(OdbcCase):
    """A database of SQLite's driver in the place of a workbook."""

    def setUp(self):
        super().setUp()
        self.configure(f"[SQLite3]\nDriver={SQLITE}\n",
                       f"[Other]\nDriver=SQLite3\nDatabase={self.path('none.sqlite')}\n"
                       f"[My Excel files]\nDriver=SQLite3\nDatabase={self.path('book.sqlite')}\n")
        database = sqlite3.connect(self.path("book.sqlite"))
        database.execute('CREATE TABLE "Sheet1$"(WELL TEXT, X DOUBLE, N INTEGER)')
        database.executemany('INSERT INTO "Sheet1$" VALUES(?, ?, ?)',
                             [("W-1", 1.5, 1), ("", None, None), ("W-2", None, 2), ("W-3", 3.25, 3),
                              ("x" * 1000000, 4, 4)])
        database.commit()
        database.close()
        self.write({"wells.xlsx": "", "wells.XLSX": ""})
        self.arguments = ("wells.xlsx", "--type", "xls-odbc")

    def test_rows(self):
        self.assertEqual(self.lines("tables", *self.arguments), ["Sheet1$"])
        self.assertEqual(self.lines("fields", *self.arguments), ["WELL\ttext", "X\tnumber", "N\tnumber"])
        rows = self.lines("cat", *self.arguments)
        self.assertEqual(rows[:4], ["WELL\tX\tN", "W-1\t1.5\t1", "W-2\t\t2", "W-3\t3.25\t3"])
        self.assertEqual(rows[4], "x" * 1000000 + "\t4.0\t4")
        self.assertEqual(len(rows), 5)

    def test_rows_in_blocks(self):
        # SQLite holds text to no length, so a value may be longer than the driver says.
        rows = [(f"W-{i}", i * 0.5, i) for i in range(1000)]
        database = sqlite3.connect(self.path("book.sqlite"))
        for table, odd in (("short$", "short"), ("early$", "e" * 100000), ("late$", "\u0416" * 5000)):
            database.execute(f'CREATE TABLE "{table}"(WELL VARCHAR(10), X DOUBLE, N INTEGER)')
            values = list(rows)
            values[3 if table == "early$" else 700] = (odd, None, 7)
            database.executemany(f'INSERT INTO "{table}" VALUES(?, ?, ?)', values)
            database.commit()
            if Settings.is_windows() and not odd.isascii():
                continue  # narrow text below Wine is UTF-8, which is not what Windows' own drivers take
            expected = ["\t".join("" if value is None else str(value) for value in row) for row in values]
            self.assertEqual(self.lines("cat", *self.arguments, "--table", table), ["WELL\tX\tN"] + expected)
        database.close()

    def test_positions(self):
        rows = self.lines("cat", *self.arguments, "--header-row", "none")
        self.assertEqual(rows[:3], ["F0\tF1\tF2", "WELL\tX\tN", "W-1\t1.5\t1"])
        rows = self.lines("cat", *self.arguments, "--data-row", "4")
        self.assertEqual(rows[:2], ["WELL\tX\tN", "W-2\t\t2"])

    def test_capitals_take_any_data_source(self):
        # The first one has no file, and none must be made for it.
        self.assertEqual(self.lines("tables", "wells.XLSX", "--type", "xls-odbc"), ["Sheet1$"])
        self.assertNotIn("none.sqlite", self.content())

    def test_without_an_extension(self):
        self.write({"wells": ""})
        run = self.tool("cat", "wells", "--type", "xls-odbc", code=3)
        self.assertIn("without an extension its kind cannot be told", run.err)


class Missing(OdbcCase):
    """Machines that lack something: exit code 4 and what to install."""

    def setUp(self):
        super().setUp()
        self.write({"t.mdb": "x", "t.accdb": "x", "t.dhdb": "x", "t.xlsx": "x"})

    def test_nothing_is_there(self):
        self.configure()
        for name in ("t.mdb", "t.accdb", "t.dhdb"):
            run = self.tool("cat", name, code=4)
            self.assertEqual(run.out, b"")
            self.assertIn(f"cannot open {name}: this machine has no ODBC driver for it", run.err)
            self.assertIn("hint: install the", run.err)
        run = self.tool("cat", "t.xlsx", "--type", "xls-odbc", code=4)
        self.assertIn('a data source whose name holds "excel"', run.err)

    def test_a_driver_that_cannot_be_loaded(self):
        self.configure(f"[{ACCESS_DRIVER}]\nDriver=/nowhere/lost.so\n",
                       f"[Access files]\nDriver={ACCESS_DRIVER}\n")
        for name, way in (("t.mdb", "Access files"), ("t.dhdb", ACCESS_DRIVER)):
            run = self.tool("cat", name, code=4)
            self.assertIn(f"  {way}: ", run.err)
            self.assertIn("lost.so", run.err)
            self.assertIn("hint: install the", run.err)

    def test_a_data_source_without_a_driver(self):
        self.configure("", "[access]\nDriver=gone\n")
        self.assertIn("access: ", self.tool("cat", "t.mdb", code=4).err)

    def test_paths_that_no_driver_is_told(self):
        self.configure(f"[{ACCESS_DRIVER}]\nDriver=/nowhere/lost.so\n", f"[access]\nDriver={ACCESS_DRIVER}\n")
        self.write({"a;b.mdb": "x", "a;b.dhdb": "x"})
        for name in ("a;b.mdb", "a;b.dhdb"):
            run = self.tool("cat", name, code=3)
            self.assertIn("a path with a semicolon cannot be told to a driver", run.err)
            self.assertNotIn("hint: install", run.err)

    def test_a_path_that_the_code_page_lacks(self):
        self.configure(f"[{ACCESS_DRIVER}]\nDriver=/nowhere/lost.so\n", f"[access]\nDriver={ACCESS_DRIVER}\n")
        self.write({"\u4e2d.mdb": "x"})
        run = self.tool("cat", "\u4e2d.mdb", "--system-encoding", "CP1251", code=3)
        self.assertIn("  access: the path holds characters that the system's code page 1251 lacks; rename", run.err)

    def test_types_and_extensions(self):
        self.configure()
        self.write({"t.xls": "x", "t.dat": "x", "dhdb": "x"})
        excel, access, any_source = (f'source whose name holds "{word}"' for word in ("excel", "access", ""))
        for name, kind, needs in (("t.xls", "xls-odbc", excel), ("t.xlsx", "xls-odbc", excel),
                                  ("t.xls", "access", excel), ("t.mdb", "access", access),
                                  ("t.accdb", "xls-odbc", access), ("t.dat", "access", any_source),
                                  ("t.mdb", "dhdb", ACCESS_DRIVER), ("dhdb", "dhdb", ACCESS_DRIVER)):
            run = self.tool("cat", name, "--type", kind, code=4)
            self.assertIn(f"cannot open {name}: this machine has no ODBC driver for it", run.err)
            self.assertIn(needs, run.err)

    def test_no_converter_beside_the_tool(self):
        if Settings.is_windows():
            self.skipTest("the program needs the libraries beside it")
        self.configure()
        run = self.run_copy("cat", "t.xlsx", env=self.environment)
        self.assertEqual((run.code, run.out), (4, b""))
        self.assertIn("cannot open t.xlsx: this machine has no ODBC driver for it\n", run.err)
        self.assertIn("hint: install the converter vok_xls2csv.exe beside vok_table, or an ODBC driver", run.err)
        out = self.run_copy("doctor", env=self.environment).out.decode("utf-8")
        found = dict(line.split("\t") for line in out.splitlines())
        self.assertEqual(found["converter"], self.path("vok_xls2csv.exe") + " is missing")
        self.assertEqual(found["spreadsheets by converter (.xls, .xlsx, .xlsm)"],
                         "put vok_xls2csv.exe there, which comes with this program")

    def test_a_pipe_is_not_waited_for(self):
        if Settings.is_windows():
            self.skipTest("there are no named pipes in folders")
        self.configure(f"[{ACCESS_DRIVER}]\nDriver={MDBTOOLS}\n", f"[access]\nDriver={ACCESS_DRIVER}\n")
        os.mkfifo(self.path("t.fifo.mdb"))
        self.assertIn("not pipes and devices", self.tool("tables", "t.fifo.mdb", code=3).err)

    def test_a_missing_file_is_said_first(self):
        self.configure()
        self.assertIn("there is no such file", self.tool("cat", "gone.mdb", code=3).err)


class Doctor(OdbcCase):
    """What the machine has."""

    def found(self, *arguments, code=0):
        rows = [line.split("\t") for line in self.lines("doctor", *arguments, code=code)]
        self.assertEqual(rows[0], ["what", "found"])
        return [tuple(row) for row in rows[1:]]

    def test_an_empty_machine(self):
        self.configure()
        found = dict(self.found())
        self.assertTrue(found["ODBC driver manager"].startswith(("unixODBC 0", "odbc32")))
        self.assertEqual((found["ODBC driver"], found["ODBC data source"]), ("none", "none"))
        self.assertIn("vok_xls2csv.exe", found["converter"])
        self.assertIn("locale", found)
        self.assertTrue(found["system code page"].isdigit())
        for kind in ("Access databases (.mdb, .accdb)", "drill-hole databases (.dhdb)",
                     "spreadsheets by ODBC (.xls, .xlsx)"):
            self.assertTrue(found[kind].startswith("install the"), found[kind])

    def test_a_machine_with_entries(self):
        self.configure(f"[{ACCESS_DRIVER}]\nDriver=/a.so\n[Second]\nDriver=/b.so\n",
                       "[One ACCESS]\nDriver=Second\n[Two excel]\nDriver=Second\n")
        found = self.found()
        self.assertEqual([name for what, name in found if what == "ODBC driver"], [ACCESS_DRIVER, "Second"])
        self.assertEqual([name for what, name in found if what == "ODBC data source"],
                         ["One ACCESS", "Two excel"])
        self.assertEqual(dict(found)["Access databases (.mdb, .accdb)"], "ready: One ACCESS")
        self.assertEqual(dict(found)["spreadsheets by ODBC (.xls, .xlsx)"], "ready: Two excel")

    def test_locales(self):
        if Settings.is_windows():
            self.skipTest("Wine has settings of its own")
        self.configure()
        for settings, shown in (({"LC_ALL": "C.UTF-8"}, "LC_ALL=C.UTF-8"), ({"LC_CTYPE": "ru_RU"}, "LC_CTYPE=ru_RU"),
                                ({"LC_ALL": "", "LANG": "C"}, "LANG=C"), ({}, "none is set"),
                                ({"LC_ALL": "", "LC_CTYPE": "", "LANG": ""}, "none is set")):
            self.environment.update({"LC_ALL": None, "LC_CTYPE": None, "LANG": None, **settings})
            self.assertEqual(dict(self.found())["locale"], shown)

    def test_a_type_that_is_none(self):
        self.configure()
        self.write({"t.csv": "a\n"})
        run = self.tool("doctor", "t.csv", "--type", "ods", code=2)
        self.assertIn(b"ODBC driver manager\t", run.out)
        self.assertIn('error: there is no type "ods"', run.err)

    def test_no_table(self):
        self.configure()
        self.write({"t.sqlite": ""})
        self.assertIn("t.sqlite holds no table that can be listed", self.tool("doctor", "t.sqlite", code=3).err)

    def test_files(self):
        self.configure()
        self.write({"t.csv": "a;b\n1;2\n", "t.mdb": "x"})
        self.assertIn(("table", "csv"), self.found("t.csv"))
        run = self.tool("doctor", "t.mdb", code=4)
        self.assertIn("this machine has no ODBC driver for it", run.err)
        self.assertIn("there is no such file", self.tool("doctor", "gone.mdb", code=3).err)


if __name__ == "__main__":
    main()
