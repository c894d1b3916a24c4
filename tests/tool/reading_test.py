#!/usr/bin/env python3
"""The commands that show what a file holds, and every option of theirs."""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import (Case, CaseTest, Settings, cases, main, run_tool,  # noqa: E402
                        skip_for_windows)

AB = {"t.csv": "a;b\n1;2\n3;4\n"}
REJECTED = {"t.csv": "a;b\n1;2\n\n3\n4;5;6\n7;8\n"}
BOM = {"t.csv": "\ufeffWELL;DEPTH\nW-1;10\n"}
ROCKS = {"t.csv": "проба;порода\nП-1;гранит\nП-2;сланец\nП-3;гранит\n"}


@cases(
    Case("tables", ["tables", "t.csv"], "csv\n", files=AB),
    Case("fields", ["fields", "t.csv"], "a\ttext\nb\ttext\n", files=AB),
    Case("fields are not rows", ["fields", "t.csv"], "a\ttext\nb\ttext\n", files=REJECTED),
    Case("head", ["head", "t.csv"], "a\tb\n1\t2\n3\t4\n", files=AB),
    Case("head shows ten rows", ["head", "t.csv"], "a\n" + "".join(f"{i}\n" for i in range(10)),
         files={"t.csv": "a\n" + "".join(f"{i}\n" for i in range(12))}),
    Case("head -n", ["head", "t.csv", "-n", "1"], "a\tb\n1\t2\n", files=AB),
    Case("head --rows", ["head", "--rows=1", "t.csv"], "a\tb\n1\t2\n", files=AB),
    Case("head of no rows", ["head", "t.csv", "-n", "0"], "a\tb\n", files=AB),
    Case("head of more rows than there are", ["head", "t.csv", "-n", "99999999999"],
         "a\tb\n1\t2\n3\t4\n", files=AB),
    Case("head tells of rejected lines below its rows", ["head", "t.csv", "-n", "1"], "a\tb\n1\t2\n",
         ["warning: 2 of 4 lines were rejected (first: line 4); see: vok_table errors t.csv\n"], 1,
         files=REJECTED),
    Case("cat", ["cat", "t.csv"], "a\tb\n1\t2\n3\t4\n", files=AB),
    Case("cat of a header alone", ["cat", "t.csv"], "a\tb\n", files={"t.csv": "a;b\n"}),
    Case("cat of an empty file", ["cat", "t.csv"], "0\n", files={"t.csv": ""}),
    Case("count", ["count", "t.csv"], "2\n", files=AB),
    Case("count tells of rejected lines", ["count", "t.csv"], "2\n", ["2 of 4 lines"], 1,
         files=REJECTED),
    Case("one rejected line", ["count", "t.csv"], "1\n", ["1 of 2 lines was rejected (first: line 3)"],
         1, files={"t.csv": "a;b\n1;2\n3\n"}),
    Case("thousands are grouped", ["count", "t.csv"], "1234\n",
         ["1 of 1 235 lines was rejected (first: line 1 236)"], 1,
         files={"t.csv": "a;b\n" + "1;2\n" * 1234 + "3\n"}),
)
class Commands(CaseTest):
    pass


@cases(
    Case("nothing rejected", ["errors", "t.csv"], "line\toffset\texpected\tfound\ttext\n", files=AB),
    Case("numbers as an editor counts", ["errors", "t.csv"],
         "line\toffset\texpected\tfound\ttext\n4\t9\t2\t1\t3\n5\t11\t2\t3\t4;5;6\n",
         ["warning: 2 of 4 lines were rejected\n"], 1, files=REJECTED),
    Case("CR LF, header further down, text as it is", ["errors", "t.csv", "--header-row", "2"],
         "line\toffset\texpected\tfound\ttext\n3\t11\t2\t1\t  x y  \n5\t25\t2\t3\t \\t;;\n",
         ["2 of 3 lines"], 1, files={"t.csv": "note\r\na;b\r\n  x y  \r\n1;2\r\n \t;;\r\n"}),
    Case("without a header", ["errors", "t.csv", "--header-row", "none"],
         "line\toffset\texpected\tfound\ttext\n2\t4\t2\t1\t3\n", ["1 of 2 lines"], 1,
         files={"t.csv": "1;2\n3\n"}),
    Case("decoded", ["errors", "t.csv", "--encoding", "cp1251"],
         "line\toffset\texpected\tfound\ttext\n2\t9\t1\t2\tскв;1\n", ["1 of 2 lines"], 1,
         files={"t.csv": "скважина\nскв;1\n2\n".encode("cp1251")}),
    Case("a NUL byte joins two lines", ["errors", "t.csv"],
         "line\toffset\texpected\tfound\ttext\n2\t4\t2\t3\t4;56;7\n5\t21\t2\t1\t1\n",
         ["the file holds NUL bytes: one can join two lines"], 1,
         files={"t.csv": b"a;b\n4;5\0\n6;7\n8;9\n1;1\n1\n"}),
    Case("no NUL byte before the end of the text", ["errors", "t.csv"],
         "line\toffset\texpected\tfound\ttext\n2\t4\t2\t1\t1\n",
         ["1 of 2 lines was rejected\n",
          "the text ends at byte 11 (Ctrl-Z, 0x1A): 5 bytes behind it cannot be reached\n"], 1,
         files={"t.csv": b"a;b\n1\n2;3\n\x1a4;5\0\n"}),
    Case("a last 0x1A hides nothing", ["errors", "t.csv"], "line\toffset\texpected\tfound\ttext\n",
         files={"t.csv": b"a;b\n1;2\n\x1a"}),
)
class Errors(CaseTest):
    def test_a_nul_byte_in_an_earlier_block(self):
        self.write({"t.csv": b"a\n1\0\n" + b"22\n" * 200000 + b"3;4\n"})
        run = run_tool("errors", "t.csv", cwd=self.folder)
        self.assertEqual(run.code, 1)
        self.assertIn("the file holds NUL bytes", run.err)

    def test_a_format_that_is_no_delimited_text(self):
        self.write({"t.sqlite": database(("t", "a TEXT", [["x"]]))})
        run = run_tool("errors", "t.sqlite", "--table", "t", cwd=self.folder)
        self.assertEqual((run.code, run.out, run.err), (0, b"line\toffset\texpected\tfound\ttext\n", ""))

    def test_the_named_command_with_letters_of_all_kinds(self):
        self.write({"скв.csv": "a;b\n1\n"})
        run = run_tool("count", "скв.csv", "--quote", "", cwd=self.folder)
        self.assertIn('see: vok_table errors скв.csv --quote ""\n', run.err)

    @skip_for_windows("such names are none there")
    def test_the_named_command_runs_nothing_but_the_tool(self):
        for name, word in (("$(touch x).csv", "'$(touch x).csv'"), ("`a`.csv", "'`a`.csv'"),
                           ("it's \"q\".csv", "'it'\\''s \"q\".csv'")):
            self.write({name: "a;b\n1\n"})
            run = run_tool("count", name, cwd=self.folder)
            self.assertIn(f"see: vok_table errors {word}\n", run.err)

    def test_the_named_command_reads_with_the_same_options(self):
        self.write({"my wells.txt": "note\na\tb\n1\n2\t3\n"})
        options = ["--delimiter", "tab", "--header-row", "2", "--quote", "'", "--type", "csv",
                   "--encoding", "CP1251", "--data-row", "3", "--table", "x"]
        run = run_tool("count", "my wells.txt", *options, cwd=self.folder)
        self.assertIn('see: vok_table errors "my wells.txt" --type csv --encoding CP1251 --delimiter tab '
                      '--quote "\'" --header-row 2 --data-row 3 --table x\n', run.err)
        run = run_tool("errors", "my wells.txt", *options, cwd=self.folder)
        self.assertEqual(run.out, b"line\toffset\texpected\tfound\ttext\n3\t9\t2\t1\t1\n")


@cases(
    Case("one condition", ["find", "t.csv", "--where", "порода=гранит", "--show", "проба"],
         "П-1\nП-3\n", files=ROCKS),
    Case("all conditions hold",
         ["find", "--where", "порода=гранит", "--where", "проба=П-3", "t.csv", "--show", "проба"],
         "П-3\n", files=ROCKS),
    Case("no row", ["find", "t.csv", "--where", "порода=Гранит", "--show", "проба"], "", files=ROCKS),
    Case("equals signs in names and values", ["find", "t.csv", "--where", "a=b=c=d", "--show", "x"],
         "1\n", files={"t.csv": "a=b;x\nc=d;1\nc;2\n"}),
    Case("an empty value", ["find", "t.csv", "--where", "a=", "--show", "b"], "2\n",
         files={"t.csv": "a;b\n;2\n1;3\n"}),
    Case("brackets are text", ["find", "t.csv", "--where", "a=[1,2]", "--show", "b"], "3\n",
         files={"t.csv": "a;b\n[1,2];3\n"}),
    Case("a line break in a value", ["find", "t.csv", "--where", "a=1", "--show", "b"], "x\\ry\n",
         files={"t.csv": "a;b\n1;x\ry\n"}),
    Case("rejected lines", ["find", "t.csv", "--where", "a=1", "--show", "b"], "2\n",
         ["2 of 4 lines were rejected"], 1, files=REJECTED),
    Case("unknown condition field", ["find", "t.csv", "--where", "Порода=гранит", "--show", "проба"], "",
         ['error: --where "Порода=гранит": this is not FIELD=VALUE with a field of t.csv; '
          'its fields are "проба", "порода"\n'], 2, files=ROCKS),
    Case("no condition", ["find", "t.csv", "--where", "порода", "--show", "проба"], "",
         ["this is not FIELD=VALUE"], 2, files=ROCKS),
    Case("unknown shown field", ["find", "t.csv", "--where", "порода=гранит", "--show", "x"], "",
         ['--show "x": this is no field of t.csv; its fields are "проба", "порода"\n'], 2, files=ROCKS),
    Case("a mark before the first name may be left out",
         ["find", "t.csv", "--where", "WELL=W-1", "--show", "DEPTH"], "10\n", ["byte-order mark"],
         files=BOM),
    Case("also in what is shown", ["find", "t.csv", "--where", "DEPTH=10", "--show", "WELL"], "W-1\n",
         ["byte-order mark"], files=BOM),
)
class Find(CaseTest):
    pass


def word(text, encoding):
    return {"t.csv": f"{text}\n1\n".encode(encoding)}


@cases(
    Case("delimiter tab", ["cat", "t.csv", "--delimiter", "tab"], "a\tb\n", files={"t.csv": "a\tb\n"}),
    Case("delimiter TAB", ["cat", "t.csv", "--delimiter", "TAB"], "a\tb\n", files={"t.csv": "a\tb\n"}),
    Case("delimiter \\t", ["cat", "t.csv", "--delimiter", "\\t"], "a\tb\n", files={"t.csv": "a\tb\n"}),
    Case("delimiter with \\t in it", ["cat", "t.csv", "--delimiter", "|\\t|"], "a\tb\tc\n",
         files={"t.csv": "a|\t|b|\t|c\n"}),
    Case("delimiter of a minus", ["cat", "t.csv", "--delimiter", "-"], "a\tb\n", files={"t.csv": "a-b\n"}),
    Case("delimiter in brackets", ["cat", "t.csv", "--delimiter=[x]"], "a\tb\n",
         files={"t.csv": "a[x]b\n"}),
    Case("delimiter of several characters", ["cat", "t.csv", "--delimiter", ", "], "a\tb,c\n",
         files={"t.csv": "a, b,c\n"}),
    Case("delimiter beyond ASCII", ["cat", "t.csv", "--delimiter", "§"], "a\tb\n",
         files={"t.csv": "a§b\n"}),
    Case("empty delimiter", ["cat", "t.csv", "--delimiter", ""], "ab\n12\n",
         files={"t.csv": "ab\n12\n"}),
    Case("quotes", ["cat", "t.csv"], "a\tb\nx;y\tz\n", files={"t.csv": 'a;b\n"x;y";z\n'}),
    Case("another quote", ["cat", "t.csv", "--quote", "'"], "a\tb\nx;y\t\"z\"\n",
         files={"t.csv": "a;b\n'x;y';\"z\"\n"}),
    Case("no quote", ["cat", "t.csv", "--quote", ""], 'a\tb\n"x"\ty\n',
         files={"t.csv": 'a;b\n"x";y\n'}),
    Case("header row", ["cat", "t.csv", "--header-row", "2"], "a\tb\n1\t2\n",
         files={"t.csv": "x\na;b\n1;2\n"}),
    Case("header row none", ["cat", "t.csv", "--header-row", "none"], "field_0\tfield_1\na\tb\n1\t2\n",
         files={"t.csv": "a;b\n1;2\n"}),
    Case("header row 0", ["cat", "t.csv", "--header-row", "0"], "field_0\na\n", files={"t.csv": "a\n"}),
    Case("header row that does not exist", ["fields", "t.csv", "--header-row", "9"], "",
         ["warning: no fields were found in t.csv; check --header-row\n"], files=AB),
    Case("data row", ["cat", "t.csv", "--data-row", "4"], "a\n3\n", files={"t.csv": "a\n1\n2\n3\n"}),
    Case("header and data row", ["cat", "t.csv", "--header-row", "2", "--data-row", "4"], "b\n3\n",
         files={"t.csv": "a\nb\n2\n3\n"}),
    Case("type by name", ["cat", "t.dbf", "--type", "CSV"], "a\n", files={"t.dbf": "a\n"}),
    Case("type by number", ["cat", "t.dbf", "--type", "1"], "a\n", files={"t.dbf": "a\n"}),
    Case("type auto by number", ["cat", "t.csv", "--type", "0"], "a\n", files={"t.csv": "a\n"}),
    Case("type auto", ["cat", "t.CSV", "--type", "auto"], "a\n", files={"t.CSV": "a\n"}),
    Case("unknown extension", ["cat", "t.xyz"], "a\n", files={"t.xyz": "a\n"}),
    Case("table of a file that has none", ["cat", "t.csv", "--table", "x"], "a\n", files={"t.csv": "a\n"}),
    Case("encoding by name", ["head", "t.csv", "--encoding", "CP866"], "Забой\n1\n",
         files=word("Забой", "cp866")),
    Case("encoding by loose name", ["head", "t.csv", "--encoding", "cp_1251"], "Забой\n1\n",
         files=word("Забой", "cp1251")),
    Case("encoding by alias", ["head", "t.csv", "--encoding", "windows 1251"], "Забой\n1\n",
         files=word("Забой", "cp1251")),
    Case("encoding by number", ["head", "t.csv", "--encoding", "16"], "Забой\n1\n",
         files=word("Забой", "cp866")),
    Case("encoding utf8", ["head", "t.csv", "--encoding", "utf8"], "Забой\n1\n",
         files=word("Забой", "utf-8")),
)
class Options(CaseTest):
    pass


@cases(
    Case("escapes", ["cat", "t.csv"], "a\\tb\tc\n1\\r2\t\x1b[2J\n",
         files={"t.csv": "a\tb;c\n1\r2;\x1b[2J\n"}),
    Case("characters beyond the BMP", ["cat", "t.csv"], "𝛿13C\n1\n", files={"t.csv": "𝛿13C\n1\n"}),
    Case("a mark stays in the data", ["cat", "t.csv"], "\ufeffWELL\tDEPTH\nW-1\t10\n",
         ["warning: t.csv begins with a byte-order mark, which is now part of the first field's name"],
         files=BOM),
    Case("a mark in the first value", ["cat", "t.csv", "--header-row", "none"],
         "field_0\tfield_1\n\ufeffWELL\tDEPTH\nW-1\t10\n", ["now part of the first value"], files=BOM),
)
class Data(CaseTest):
    pass


SEMICOLON = "hint: the values seem to be separated otherwise: try --delimiter \";\"\n"


@cases(
    Case("tab in the header", ["count", "t.csv"], "1\n", ["try --delimiter tab\n"],
         files={"t.csv": "a\tb\n1\t2\n"}),
    Case("comma in the header", ["fields", "t.csv"], "a,b\ttext\n", ["try --delimiter ,\n"],
         files={"t.csv": "a,b\n1,2\n"}),
    Case("bar in the header", ["count", "t.csv"], "1\n", ['try --delimiter "|"\n'],
         files={"t.csv": "a|b\n1|2\n"}),
    Case("semicolon", ["count", "t.csv", "--delimiter", "tab"], "2\n", [SEMICOLON], files=AB),
    Case("one field is no reason", ["count", "t.csv"], "1\n", files={"t.csv": "a\n1\n"}),
    Case("lines rejected for another header", ["count", "t.csv"], "0\n",
         ["hint: line 2 has 2 values and the header in line 1 has 1: if the header stands in another "
          "line, name it with --header-row\n"], 1, files={"t.csv": "Протокол № 5\na;b\n1;2\n"}),
    Case("a few rejected lines are no reason", ["count", "t.csv"], "2\n",
         ["2 of 4 lines were rejected (first: line 4); see: vok_table errors t.csv\n"], 1,
         files=REJECTED),
    Case("not the encoding", ["count", "t.csv"], "1\n",
         ["hint: some characters could not be decoded: try another --encoding, such as CP1251 or CP866"],
         files=word("Забой", "cp1251")),
    Case("not the encoding, in a value", ["count", "t.csv"], "1\n", ["try another --encoding"],
         files={"t.csv": "a\nскв".encode("cp1251")}),
    Case("UTF-8 read as something else", ["count", "t.csv", "--encoding", "CP1251"], "1\n",
         ["hint: the file begins like UTF-8 text: try --encoding UTF-8\n"], files=BOM),
    Case("UTF-8 that is cut between two bytes of a character", ["count", "t.csv", "--encoding", "CP1251"], "1\n",
         ["hint: the file begins like UTF-8 text: try --encoding UTF-8\n"],
         files={"t.csv": "a\nx" + "Ж" * 3000 + "\n"}),
    Case("UTF-16 in the other order", ["fields", "t.csv", "--type", "csv"], "\ufffd\ufffd\ttext\n",
         ["hint: the file begins like UTF-16"], files={"t.csv": "\ufeffa".encode("utf-16-be")}),
    Case("UTF-16", ["fields", "t.csv", "--type", "csv"], "\ufffd\ufffda\ttext\n", ["hint: the file begins like UTF-16"],
         files={"t.csv": "\ufeffa\n".encode("utf-16-le")}),
)
class Hints(CaseTest):
    def test_no_more_than_the_hint(self):
        self.write({"t.csv": "a\tb\n1\t2\n"})
        run = run_tool("count", "t.csv", cwd=self.folder)
        self.assertEqual(run.err,
                         "vok_table: hint: the values seem to be separated otherwise: "
                         "try --delimiter tab\n")


class Paths(CaseTest):
    def test_cyrillic_folder_and_blanks(self):
        self.write({"Скважины и пробы/глубина 2.csv": "a\n1\n"})
        run = run_tool("cat", "Скважины и пробы/глубина 2.csv", cwd=self.folder)
        self.assertEqual((run.code, run.out, run.err), (0, b"a\n1\n", ""))

    def test_full_path(self):
        self.write({"t.csv": "a\n1\n"})
        run = run_tool("cat", self.path("t.csv"))
        self.assertEqual((run.code, run.out, run.err), (0, b"a\n1\n", ""))

    def test_both_separators(self):
        self.write({"a/b/t.csv": "a\n1\n"})
        run = run_tool("cat", "a\\b/t.csv", cwd=self.folder)
        self.assertEqual((run.code, run.out, run.err), (0, b"a\n1\n", ""))

    def test_name_like_a_command(self):
        self.write({"cat": "a\n1\n"})
        run = run_tool("cat", "cat", cwd=self.folder)
        self.assertEqual((run.code, run.out, run.err), (0, b"a\n1\n", ""))

    def test_name_like_an_option(self):
        self.write({"-n": "a\n1\n"})
        run = run_tool("cat", "--", "-n", cwd=self.folder)
        self.assertEqual((run.code, run.out, run.err), (0, b"a\n1\n", ""))


class Texts(CaseTest):
    """Help, version and the list of formats."""

    def test_version_is_the_project_version(self):
        with open(os.path.join(Settings.source, "CMakeLists.txt"), encoding="utf-8") as file:
            version = file.read().split("project(vok_table_rw_vc VERSION ")[1].split()[0]
        for argument in ("version", "--version"):
            run = run_tool(argument)
            self.assertEqual((run.code, run.out, run.err), (0, f"vok_table {version}\n".encode(), ""))

    def test_help(self):
        for arguments in (["--help"], ["-h"], ["cat", "--help"], ["convert", "-h"]):
            run = run_tool(*arguments)
            self.assertEqual((run.code, run.err), (0, ""))
            self.assertIn(b"Usage: vok_table", run.out)
            self.assertTrue(run.out.endswith(b"\n"))
            self.assertNotIn(b"\r", run.out)

    def test_formats(self):
        run = run_tool("formats")
        self.assertEqual((run.code, run.err), (0, ""))
        rows = [line.split("\t") for line in run.out.decode("utf-8").splitlines()]
        self.assertEqual(rows[0], ["format", "type", "extensions", "read", "write"])
        self.assertEqual([row[1] for row in rows[1:]],
                         ["csv", "xls", "xls-odbc", "access", "dbf", "sqlite", "micromine", "dhdb",
                          "petrel"])
        self.assertEqual(rows[1], ["delimited text", "csv", "csv, any other", "yes", "yes"])
        for row in rows[1:]:
            self.assertIn(row[3], ("yes", "not in this version"))
            self.assertIn(row[4], ("yes", "no", "not in this version"))


if __name__ == "__main__":
    main()
