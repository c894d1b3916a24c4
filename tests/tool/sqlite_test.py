#!/usr/bin/env python3
"""SQLite databases: the tool's commands, and Python's own sqlite3 module as the judge of every value."""
import importlib.util
import os
import random
import sqlite3
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import CaseTest, Settings, main, run_tool  # noqa: E402


def escaped(text):
    """A value as the tool writes it into a line of a pipe."""
    for character, word in (("\t", "\\t"), ("\n", "\\n"), ("\r", "\\r")):
        text = text.replace(character, word)
    return text


class SqliteCase(CaseTest):
    """Tables of values, compared with what the engine of Python gives for the same query as text."""

    def tool(self, *arguments, code=0):
        run = run_tool(*arguments, cwd=self.folder)
        self.assertEqual(run.code, code, run.err)
        return run

    def lines(self, *arguments):
        return self.tool(*arguments).out.decode("utf-8").splitlines()

    def expected_rows(self, path, table):
        database = sqlite3.connect(path)
        names = [row[1] for row in database.execute(f"PRAGMA table_info('{table}')")]
        columns = ", ".join(f'CAST("{name}" AS TEXT)' for name in names)
        rows = [["" if value is None else value for value in row]
                for row in database.execute(f"SELECT {columns} FROM {table}")]
        database.close()
        return [names, *rows]

    def check_table(self, path, table):
        run = self.tool("cat", path, "--table", table)
        self.assertEqual(run.err, "")
        given = [line.split("\t") for line in run.out.decode("utf-8").split("\n")[:-1]]
        self.assertEqual(given, [[escaped(value) for value in row] for row in self.expected_rows(path, table)])


class Example(SqliteCase):
    """The example database and the script that makes it."""

    def path_of_example(self):
        return os.path.join(Settings.source, "examples", "project.well2")

    def test_every_value_is_that_of_python(self):
        for table in ("well_base", "Каротаж_101", "Каротаж_102", "log_w12", "Скважины"):
            self.check_table(self.path_of_example(), table)

    def test_the_script_makes_the_same_database(self):
        found = importlib.util.spec_from_file_location(
            "make_project_database", os.path.join(Settings.source, "examples", "make_project_database.py"))
        script = importlib.util.module_from_spec(found)
        found.loader.exec_module(script)
        script.make(self.path("made.well2"))
        self.assertEqual(*[list(sqlite3.connect(path).iterdump())
                           for path in (self.path_of_example(), self.path("made.well2"))])

    def test_tables(self):
        self.assertEqual(self.lines("tables", self.path_of_example()),
                         ["well_base", "sqlite_sequence", "Каротаж_101", "Каротаж_102", "log_w12", "Скважины"])

    def test_fields(self):
        self.assertEqual(self.lines("fields", self.path_of_example(), "--table", "Каротаж_101"),
                         ["Глубина\tnumber", "ГК\tnumber", "Пористость\ttext", "Порода\ttext"])

    def test_head_and_count(self):
        self.assertEqual(len(self.lines("head", self.path_of_example(), "--table", "log_w12", "-n", "3")), 4)
        self.assertEqual(self.lines("count", self.path_of_example(), "--table", "log_w12"), ["8"])

    def test_find(self):
        self.assertEqual(self.lines("find", self.path_of_example(), "--table", "well_base", "--where",
                                    "field=Северная", "--show", "name"), ["101-Р", "102-Р"])

    def test_convert(self):
        self.tool("convert", self.path_of_example(), "out.csv", "--table", "well_base")
        with open(self.path("out.csv"), "rb") as file:
            rows = file.read().decode("cp1251").split("\r\n")
        self.assertIn("2;102-Р;Северная;Восток", rows)

    def test_no_table_is_named(self):
        run = self.tool("cat", self.path_of_example(), code=3)
        self.assertIn(": the table to read was not named\n", run.err)
        self.assertIn("name one of its tables with --table: well_base, sqlite_sequence, Каротаж_101", run.err)

    def test_more_tables_than_are_named(self):
        for count, end in ((8, ": " + ", ".join(f"t{i}" for i in range(8))), (9, ", t7 ...")):
            with open(self.path("t.sqlite"), "wb") as file:
                file.write(database(*((f"t{i}", "a", []) for i in range(count))))
            run = self.tool("cat", "t.sqlite", code=3)
            self.assertTrue(run.err.endswith(end + "\n"), run.err)

    def test_a_table_that_is_not_there(self):
        for command in ("cat", "fields", "head", "count"):
            run = self.tool(command, self.path_of_example(), "--table", "нет", code=3)
            self.assertIn(': it holds no table "нет"\n', run.err)
            self.assertIn("name one of its tables", run.err)


class Generated(SqliteCase):
    """Databases of random values in every type, in both encodings of the engine."""

    def value(self, numbers):
        letters = "aZ0 .;\"'\\\t\n\rЖя€😀\u00a0"
        kind = numbers.randrange(7)
        if kind == 0:
            return None
        if kind == 1:
            return numbers.choice((0, -1, 2**31, -2**63, 2**63 - 1, numbers.randrange(10**6)))
        if kind == 2:
            return numbers.choice((0.0, -0.0, 1e300, 1e-7, 0.1, 1 / 3, 123456789.125, float("inf"),
                                   numbers.uniform(-1e4, 1e4), float(numbers.randrange(1000))))
        if kind == 3:
            return numbers.choice((b"", b"AB", "Ж".encode("utf-8")))
        return "".join(numbers.choice(letters) for _ in range(numbers.choice((0, 1, 5, 20, 300))))

    def make(self, path, seed, encoding, journal):
        numbers = random.Random(seed)
        database = sqlite3.connect(path)
        database.execute(f"PRAGMA encoding='{encoding}'")
        database.execute(f"PRAGMA journal_mode={journal}")
        database.execute('CREATE TABLE t(a INTEGER, b REAL, c TEXT, "г" NUMERIC, e, f BLOB)')
        # In UTF-16 a blob is no UTF-8 text.
        rows = [[self.value(numbers) for _ in range(6)] for _ in range(200)]
        if encoding != "UTF-8":
            rows = [["" if isinstance(value, bytes) else value for value in row] for row in rows]
        database.executemany("INSERT INTO t VALUES(?, ?, ?, ?, ?, ?)", rows)
        database.commit()
        database.close()

    def test_values(self):
        for seed in range(6):
            for encoding in ("UTF-8", "UTF-16le"):
                path = self.path(f"{seed}{encoding}.sqlite")
                self.make(path, seed, encoding, "WAL" if seed % 2 else "DELETE")
                with open(path, "rb") as file:
                    before = file.read()
                run_tool("cat", path, "--table", "t")
                with open(path, "rb") as file:
                    self.assertEqual(file.read(), before)
                self.assertFalse([name for name in os.listdir(self.folder) if name.endswith(("-wal", "-shm"))])
                self.check_table(path, "t")

    def test_a_text_file_of_that_name(self):
        self.write({"t.sqlite": "a;b\n1;2\n"})
        run = self.tool("cat", "t.sqlite", code=3)
        self.assertEqual(run.out, b"")
        self.assertIn("cannot read t.sqlite", run.err)
        run = self.tool("tables", "t.sqlite", code=3)
        self.assertEqual(run.out, b"")
        self.assertIn("cannot read t.sqlite", run.err)
        self.assertEqual(self.content(), {"t.sqlite": b"a;b\n1;2\n"})

    def test_tables_of_a_database_without_any(self):
        sqlite3.connect(self.path("t.sqlite")).executescript("PRAGMA user_version=1")
        run = self.tool("tables", "t.sqlite")
        self.assertEqual((run.out, run.err), (b"", ""))

    LOCKED = ("vok_table: error: cannot read t.sqlite: another program has it locked, or it is damaged; close programs "
              "that use it and try again\n")

    def test_a_table_whose_name_is_no_word(self):
        self.write({"t.sqlite": database(("wells", "a", [["of wells"]]), ("wells new", "a", [["its own"]]),
                                         ("odd", '"a""b"', [["x"]]))})
        run = self.tool("cat", "t.sqlite", "--table", "odd", code=3)
        self.assertIn('table "odd": its content is not what was expected', run.err)
        self.assertEqual(self.lines("cat", "t.sqlite", "--table", "wells"), ["a", "of wells"])
        self.assertEqual(self.lines("fields", "t.sqlite", "--table", "wells new"), ["a\ttext"])
        run = self.tool("cat", "t.sqlite", "--table", "wells new", code=3)
        self.assertEqual(run.out, b"")
        self.assertEqual(run.err, 'vok_table: error: cannot read t.sqlite, table "wells new": rows are read of tables '
                                  "alone whose name is one word of letters, digits, _ and $; a view of such a name can "
                                  "stand for it\n")

    def test_a_database_that_another_program_has_locked(self):
        if Settings.is_windows():
            self.skipTest("this program's locks are those of another system")
        database = sqlite3.connect(self.path("t.sqlite"), isolation_level=None)
        database.executescript("CREATE TABLE t(a); BEGIN EXCLUSIVE")
        for command in (["tables", "t.sqlite"], ["cat", "t.sqlite", "--table", "t"]):
            run = self.tool(*command, code=3)
            self.assertEqual((run.out, run.err), (b"", self.LOCKED))
        database.close()
        self.assertEqual(self.tool("tables", "t.sqlite").out, b"t\n")

    def test_a_database_that_is_damaged(self):
        whole = database(("t", "a", [["x" * 5000]]))
        for content in (whole[:-100], whole[:16] + b"\xFF" * (len(whole) - 16)):
            for journal in ({}, {"t.sqlite-journal": b""}, {"t.sqlite-journal": b"\0" * 512}):
                self.write({"t.sqlite": content, **journal})
                for command in (["tables", "t.sqlite"], ["cat", "t.sqlite", "--table", "t"]):
                    self.assertEqual(self.tool(*command, code=3).err, self.LOCKED)

    def test_changes_that_are_not_finished(self):
        changing = sqlite3.connect(self.path("of.sqlite"), isolation_level=None)
        changing.executescript("CREATE TABLE t(a); PRAGMA cache_size=5")
        changing.executemany("INSERT INTO t VALUES(?)", [["x" * 500]] * 500)
        changing.executescript("BEGIN; UPDATE t SET a = 'y' || a")
        left = {name.replace("of.", "t."): content for name, content in self.content().items()}
        changing.close()
        self.assertIn("t.sqlite-journal", left)
        self.write(left)
        for command in (["tables", "t.sqlite"], ["cat", "t.sqlite", "--table", "t"]):
            run = self.tool(*command, code=3)
            self.assertEqual((run.out, run.err),
                             (b"", "vok_table: error: cannot read t.sqlite: the changes in t.sqlite-journal are not "
                                   "finished: another program is writing them, or broke off; let one that may write "
                                   "the database open it\n"))
        self.assertEqual({name: self.content()[name] for name in left}, left)
        # That is what such a program does.
        again = sqlite3.connect(self.path("t.sqlite"))
        self.assertEqual(again.execute("SELECT count(*) FROM t WHERE a LIKE 'x%'").fetchone(), (500,))
        again.close()
        self.assertEqual(self.tool("count", "t.sqlite", "--table", "t").out, b"500\n")

    def test_a_missing_file_is_not_created(self):
        run = self.tool("cat", "t.sqlite", "--table", "t", code=3)
        self.assertIn("there is no such file", run.err)
        self.assertEqual(self.content(), {})


if __name__ == "__main__":
    main()
