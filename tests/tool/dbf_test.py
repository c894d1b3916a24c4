#!/usr/bin/env python3
"""DBF files: types chosen from the data, what such a file cannot hold, the system's code page; and what
dbfread and ogrinfo, where they are installed, read of the same files."""
import json
import os
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import CaseTest, main, posix_only, run_tool, skip_for_windows  # noqa: E402

try:
    import dbfread
except ImportError:
    sys.path.append("/usr/lib/python3/dist-packages")
    try:
        import dbfread
    except ImportError:
        dbfread = None

WELLS = "WELL;DEPTH;DAY;ID;NOTE\n101;1250.5;2024-02-29;007;Жила\n102;-98;1999-12-31;010;\n103;;;1e5;a,b\n"
PAGE = ["--system-encoding", "CP1251"]
UTF8 = ["--system-encoding", "UTF-8"]


class Conversion(CaseTest):
    def convert(self, source, *options, target="out.dbf"):
        self.write({"t.csv": source})
        return run_tool("convert", "t.csv", target, *PAGE, *options, cwd=self.folder)

    def fields(self):
        """Name, letter, length and decimals of every field of out.dbf."""
        with open(self.path("out.dbf"), "rb") as file:
            data = file.read()
        found = []
        for at in range(32, int.from_bytes(data[8:10], "little") - 1, 32):
            name = data[at:at + 11].split(b"\0")[0].decode("ascii")
            found.append(f"{name} {chr(data[at + 11])}{data[at + 16]}.{data[at + 17]}")
        return found

    def cat(self, *options):
        run = run_tool("cat", "out.dbf", *(options or PAGE), cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        return run.out.decode("utf-8")

    def test_types_and_widths_come_from_the_data(self):
        run = self.convert(WELLS)
        self.assertEqual((run.code, run.err, run.out), (0, "", b""))
        self.assertEqual(self.fields(), ["WELL N3.0", "DEPTH N6.1", "DAY D8.0", "ID C3.0", "NOTE C4.0"])
        self.assertEqual(self.cat(), "WELL\tDEPTH\tDAY\tID\tNOTE\n101\t1250.5\t2024-02-29\t007\tЖила\n"
                                     "102\t-98.0\t1999-12-31\t010\t\n103\t\t\t1e5\ta,b\n")

    def test_what_is_no_plain_number_and_no_day(self):
        day = "2024-02-28"
        for values, field in (
                (["1."], "C2.0"), (["1.x"], "C3.0"), (["1.5x"], "C4.0"), ([".5"], "C2.0"), (["-"], "C1.0"),
                (["-0"], "C2.0"), (["-0.0"], "C4.0"), (["-5", "0.0"], "N4.1"), (["00"], "C2.0"),
                (["9" * 20], "N20.0"), (["9" * 21], "C21.0"), (["9" * 18, "0.12345678"], "C18.0"),
                ([day], "D8.0"), ([day, "abcdefghij"], "C10.0"), ([day, "2024-02x28"], "C10.0"),
                ([day, "2024-0a-28"], "C10.0"), ([day, "0000-02-28"], "C10.0"), ([day, "2024-00-28"], "C10.0"),
                ([day, "2024-02-00"], "C10.0"), ([day, "2024-02-30"], "C10.0")):
            with self.subTest(values):
                run = self.convert("A\n" + "".join(value + "\n" for value in values), "--force", "--strict")
                self.assertEqual((run.code, run.err, self.fields()), (0, "", ["A " + field]))
                kept = [value if "N4.1" not in field else f"{float(value):.1f}" for value in values]
                self.assertEqual(self.cat(), "A\n" + "".join(value + "\n" for value in kept))

    def test_fields_without_values(self):
        self.write({"t.sqlite": database(("t", "A FLOAT, B TEXT", [[None, None]]))})
        run = run_tool("convert", "t.sqlite", "out.dbf", "--table", "t", "--strict", cwd=self.folder)
        self.assertEqual((run.code, run.err, self.fields()), (0, "", ["A N10.0", "B C1.0"]))

    def test_strict_takes_what_fits(self):
        self.assertEqual(self.convert(WELLS, "--strict").code, 0)

    def test_widths_are_bytes_of_the_code_page(self):
        self.write({"t.csv": "A\nЖила\n"})
        run = run_tool("convert", "t.csv", "out.dbf", "--system-encoding", "UTF-8", cwd=self.folder)
        self.assertEqual((run.code, self.fields()), (0, ["A C8.0"]))
        self.assertEqual(self.content()["out.cpg"], b"UTF-8")
        self.assertEqual(self.cat("--system-encoding", "UTF-8"), "A\nЖила\n")
        run = run_tool("convert", "t.csv", "out.dbf", "--force", "--system-encoding", "CP866",
                       cwd=self.folder)
        self.assertEqual((run.code, self.fields()), (0, ["A C4.0"]))
        self.assertNotIn("out.cpg", self.content())
        self.assertIn("Жила".encode("cp866"), self.content()["out.dbf"])
        self.assertEqual(self.content()["out.dbf"][29], 0x65)
        self.assertEqual(self.cat("--system-encoding", "CP866"), "A\nЖила\n")

    def test_a_code_page_file_that_cannot_be_replaced(self):
        self.write({"t.csv": "A\nЖила\n"})
        os.mkdir(self.path("out.cpg"))
        run = run_tool("convert", "t.csv", "out.dbf", "--force", "--system-encoding", "UTF-8", cwd=self.folder)
        self.assertEqual(run.code, 5)
        self.assertIn("out.dbf was written, but the .cpg file beside it", run.err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["out.cpg", "out.dbf", "t.csv"])
        # Nor can it be removed where the table's code page needs none.
        run = run_tool("convert", "t.csv", "out.dbf", "--force", "--system-encoding", "CP866", cwd=self.folder)
        self.assertEqual(run.code, 5)
        self.assertIn("out.dbf was written, but the .cpg file beside it", run.err)

    def test_a_code_page_file_that_is_there(self):
        problem = ("vok_table: error: {} exists already, and tells the code page of a table with the target's name: "
                   "name another target, or replace it with --force\n")
        for page in ("UTF-8", "CP1251"):
            files = {"t.csv": b"A\n1\n", "out.cpg": b"CP1251\n"}
            self.write(files)
            run = run_tool("convert", "t.csv", "out.dbf", "--system-encoding", page, cwd=self.folder)
            self.assertEqual((run.code, run.err, self.content()), (5, problem.format("out.cpg"), files))
            run = run_tool("convert", "t.csv", ".", "--all-tables", "--to", "dbf", *UTF8, cwd=self.folder)
            self.assertEqual((run.code, sorted(self.content())), (0, ["out.cpg", "t.cpg", "t.csv", "t.dbf"]), run.err)
            os.remove(self.path("t.dbf"))
            run = run_tool("convert", "t.csv", ".", "--all-tables", "--to", "dbf", *UTF8, cwd=self.folder)
            self.assertEqual((run.code, run.err), (5, problem.format("./t.cpg")))
            os.remove(self.path("t.cpg"))
            run = run_tool("convert", "t.csv", "out.dbf", "--system-encoding", page, "--force", cwd=self.folder)
            self.assertEqual((run.code, run.err), (0, ""))
            self.assertEqual(self.content().get("out.cpg"), b"UTF-8" if page == "UTF-8" else None)
            os.remove(self.path("out.dbf"))

    def test_a_code_page_file_that_is_needed_otherwise(self):
        self.write({"t.cpg": "A\n1\n2;3\n", "d/x": ""})
        for source, target, more, role in (
                ("t.cpg", "t.dbf", [], "the source"), ("d/../t.cpg", "t.dbf", ["--force"], "the source"),
                ("t.cpg", "o.dbf", ["--rejects", "o.cpg"], "the file for rejected lines"),
                ("t.cpg", "o.dbf", ["--rejects", "./O.cpg", "--force"], "the file for rejected lines")):
            with self.subTest(more=more, target=target):
                run = run_tool("convert", source, target, *PAGE, *more, cwd=self.folder)
                self.assertEqual((run.code, run.err),
                                 (2, f"vok_table: error: {target[0]}.cpg tells the code page of {target} and cannot "
                                     f"be {role} too: name another target\n"))
        self.assertEqual(self.content(), {"t.cpg": b"A\n1\n2;3\n", "d/x": b""})
        run = run_tool("convert", "t.cpg", "t.csv", "--rejects", "o.cpg", cwd=self.folder)
        self.assertEqual((run.code, self.content()["o.cpg"]), (1, b"2;3\n"), run.err)

    @posix_only
    @skip_for_windows("its converter is no script of this system")
    def test_a_code_page_file_that_appears_meanwhile(self):
        self.write({"t.xlsx": "", "vok_xls2csv.exe": "#!/bin/sh\nprintf 'A\\n1\\n' > \"$3/t.csv\"; echo new > o.cpg\n"})
        os.chmod(self.path("vok_xls2csv.exe"), 0o755)
        run = self.run_copy("convert", "t.xlsx", "o.dbf")
        self.assertEqual((run.code, self.content()["o.cpg"]), (5, b"new\n"), run.err)
        self.assertIn("error: o.cpg exists already", run.err)
        self.assertNotIn("o.dbf", self.content())

    def test_fields_may_be_named(self):
        run = self.convert(WELLS, "--fields", "DEPTH=N10.2, WELL=c20,DAY=C10")
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.fields(), ["WELL C20.0", "DEPTH N10.2", "DAY C10.0", "ID C3.0", "NOTE C4.0"])
        run = self.convert(WELLS, "--force", "--fields", "  DEPTH=N9.1  ,WELL=C5 , ID=C7 ")
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.fields(), ["WELL C5.0", "DEPTH N9.1", "DAY D8.0", "ID C7.0", "NOTE C4.0"])

    def test_named_fields_that_cannot_be(self):
        for named, problem in (("NONE=C5", "there is no such field"), ("WELL", "has no type"),
                               ("WELL=X5", "the types are"), ("WELL=C255", "the types are"),
                               ("WELL=N21", "the types are"), ("WELL=N5.4", "the types are"),
                               ("WELL=D8", "the types are"), ("WELL=C0", "the types are"),
                               ("WELL=", "the types are"), ("WELL=C", "the types are"), ("WELL=Cx", "the types are"),
                               ("WELL=C5x", "the types are"), ("WELL=C-5", "the types are"),
                               ("WELL=C99999999999", "the types are"), ("WELL=~5", "the types are"),
                               ("WELL=N5.", "the types are"), ("WELL=N5.x", "the types are"),
                               ("WELL=N5.-1", "the types are"), ("  ", '--fields "" has no type')):
            run = self.convert(WELLS, "--fields", named)
            self.assertEqual(run.code, 2, named)
            self.assertIn(problem, run.err)
        run = self.convert(WELLS, "--fields", "WELL=C5", target="out.csv")
        self.assertEqual(run.code, 2)
        self.assertEqual(list(self.content()), ["t.csv"])

    LOSSES = (
        ("a long text", "A\n" + "x" * 255 + "\n", "is cut: it needs 255, and there are 254"),
        ("a character of another page", "A\n中\n", "holds a character outside Windows-1251 (U+4E2D)"),
        ("a long name", "ABCDEFGHIJK\n1\n", "the name is cut to 10 characters"),
        ("a name with other characters", "A B\n1\n", "the name is changed"),
        ("a name with characters behind the letters", "A{\n1\n", "the name is changed: it may hold letters"),
        ("a name that begins with a digit", "9A\n1\n", "the name is changed: it may hold letters"),
        ("names that are alike", "Ab;aB\n1;2\n", 'the name is changed: "Ab" is too much like it'),
    )

    def test_losses_are_told_or_refused(self):
        for name, source, reason in self.LOSSES:
            with self.subTest(name):
                run = self.convert(source, "--force")
                self.assertEqual(run.code, 1)
                self.assertIn("warning: 1 value will not be read back unchanged from out.dbf", run.err)
                self.assertIn(reason, run.err)
                os.remove(self.path("out.dbf"))
                run = self.convert(source, "--strict")
                self.assertEqual(run.code, 5)
                self.assertIn("error: nothing was written: out.dbf cannot hold 1 value", run.err)
                self.assertIn(reason, run.err)
                self.assertNotIn("out.dbf", self.content())

    def test_code_pages_are_named(self):
        for page, name in (("CP866", "CP866"), ("CP1258", "Windows-1258"), ("ASCII", "ASCII")):
            self.write({"t.csv": "A\n中\n"})
            run = run_tool("convert", "t.csv", "out.dbf", "--force", "--system-encoding", page, cwd=self.folder)
            self.assertEqual(run.code, 1)
            self.assertIn(f'row 1, field "A": holds a character outside {name} (U+4E2D)\n', run.err)

    def test_values_of_a_database(self):
        self.write({"t.sqlite": database(("t", '"" TEXT, FIELD1 TEXT, C TEXT', [["x", "y ", "y\nz\x1a"]]))})
        run = run_tool("convert", "t.sqlite", "out.dbf", "--table", "t", cwd=self.folder)
        self.assertEqual((run.code, run.err),
                         (1, "vok_table: warning: 3 values will not be read back unchanged from out.dbf:\n"
                             '  the header, field "": has no name, and gets one\n'
                             '  the header, field "FIELD1": the name is changed: "" is too much like it\n'
                             '  row 1, field "FIELD1": ends with a blank, which is taken for padding\n'))
        self.assertEqual(self.fields(), ["FIELD1 C1.0", "FIELD1_1 C2.0", "C C4.0"])
        self.assertEqual(self.cat(), "FIELD1\tFIELD1_1\tC\nx\ty\ty\\nz\x1a\n")

    def test_values_that_do_not_fit_named_fields(self):
        for named, source, reason, stored in (
                ("A=N3", "A\n1234\n", "does not fit, and becomes asterisks", ""),
                ("A=N5.1", "A\n1.25\n", "is rounded to 1 decimal", "1.3"),
                ("A=N5", "A\nabc\n", "is no plain number", ""),
                ("A=D", "A\n2024-02-30\n", "is no day as YYYY-MM-DD", ""),
                ("A=C2", "A\nabc\n", "is cut: it needs 3, and there are 2", "ab")):
            run = self.convert(source, "--force", "--fields", named)
            self.assertEqual(run.code, 1, named)
            self.assertIn("row 1, field \"A\": " + reason, run.err)
            self.assertEqual(self.cat(), f"A\n{stored}\n")

    def test_names_of_which_nothing_is_left(self):
        run = self.convert("Ъ;Ы\n1;2\n")
        self.assertEqual((run.code, self.fields()), (1, ["FIELD1 N1.0", "Y N1.0"]))
        self.assertEqual(run.err, 'vok_table: warning: 1 value will not be read back unchanged from out.dbf:\n  the header, '
                                  'field "Ъ": nothing of the name is left in Latin letters, and it gets another\n')

    def test_options_without_an_effect(self):
        self.convert("A\nЖ\n")
        for option, value in (("--encoding", "CP866"), ("--delimiter", ","), ("--quote", "'"), ("--header-row", "2"),
                              ("--data-row", "3")):
            run = run_tool("cat", "out.dbf", *PAGE, option, value, cwd=self.folder)
            self.assertEqual((run.code, run.out.decode("utf-8")), (0, "A\nЖ\n"))
            self.assertEqual(run.err, f"vok_table: hint: {option} has no effect on out.dbf\n")
        run = run_tool("cat", "out.dbf", *PAGE, "--encoding", "UTF-8", "--json", cwd=self.folder)
        self.assertEqual([message["text"] for message in json.loads(run.out)["messages"]],
                         ["--encoding has no effect on out.dbf"])

    def test_a_name_that_another_one_becomes(self):
        for names, stored in (("A B;A_B", "A_B|A_B_1"), ("1A;_1A", "_1A|_1A_1")):
            run = self.convert(names + "\n1;2\n", "--force")
            self.assertEqual(run.code, 1)
            self.assertIn("warning: 2 values will not be read back unchanged", run.err)
            self.assertIn("is too much like it", run.err)
            self.assertEqual("|".join(field.split()[0] for field in self.fields()), stored)

    def test_numbers_at_the_edge_of_their_field(self):
        rounded, asterisks = "is rounded to 1 decimal", "does not fit, and becomes asterisks"
        for number, problem, stored in (("9.9", None, "9.9"), ("9.90", None, "9.9"), ("-0.5", None, "-.5"),
                                        ("9.94", rounded, "9.9"), ("1.95", rounded, "2.0"), ("9.95", asterisks, ""),
                                        ("0.96", rounded, "1.0"), ("-0.96", asterisks, ""),
                                        ("-0.04", rounded, "0.0"), ("10", asterisks, ""), ("-1", asterisks, "")):
            with self.subTest(number):
                run = self.convert(f"A\n{number}\n", "--force", "--fields", "A=N3.1")
                self.assertEqual((run.code, self.cat()), (1 if problem else 0, f"A\n{stored}\n"))
                self.assertIn(problem or "", run.err)

    def test_too_many_fields(self):
        names = ";".join(f"F{i}" for i in range(2047))
        run = self.convert(names + "\n")
        self.assertEqual(run.code, 2)
        self.assertIn("a DBF file holds 2 046 fields at most", run.err)
        self.assertEqual(list(self.content()), ["t.csv"])

    def test_too_long_records(self):
        too_long = "a record of a DBF file holds 65 535 bytes at most, and the table needs 65 787\n"
        for count, code, problem in ((258, 0, ""), (259, 2, too_long)):
            names = ";".join(f"F{i}" for i in range(count))
            run = self.convert(names + "\n" + ";".join(["x" * 254] * count) + "\n", target=f"{count}.dbf")
            self.assertEqual((run.code, run.err.partition("error: ")[2]), (code, problem))
        self.assertEqual(sorted(self.content()), ["258.dbf", "t.csv"])

    def test_a_table_becomes_the_same_table_again(self):
        self.convert(WELLS)
        run = run_tool("convert", "out.dbf", "again.dbf", *PAGE, "--strict", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.content()["again.dbf"], self.content()["out.dbf"])

    def test_blanks_that_delimited_text_loses(self):
        head = bytes([3, 124, 1, 1, 2, 0, 0, 0, 65, 0, 5, 0]) + bytes(20)
        field = b"A" + bytes(10) + b"C" + bytes(4) + bytes([4]) + bytes(15)
        self.write({"in.dbf": head + field + b"\r  x   y\t  \x1a"})
        run = run_tool("convert", "in.dbf", "out.csv", *PAGE, cwd=self.folder)
        self.assertEqual(run.code, 1)
        self.assertIn("2 values will not be read back unchanged", run.err)
        self.assertIn('row 1, field "A": begins or ends with a blank', run.err)
        run = run_tool("convert", "in.dbf", "strict.csv", *PAGE, "--strict", cwd=self.folder)
        self.assertEqual(run.code, 5)

    def test_a_code_page_that_no_system_has(self):
        for name in ("UTF-16", "KOI8", ""):
            run = run_tool("cat", "t.csv", "--system-encoding", name, cwd=self.folder)
            self.assertEqual(run.code, 2)
            self.assertIn("--system-encoding", run.err)

    def test_the_systems_own_code_page(self):
        self.convert("A\nЖила\n")
        os.remove(self.path("out.dbf"))
        for name in ("SYSTEM", "ansi"):
            run = run_tool("convert", "t.csv", "out.dbf", "--force", "--system-encoding", name, cwd=self.folder)
            named = self.content()["out.dbf"]
            plain = run_tool("convert", "t.csv", "out.dbf", "--force", cwd=self.folder)
            self.assertEqual((run.code, run.err, named), (plain.code, plain.err, self.content()["out.dbf"]))

    def test_a_file_that_is_no_table(self):
        self.write({"bad.dbf": "text\n"})
        run = run_tool("cat", "bad.dbf", cwd=self.folder)
        self.assertEqual(run.code, 3)
        self.assertIn("cannot read bad.dbf: its content is not what was expected", run.err)

    def test_dbfread_reads_the_same(self):
        if dbfread is None:
            self.skipTest("dbfread is not installed")
        self.convert(WELLS)
        rows = [list(row.values()) for row in dbfread.DBF(self.path("out.dbf"), encoding="cp1251")]
        days = [row.pop(2) for row in rows]
        self.assertEqual(rows, [[101, 1250.5, "007", "Жила"], [102, -98.0, "010", ""],
                                [103, None, "1e5", "a,b"]])
        self.assertEqual([str(day) for day in days], ["2024-02-29", "1999-12-31", "None"])

    def test_ogr_reads_the_same(self):
        if shutil.which("ogr2ogr") is None:
            self.skipTest("ogr2ogr is not installed")
        self.convert(WELLS)
        made = subprocess.run(["ogr2ogr", "-f", "GeoJSON", "/vsistdout/", self.path("out.dbf")],
                              stdout=subprocess.PIPE, check=True)
        # Some versions leave out what is null.
        rows = [[each["properties"].get(name) for name in ("WELL", "DEPTH", "DAY", "ID", "NOTE")]
                for each in json.loads(made.stdout)["features"]]
        self.assertEqual(rows, [[101, 1250.5, "2024-02-29", "007", "Жила"],
                                [102, -98.0, "1999-12-31", "010", None],
                                [103, None, None, "1e5", "a,b"]])


if __name__ == "__main__":
    main()
