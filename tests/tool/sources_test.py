#!/usr/bin/env python3
"""What the tool tells of a source beside its data: a format that its name does not tell, DBF tables whose code page is
another or whose parts are missing, and bytes that end a text."""
import json
import os
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import Case, CaseTest, Settings, cases, main, run_tool, skip_for_windows  # noqa: E402
from workbooks import book, cell, sheet  # noqa: E402

UNDECODED = "warning: some characters of t.dbf could not be decoded and became U+FFFD: choose its code page with " \
            "--system-encoding, such as CP1251 or CP866\n"
NO_MEMOS = "warning: t.dbf has memo fields and no memo file beside it, so their texts are missing: put its "
NUL = "warning: the file holds NUL bytes: one can join two lines and hide what follows it"
LINE = "WELL;DEPTH\n1;2\n"


def field(name, letter, length, size=32):
    """A descriptor of 32 bytes, or of 48 in dBASE 7."""
    if size == 48:
        return name.encode().ljust(32, b"\0") + letter.encode() + bytes([length]) + bytes(14)
    return name.encode().ljust(11, b"\0") + letter.encode() + bytes(4) + bytes([length]) + bytes(15)


def dbf(*records, version=3, fields=(("A", "C", 4),), told=None, lost=0, month=1, day=1, end=b"\r", length=None):
    """A table whose records are given as bytes.
    @param told    the number of records that the header tells, when it is another
    @param lost    records of blanks that the header tells beside"""
    size = 48 if version == 0x8C else 32
    begin = 68 if version == 0x8C else 32
    descriptors = b"".join(field(*each, size) for each in fields) + end
    width = 1 + sum(each[2] for each in fields) if length is None else length
    head = bytes([version, 124, month, day]) + (len(records) + lost if told is None else told).to_bytes(4, "little")
    head += (begin + len(descriptors)).to_bytes(2, "little") + width.to_bytes(2, "little")
    return head.ljust(begin, b"\0") + descriptors + b"".join(b" " + each for each in records)


def dbase2(*records, told):
    """A table of dBASE II with the field A C4."""
    head = b"\2" + told.to_bytes(2, "little") + bytes([1, 1, 80]) + (5).to_bytes(2, "little")
    return (head + b"A".ljust(11, b"\0") + b"C\4" + bytes(3) + b"\r").ljust(521, b"\0") + b"".join(
        b" " + each for each in records)


TABLE = dbf(b"x   ")
WORKBOOK = book({"List1": sheet('<row r="1">' + cell("A1", 1) + "</row>")})
MEMO = (("A", "C", 4), ("NOTE", "M", 10))
MEMO_ROW = b"x   " + b"1".rjust(10)
TEXT_ANYWAY = "--type csv reads any file as delimited text\n"


def foreign(name, content, title, advice, file="t.dat"):
    return Case(name, ["cat", file], "",
                [f"error: cannot read {file} as delimited text: it looks like {title}\n", f"hint: {advice}; {TEXT_ANYWAY}"],
                3, {file: content})


@cases(
    foreign("SQLite", database(("t", "a TEXT", [["x"]])), "an SQLite database", "read it with --type sqlite"),
    foreign("a workbook", WORKBOOK, "a ZIP archive", "read it with --type xls if it is an Excel workbook (.xlsx, .xlsm)"),
    foreign("an older workbook", b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + bytes(600), "a compound file",
            "read it with --type xls if it is an Excel workbook (.xls)"),
    foreign("Access", b"\0\1\0\0Standard Jet DB\0" + bytes(600), "an Access database",
            "read it with --type access, or --type dhdb for drill holes"),
    foreign("a newer Access", b"\0\1\0\0Standard ACE DB\0" + bytes(600), "an Access database",
            "read it with --type access, or --type dhdb for drill holes"),
    foreign("DBF", TABLE, "a dBASE or FoxPro table", "read it with --type dbf"),
    foreign("DBF whose version is a digit", dbf(b"x   ", version=0x30), "a dBASE or FoxPro table",
            "read it with --type dbf", "t.csv"),
    foreign("DBF of dBASE II", dbase2(b"x   ", told=1), "a dBASE or FoxPro table", "read it with --type dbf"),
    foreign("an extension of text", TABLE, "a dBASE or FoxPro table", "read it with --type dbf", "t.csv"),
    foreign("no extension", TABLE, "a dBASE or FoxPro table", "read it with --type dbf", "t"),
    foreign("UTF-16 with its mark", "\ufeffa\n".encode("utf-16-le"), "UTF-16 text", "save it as UTF-8, which can be read"),
    foreign("UTF-16 in the other order with its mark", "\ufeffa".encode("utf-16-be"), "UTF-16 text",
            "save it as UTF-8, which can be read"),
    foreign("UTF-16", LINE.encode("utf-16-le"), "UTF-16 text", "save it as UTF-8, which can be read"),
    foreign("UTF-16 in the other order", LINE.encode("utf-16-be"), "UTF-16 text", "save it as UTF-8, which can be read"),
    foreign("UTF-16 of Cyrillic letters", "Скважина;Забой\r\n".encode("utf-16-le"), "UTF-16 text",
            "save it as UTF-8, which can be read"),
)
class OtherFormats(CaseTest):
    def test_micromine_data(self):
        with open(os.path.join(Settings.source, "examples", "samples.micromine"), "rb") as file:
            content = file.read()
        self.check(foreign("", content, "a Micromine data file", "read it with --type micromine"))
        self.assertEqual(run_tool("count", "t.dat", "--type", "micromine", cwd=self.folder).code, 0)

    def test_what_the_hint_says_helps(self):
        for content, kind, options in ((TABLE, "dbf", []), (WORKBOOK, "xls", ["--table", "List1"]),
                                       (database(("t", "a TEXT", [["x"]])), "sqlite", ["--table", "t"]),
                                       (TABLE, "csv", [])):
            self.write({"t.dat": content})
            run = run_tool("count", "t.dat", "--type", kind, *options, cwd=self.folder)
            self.assertIn(run.code, (0, 1), kind)
            self.assertNotIn("error", run.err)

    def test_every_command_refuses(self):
        self.write({"t.dat": TABLE})
        for command in (["tables"], ["fields"], ["head"], ["count"], ["stats"], ["errors"], ["doctor"],
                        ["find", "--where", "A=x", "--show", "A"], ["convert", "out.csv"],
                        ["convert", "out", "--all-tables"], ["cat", "--type", "auto"]):
            run = run_tool(command[0], "t.dat", *command[1:], cwd=self.folder)
            self.assertEqual(run.code, 3, command)
            self.assertIn("it looks like a dBASE or FoxPro table\n", run.err)
        self.assertEqual(list(self.content()), ["t.dat"])

    def test_what_only_looks_like_it_is_text(self):
        """Whatever such text holds, it is read."""
        head = dbf(b"x   ", version=0x43)
        self.assertEqual(head[:1], b"C")
        for name, content in (("no version", b"\x07" + TABLE[1:]), ("no month", dbf(b"x   ", month=13)),
                              ("no day", dbf(b"x   ", day=32)), ("no room for a header", TABLE[:31]),
                              ("a header that the file has no room for", TABLE[:60]),
                              ("a header of no length", TABLE[:8] + b"\1\0" + TABLE[10:]),
                              ("records of no length", dbf(b"x   ", length=0)),
                              ("no NUL byte", b"C\t\t\t" + b"a;b\t" + b"\x22\x20" + b";" * 40 + b"\n" * 9000),
                              ("PK alone", b"PK;b\n1;2\n"), ("two NUL bytes in three", b"a\0\0b\0\0c\0\0"),
                              ("NUL bytes alone", bytes(40)), ("one unit", b"a\0"), ("nothing", b"")):
            self.write({"t.dat": content})
            run = run_tool("count", "t.dat", cwd=self.folder)
            self.assertIn(run.code, (0, 1), name)
            self.assertNotIn("looks like", run.err, name)

    @skip_for_windows("a pipe is no file there")
    def test_a_pipe_is_not_looked_at(self):
        with subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as source:
            source.stdin.write(LINE.encode("utf-16-le"))
            source.stdin.close()
            run = run_tool("count", "/dev/fd/%d" % source.stdout.fileno(), pass_fds=[source.stdout.fileno()])
        self.assertEqual(run.code, 0)
        self.assertNotIn("looks like", run.err)

    @skip_for_windows("a pipe is no file there")
    def test_a_pipe_that_must_be_a_file(self):
        for kind in ("xls", "dbf", "sqlite"):
            with subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as source:
                source.stdin.write(b"x" * 100)
                source.stdin.close()
                name = "/dev/fd/%d" % source.stdout.fileno()
                run = run_tool("cat", name, "--type", kind, "--table", "t", pass_fds=[source.stdout.fileno()])
            self.assertEqual((run.code, run.out), (3, b""), kind)
            self.assertTrue(run.err.endswith(f"vok_table: error: cannot read {name}: its format needs a file, and this is "
                                             "a pipe or a device; save it to one\n"), run.err)
            self.assertEqual(run.err.count("vok_table: "), 1)

    def test_a_workbook_with_macros_is_known(self):
        run = run_tool("formats")
        self.assertIn("spreadsheet, by converter\txls\txls, xlsx, xlsm\tyes\tyes", run.out.decode())

    def test_only_text_has_a_byte_order_mark(self):
        self.write({"t.sqlite": database(("t", "a TEXT", [["\ufeffx"]])), "t.txt": '# Petrel\n"\ufeffa" b\n'})
        run = run_tool("count", "t.sqlite", "--table", "t", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))


UTF8 = ["--system-encoding", "UTF-8"]  # whatever the machine has
CYRILLIC = dbf(b"x   ", *[b"y   "] * 30, "Жила".encode("cp1251"))


@cases(
    Case("count", ["count", "t.dbf", *UTF8], "32\n", [UNDECODED], files={"t.dbf": CYRILLIC}),
    Case("what is not read is not missed", ["head", "t.dbf", "-n", "1", *UTF8], "A\nx\n", files={"t.dbf": CYRILLIC}),
    Case("fields", ["fields", "t.dbf", *UTF8], "\ufffd\ufffd\ttext\n", [UNDECODED],
         files={"t.dbf": dbf().replace(b"A\0\0", "АЖ\0".encode("cp1251"))}),
    Case("find", ["find", "t.dbf", "--where", "A=x", "--show", "A", *UTF8], "x\n", [UNDECODED], files={"t.dbf": CYRILLIC}),
    Case("convert, which loses it for good", ["convert", "t.dbf", "out.xlsx", "--strict", *UTF8], "", [UNDECODED],
         files={"t.dbf": CYRILLIC}),
    Case("the code page is told", ["count", "t.dbf", "--system-encoding", "CP1251"], "32\n", files={"t.dbf": CYRILLIC}),
)
class CodePages(CaseTest):
    def check(self, case):
        if case.args[0] == "convert":  # a workbook's bytes are not the matter here
            self.write(case.files)
            run = run_tool(*case.args, cwd=self.folder)
            self.assertEqual((run.code, run.err), (0, "vok_table: " + UNDECODED))
            return
        super().check(case)

    def test_stats_and_json(self):
        self.write({"t.dbf": CYRILLIC})
        run = run_tool("stats", "t.dbf", "--json", *UTF8, cwd=self.folder)
        messages = json.loads(run.out)["messages"]
        self.assertEqual([(each["kind"], UNDECODED.partition(": ")[2].strip()) for each in messages],
                         [("warning", each["text"]) for each in messages])
        self.assertEqual(len(messages), 1)

    @skip_for_windows("a locale chooses no code page there")
    def test_doctor(self):
        self.write({"t.dbf": CYRILLIC})
        run = run_tool("doctor", "t.dbf", cwd=self.folder, env={"LC_ALL": "C.UTF-8"})
        self.assertEqual((run.code, run.err), (0, "vok_table: " + UNDECODED))
        self.assertIn(b"table\tdbf\n", run.out)

    def test_doctor_of_micromine_data(self):
        with open(os.path.join(Settings.source, "examples", "samples.micromine"), "rb") as file:
            self.write({"t.micromine": file.read(), "cut.micromine": b"x"})
        self.assertEqual(run_tool("doctor", "t.micromine", cwd=self.folder).code, 0)
        run = run_tool("doctor", "cut.micromine", cwd=self.folder)
        self.assertEqual(run.code, 3)
        self.assertIn("cannot read cut.micromine: its content is not what was expected", run.err)

    def test_doctor_of_a_table_that_cannot_be_read(self):
        self.write({"t.dbf": b"x"})
        run = run_tool("doctor", "t.dbf", cwd=self.folder)
        self.assertEqual(run.code, 3)
        self.assertIn("cannot read t.dbf: its content is not what was expected", run.err)


@cases(
    Case("fewer records than told", ["count", "t.dbf"], "1\n",
         ["warning: t.dbf is cut: its header tells 1 002 records, the file holds 1\n"],
         files={"t.dbf": dbf(b"x   ", b"y", told=1002)}),
    Case("fewer records of dBASE II", ["count", "t.dbf"], "1\n",
         ["warning: t.dbf is cut: its header tells 2 records, the file holds 1\n"],
         files={"t.dbf": dbase2(b"x   ", told=2)}),
    Case("more records than told", ["count", "t.dbf"], "2\n", files={"t.dbf": dbf(b"x   ", b"y   ", told=1)}),
    Case("no memo file", ["cat", "t.dbf"], "A\tNOTE\nx\t\n", [NO_MEMOS + ".dbt or .fpt file there\n"],
         files={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO)}),
    Case("no memo file of a version without memos", ["cat", "t.dbf"], "A\tNOTE\nx\t\n", [NO_MEMOS],
         files={"t.dbf": dbf(MEMO_ROW, fields=MEMO)}),
    Case("no memo file of FoxPro", ["cat", "t.dbf"], "A\tNOTE\nx\t\n", [NO_MEMOS + ".fpt file there\n"],
         files={"t.dbf": dbf(MEMO_ROW, version=0xF5, fields=MEMO), "t.dbt": bytes(1024)}),
    Case("no memo file of Visual FoxPro", ["cat", "t.dbf"], "NOTE\n\n", [NO_MEMOS + ".fpt file there\n"],
         files={"t.dbf": dbf(b"\1\0\0\0", version=0x30, fields=[("NOTE", "M", 4)], end=b"\r" + bytes(263))}),
    Case("no memo file of dBASE 7", ["cat", "t.dbf"], "A\tNOTE\nx\t\n", [NO_MEMOS],
         files={"t.dbf": dbf(MEMO_ROW, version=0x8C, fields=MEMO)}),
    Case("no memos in dBASE 7", ["cat", "t.dbf"], "A\nx\n", files={"t.dbf": dbf(b"x   ", version=0x8C)}),
    Case("no memos in what may be dBASE 7", ["cat", "t.dbf"], "A\nx\n", files={"t.dbf": dbf(b"x   ", version=0x04)}),
    Case("a field M of another length", ["cat", "t.dbf"], "A\n\n",
         files={"t.dbf": dbf(b"x    ", fields=[("A", "M", 5)])}),
    Case("a list of fields that ends with a NUL", ["cat", "t.dbf"], "A\nx\n", files={"t.dbf": dbf(b"x   ", end=b"\0" * 33)}),
    Case("a list of fields without an end", ["cat", "t.dbf"], "A\nx\n", files={"t.dbf": dbf(b"x   ", end=b"")}),
    Case("a memo file without a header", ["cat", "t.dbf"], "A\tNOTE\nx\t\n", [NO_MEMOS],
         files={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO), "t.dbt": bytes(20)}),
    Case("a memo file", ["cat", "t.dbf"], "A\tNOTE\nx\tmemo\n",
         files={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO), "T.DBT": bytes(512) + b"memo\x1a\x1a"}),
    Case("a memo file of FoxPro", ["cat", "t.dbf"], "A\tNOTE\nx\t\n",
         files={"t.dbf": dbf(b"x   " + b" " * 10, version=0xF5, fields=MEMO), "t.fpt": bytes(512)}),
    Case("fields are told of it too", ["fields", "t.dbf"], "A\ttext\nNOTE\ttext\n", [NO_MEMOS],
         files={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO)}),
    Case("convert", ["convert", "t.dbf", "out.csv"], "", [NO_MEMOS],
         files={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO)},
         leaves={"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO), "out.csv": "A;NOTE\r\nx;\r\n"}),
    Case("a file with another extension", ["count", "t.d.old", "--type", "dbf"], "1\n",
         files={"t.d.old": dbf(MEMO_ROW, version=0x83, fields=MEMO), "t.d.dbt": bytes(1024)}),
    Case("a file without one in a folder with one", ["count", "a.b/t", "--type", "dbf"], "1\n",
         files={"a.b/t": dbf(MEMO_ROW, version=0x83, fields=MEMO), "a.b/t.dbt": bytes(1024)}),
)
class MissingParts(CaseTest):
    def test_doctor(self):
        self.write({"t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO, lost=5)})
        run = run_tool("doctor", "t.dbf", cwd=self.folder)
        self.assertEqual(run.code, 0)
        self.assertIn("tells 6 records, the file holds 1\n", run.err)
        self.assertIn(NO_MEMOS, run.err)

    @unittest.skipIf(os.name != "posix", "links need a right there")
    def test_a_link_to_a_table_in_another_folder(self):
        self.write({"far/t.dbf": dbf(MEMO_ROW, version=0x83, fields=MEMO), "far/t.dbt": bytes(1024)})
        os.symlink("far/t.dbf", self.path("t.dbf"))
        run = run_tool("count", "t.dbf", cwd=self.folder)
        self.assertEqual((run.code, run.out), (0, b"1\n"))
        self.assertIn(NO_MEMOS, run.err)


SPECIAL = b"a;b\n1;2\0\n3;4\n5;6\n\x1a7;8\n"
END = "warning: the text ends at byte 18 (Ctrl-Z, 0x1A): 4 bytes behind it cannot be reached\n"


class SpecialBytes(CaseTest):
    def test_every_command_that_reads_warns(self):
        self.write({"t.csv": SPECIAL})
        for command in (["cat"], ["head"], ["count"], ["stats"], ["errors"], ["fields"], ["convert", "out.csv"],
                        ["find", "--where", "a=1", "--show", "b"]):
            run = run_tool(command[0], "t.csv", *command[1:], cwd=self.folder)
            self.assertIn(NUL, run.err, command)
            self.assertIn(END, run.err, command)
            self.assertEqual(run.err.count(END), 1, command)

    def test_fields_do_not_search_the_whole_file(self):
        self.write({"t.csv": b"a\n" + b"22\n" * 200000 + b"\0\n"})
        self.assertEqual(run_tool("fields", "t.csv", cwd=self.folder).err, "")
        self.assertIn(NUL, run_tool("count", "t.csv", cwd=self.folder).err)


if __name__ == "__main__":
    main()
