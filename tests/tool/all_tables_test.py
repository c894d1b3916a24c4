#!/usr/bin/env python3
"""convert --all-tables: a file for every table, names that every system takes, nothing replaced unasked."""
import os
import signal
import sqlite3
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import (Case, CaseTest, Settings, cases, main, posix_only, run_tool,  # noqa: E402
                        skip_for_windows)
import workbooks  # noqa: E402

TITLES = "table\tfile\trows\trejected\tchanged\tcode\n"
ALL = ["convert", "t.sqlite", "out", "--all-tables"]
AB = {"t.csv": "a;b\n1;2\n"}
ONE = "{} is for one table: leave it out, or leave out --all-tables\n"


@cases(
    Case("a source of one table bears its file's name", ["convert", "t.csv", "out", "--all-tables"],
         TITLES + "csv\tout/t.csv\t1\t0\t0\t0\n", files=AB, leaves={**AB, os.path.join("out", "t.csv"): b"a;b\r\n1;2\r\n"}),
    Case("a separator at the end", ["convert", "t.csv", "out/", "--all-tables"],
         TITLES + "csv\tout/t.csv\t1\t0\t0\t0\n", files=AB, leaves={**AB, os.path.join("out", "t.csv"): b"a;b\r\n1;2\r\n"}),
    Case("a separator of the other kind at the end", ["convert", "t.csv", "out\\", "--all-tables"],
         TITLES + "csv\tout\\t.csv\t1\t0\t0\t0\n", files=AB,
         leaves={**AB, os.path.join("out", "t.csv"): b"a;b\r\n1;2\r\n"}),
    Case("a name that is an extension", ["convert", ".csv", "out", "--all-tables"],
         TITLES + "csv\tout/_.csv\t1\t0\t0\t0\n", files={".csv": "a\n1\n"},
         leaves={".csv": "a\n1\n", os.path.join("out", "_.csv"): b"a\r\n1\r\n"}),
    Case("a header row that is not there", ["convert", "t.csv", "out", "--all-tables", "--header-row", "9"],
         TITLES + "csv\tout/t.csv\t\t\t\t3\n",
         ['warning: table "csv" of t.csv holds no fields: there is nothing to write\n'], 3, AB),
    Case("the target is a file", ["convert", "t.csv", "x", "--all-tables"], "",
         ["error: x is a file: name a folder, in which every table gets its own file\n"], 5, {**AB, "x": ""}),
    Case("the folder around it is missing", ["convert", "t.csv", "no/out", "--all-tables"], "",
         ["error: cannot create the folder no/out: check that the one around it exists"], 5, AB),
    Case("the source lies in the folder", ["convert", "t.csv", ".", "--all-tables", "--force"], "",
         ["error: ./t.csv is both the source and the target"], 2, AB),
    Case("no folder", ["convert", "t.csv", "", "--all-tables"], "", ["the name of the target folder is empty"], 2, AB),
    Case("an unknown format", ["convert", "t.csv", "out", "--all-tables", "--to", "mdb"], "",
         ['error: --to "mdb" is no format of a target: the formats are csv, xlsx, dbf\n'], 2, AB),
    Case("a format without --all-tables", ["convert", "t.csv", "out", "--to", "csv"], "",
         ["error: --to is for --all-tables: otherwise the target's extension names the format\n"], 2, AB),
    *(Case(f"with {option}", ["convert", "t.csv", "out", "--all-tables", option, "a"], "", [ONE.format(option)], 2, AB)
      for option in ("--table", "--select", "--fields", "--rejects")),
    Case("missing source", ["convert", "no.sqlite", "out", "--all-tables"], "", ["there is no such file"], 3),
    Case("an empty database", ALL, "", ["error: t.sqlite holds no tables: there is nothing to write\n"], 3,
         {"t.sqlite": ""}),
)
class Refusals(CaseTest):
    pass


class Databases(CaseTest):
    def make(self, *tables):
        """A database of tables with one field and one row, which holds the table's name."""
        database = sqlite3.connect(self.path("t.sqlite"))
        for number, name in enumerate(tables):
            quoted = '"' + name.replace('"', '""') + '"'
            database.execute(f"CREATE TABLE {quoted} (a TEXT)")
            database.execute(f"INSERT INTO {quoted} VALUES (?)", (str(number),))
        database.commit()
        database.close()

    def written(self, folder="out"):
        return {name: self.content()[os.path.join(folder, name)] for name in os.listdir(self.path(folder))}

    def test_every_table(self):
        self.make("wells", "Каротаж_101")
        run = run_tool(*ALL, cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(run.out.decode(), TITLES + "wells\tout/wells.csv\t1\t0\t0\t0\n"
                                                    "Каротаж_101\tout/Каротаж_101.csv\t1\t0\t0\t0\n")
        self.assertEqual(self.written(), {"wells.csv": b"a\r\n0\r\n", "Каротаж_101.csv": b"a\r\n1\r\n"})

    def test_other_formats(self):
        self.make("wells", "logs")
        for form in ("xlsx", "dbf"):
            run = run_tool("convert", "t.sqlite", form, "--all-tables", "--to", form, "--system-encoding", "CP1251",
                           cwd=self.folder)
            self.assertEqual((run.code, run.err), (0, ""))
            self.assertEqual(set(self.written(form)), {"wells." + form, "logs." + form})
            run = run_tool("cat", f"{form}/logs.{form}", cwd=self.folder)
            self.assertEqual(run.out, b"a\n1\n")

    def test_names_that_are_none(self):
        expected = {"a/b\\c": "a_b_c", "d:e*f?": "d_e_f_", "x|<>\"y": "x____y", "..": "__",
                    "con": "_con", "NUL.txt": "_NUL.txt", "Com1": "_Com1", "lpt\u00b9": "_lpt\u00b9", "common": "common",
                    "comb": "comb",
                    "-n": "_n", "tab\there": "tab_here", "new\nline": "new_line", "\u202eabc": "_abc",
                    "Ж" * 150: "Ж" * 100, "a.b.": "a.b_", "井": "井"}
        self.make(*expected)
        run = run_tool(*ALL, cwd=self.folder)
        # Names that no query takes as they stand cannot be read: their files are named all the same.
        found = [line.split("\t")[1] for line in run.out.decode().splitlines()[1:]]
        self.assertEqual(found, [f"out/{name}.csv" for name in expected.values()])
        self.assertEqual((run.code, "table \"a/b\\c\"" in run.err), (3, True))
        self.assertEqual(self.written()["_con.csv"], b"a\r\n4\r\n")

    def test_names_that_are_alike(self):
        self.make("a?", "a*", "A_", "a__2", "Ж", "a|")
        run = run_tool(*ALL, cwd=self.folder)
        found = [line.split("\t")[1] for line in run.out.decode().splitlines()[1:]]
        self.assertEqual(found, ["out/a_.csv", "out/a__3.csv", "out/A__4.csv", "out/a__2.csv", "out/Ж.csv", "out/a__5.csv"])

    def test_nothing_is_replaced_unasked(self):
        self.make("a", "b", "c")
        self.write({"out/b.csv": "old"})
        run = run_tool(*ALL, cwd=self.folder)
        self.assertEqual((run.code, run.out), (5, b""))
        self.assertIn("error: out/b.csv exists already: name another target, or replace it with --force\n", run.err)
        self.assertEqual(self.written(), {"b.csv": b"old"})
        run = run_tool(*ALL, "--force", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(set(self.written()), {"a.csv", "b.csv", "c.csv"})
        self.assertEqual(self.written()["b.csv"], b"a\r\n1\r\n")

    def test_one_that_cannot_be_written_stops_no_other(self):
        self.make("a", "b", "c")
        database = sqlite3.connect(self.path("t.sqlite"))
        database.execute("UPDATE b SET a = '中'")
        database.commit()
        database.close()
        run = run_tool(*ALL, "--strict", cwd=self.folder)
        self.assertEqual(run.code, 5)
        self.assertIn("nothing was written: out/b.csv cannot hold 1 value unchanged", run.err)
        self.assertEqual([line.split("\t")[-1] for line in run.out.decode().splitlines()], ["code", "0", "5", "0"])
        self.assertEqual(set(self.written()), {"a.csv", "c.csv"})
        run = run_tool(*ALL, "--force", cwd=self.folder)
        self.assertEqual(run.code, 1)
        self.assertIn("b\tout/b.csv\t1\t0\t1\t1\n", run.out.decode())

    @posix_only
    @skip_for_windows("names are no bytes there")
    def test_a_name_with_a_byte_that_is_no_character(self):
        name = os.fsdecode(b"a\xffb.csv")
        self.write({name: "a\n1\n"})
        run = run_tool("convert", name, "out", "--all-tables", cwd=self.folder)
        self.assertEqual((run.code, run.err, self.written()), (0, "", {"a_b.csv": b"a\r\n1\r\n"}))

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted(self):
        self.write({"t.sqlite": database(("a", "a TEXT", [["1"]]), ("b", "a TEXT", [[str(i)] for i in range(200000)]),
                                         ("c", "a TEXT", [["3"]]))})
        os.mkdir(self.path("temp"))

        def has_begun():
            return os.path.exists(self.path("out/a.xlsx")) and os.listdir(self.path("temp"))
        with subprocess.Popen([*Settings.tool, *ALL, "--to", "xlsx"], cwd=self.folder,
                              env={**os.environ, "TEMP": self.path("temp")}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as tool:
            while tool.poll() is None and not has_begun():
                time.sleep(0.001)
            tool.send_signal(signal.SIGINT)
            out, message = tool.communicate()
        self.assertEqual((tool.returncode, message), (5, b"vok_table: error: interrupted: out/b.xlsx was not written\n"))
        self.assertEqual([line.split("\t")[0] for line in out.decode().splitlines()], ["table", "a", "b"])
        self.assertEqual((list(self.written()), os.listdir(self.path("temp"))), (["a.xlsx"], []))

    def test_a_folder_made_for_nothing_goes_again(self):
        self.make("a")
        database = sqlite3.connect(self.path("t.sqlite"))
        database.execute("UPDATE a SET a = '中'")
        database.commit()
        database.close()
        run = run_tool(*ALL, "--strict", cwd=self.folder)
        self.assertEqual((run.code, os.path.exists(self.path("out"))), (5, False))


class Workbooks(CaseTest):
    def test_every_sheet(self):
        rows = {name: "".join(f'<row r="{n}">{workbooks.cell(f"A{n}", value)}</row>' for n, value in enumerate(values, 1))
                for name, values in {"One": (1, 2), "Two": (3, 4, 5), "Three": ()}.items()}
        self.write({"book.xlsx": workbooks.book({name: workbooks.sheet(row) for name, row in rows.items()})})
        run = run_tool("convert", "book.xlsx", "out", "--all-tables", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.content()[os.path.join("out", "Two.csv")], b"3\r\n4\r\n5\r\n")
        self.assertEqual([line.split("\t")[2] for line in run.out.decode().splitlines()], ["rows", "1", "2", "0"])


if __name__ == "__main__":
    main()
