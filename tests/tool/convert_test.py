#!/usr/bin/env python3
"""convert: what is written, what is told, and that a target is whole or not there."""
import os
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import (Case, CaseTest, Settings, cases, main, posix_only, run_tool,  # noqa: E402
                        skip_for_windows)

AB = {"t.csv": "a;b\n1;2\n3;4\n"}
WRITTEN = b"a;b\r\n1;2\r\n3;4\r\n"
EXISTS = "error: out.csv exists already: name another target, or replace it with --force\n"
REFUSED = "error: nothing was written: out.csv cannot hold 1 value unchanged; leave out --strict"


def kept(files, **more):
    """The source as it was, and what else lies there afterwards."""
    return {**files, **{name.replace("_", "."): content for name, content in more.items()}}


def lossy(name, source, target, reason, *options):
    """Both ways with a value that delimited text cannot hold: told when written, or refused."""
    files = {"t.csv": source}
    return (Case(name, ["convert", "t.csv", "out.csv", *options], "",
                 ["warning: 1 value will not be read back unchanged from out.csv:\n  " + reason + "\n"], 1,
                 files, kept(files, out_csv=target)),
            Case(name + ", strict", ["convert", "t.csv", "out.csv", "--strict", *options], "",
                 [REFUSED, "  " + reason + "\n"], 5, files))


@cases(
    Case("a table", ["convert", "t.csv", "out.csv"], files=AB, leaves=kept(AB, out_csv=WRITTEN)),
    Case("strict, and nothing lost", ["convert", "t.csv", "out.csv", "--strict"], files=AB,
         leaves=kept(AB, out_csv=WRITTEN)),
    Case("options of reading", ["convert", "t.csv", "out.csv", "--delimiter", "tab", "--header-row", "2",
                                "--encoding", "cp866"],
         files={"t.csv": "x\nЗабой\tb\n1\t2\n".encode("cp866")},
         leaves={"t.csv": "x\nЗабой\tb\n1\t2\n".encode("cp866"),
                 "out.csv": "Забой;b\r\n1;2\r\n".encode("cp1251")}),
    Case("output delimiter", ["convert", "t.csv", "out.csv", "--output-delimiter", "tab"], files=AB,
         leaves=kept(AB, out_csv=b"a\tb\r\n1\t2\r\n3\t4\r\n")),
    Case("output delimiter of several characters",
         ["convert", "t.csv", "out.csv", "--output-delimiter", ", "], files=AB,
         leaves=kept(AB, out_csv=b"a, b\r\n1, 2\r\n3, 4\r\n")),
    Case("output delimiter that is longer than values",
         ["convert", "t.csv", "out.csv", "--output-delimiter", "-->", "--strict"], files=AB,
         leaves=kept(AB, out_csv=b"a-->b\r\n1-->2\r\n3-->4\r\n")),
    Case("unknown extension", ["convert", "t.csv", "out.txt"], files=AB, leaves=kept(AB, out_txt=WRITTEN)),
    Case("no extension", ["convert", "t.csv", "out"], files=AB, leaves=kept(AB, out=WRITTEN)),
    Case("no extension, in a folder that has one", ["convert", "t.csv", "d.dbf/out"], files={**AB, "d.dbf/x": ""},
         leaves={**AB, "d.dbf/x": "", os.path.join("d.dbf", "out"): WRITTEN}),
    Case("a name that is an extension", ["convert", "t.csv", "./.csv"], files=AB,
         leaves=kept(AB, _csv=WRITTEN)),
    Case("Cyrillic name, folder with blanks and a dot", ["convert", "t.csv", "мои. файлы/из скважин.csv"],
         files={**AB, "мои. файлы/x": ""},
         leaves={**AB, "мои. файлы/x": "", "мои. файлы/из скважин.csv": WRITTEN}),
    Case("header alone", ["convert", "t.csv", "out.csv"], files={"t.csv": "a\n"},
         leaves={"t.csv": "a\n", "out.csv": b"a\r\n"}),
    Case("rejected lines stay behind", ["convert", "t.csv", "out.csv"], "",
         ["1 of 2 lines was rejected (first: line 2); see: vok_table errors t.csv\n"], 1,
         {"t.csv": "a\n1;2\n3\n"}, {"t.csv": "a\n1;2\n3\n", "out.csv": b"a\r\n3\r\n"}),
    Case("existing target", ["convert", "t.csv", "out.csv"], "", [EXISTS], 5, {**AB, "out.csv": "old"}),
    Case("existing target, force", ["convert", "t.csv", "out.csv", "--force"],
         files={**AB, "out.csv": "old"}, leaves={**AB, "out.csv": WRITTEN}),
    Case("target is the source", ["convert", "t.csv", "t.csv", "--force"], "",
         ["error: t.csv is both the source and the target: name another target\n"], 2, AB),
    Case("target is the source by another name", ["convert", "t.csv", "./t.csv", "--force"], "",
         ["both the source and the target"], 2, AB),
    Case("target is the source, with the other separator", ["convert", "d/t.csv", "d\\t.csv", "--force"], "",
         ["both the source and the target"], 2, {"d/t.csv": "a\n1\n"}),
    *(Case(f"target of an extension that means another format: {extension}", ["convert", "t.csv", f"d/OUT.{extension}"], "",
           [f"error: cannot write d/OUT.{extension}: writing its format is not in this version\n"], 4,
           {**AB, "d/x": ""})
      for extension in ("xlsm", "XLSB", "xltx", "xltm", "xlt", "ods", "fods", "db", "db3", "sqlite3", "gpkg", "mde",
                        "accde")),
    Case("target of a format that is only read", ["convert", "t.csv", "out.mdb"], "",
         ["error: cannot write out.mdb: writing its format is not in this version\n"], 4, AB),
    Case("target is a folder", ["convert", "t.csv", "out.csv", "--force"], "",
         ["error: cannot write out.csv: it is a folder; name a file in it\n"], 5,
         {**AB, "out.csv/x": ""}),
    Case("folder of the target is missing", ["convert", "t.csv", "no/out.csv"], "",
         ["error: cannot create no/out.csv: check that its folder exists and may be written to\n"], 5, AB),
    Case("empty target", ["convert", "t.csv", ""], "", ["error: the name of the target is empty\n"], 2, AB),
    Case("no target", ["convert", "t.csv"], "", ["TARGET is required"], 2, AB),
    Case("missing source", ["convert", "no.csv", "out.csv"], "", ["cannot open no.csv"], 3, AB),
    Case("empty output delimiter", ["convert", "t.csv", "out.csv", "--output-delimiter", ""], "",
         ["error: --output-delimiter cannot be empty and cannot hold"], 2, AB),
    Case("output delimiter outside the code page",
         ["convert", "t.csv", "out.csv", "--output-delimiter", "中"], "", ["--output-delimiter"], 2, AB),
    *(Case(f"output delimiter of {name}", ["convert", "t.csv", "out.csv", "--output-delimiter", delimiter], "",
           ["--output-delimiter"], 2, AB) for name, delimiter in (("a line feed", "\n"), ("Ctrl-Z", "\x1a"))),
    Case("a header row that is not there", ["convert", "t.csv", "out.csv", "--header-row", "9"], "",
         ["error: t.csv holds no fields: there is nothing to write\n"], 3, AB),
    Case("output delimiter of a quotation mark",
         ["convert", "t.csv", "out.csv", "--output-delimiter", '"'], "", ["--output-delimiter"], 2, AB),
)
class Convert(CaseTest):
    pass


@cases(
    *lossy("outside the code page", "a\nx中\n", b"a\r\nx?\r\n",
           'row 1, field "a": holds a character outside Windows-1251 (U+4E2D)'),
    *lossy("best fit is a loss too", "a\nмé\n", "a\r\nмe\r\n".encode("cp1251"),
           'row 1, field "a": holds a character outside Windows-1251 (U+00E9)'),
    *lossy("beyond the BMP", "a\n𝛿\n", b"a\r\n??\r\n",
           'row 1, field "a": holds a character outside Windows-1251 (U+1D6FF)'),
    *lossy("in the header", "глубина\u00b3\n1\n", "глубина?\r\n1\r\n".encode("cp1251"),
           'the header, field "глубина\u00b3": holds a character outside Windows-1251 (U+00B3)'),
    *lossy("the delimiter", 'a;b\n"1;2";3\n', b"a;b\r\n1;2;3\r\n", 'row 1, field "a": holds the delimiter'),
    *lossy("another delimiter", "a;b\n1;2\n1,5;2\n", b"a,b\r\n1,2\r\n1,5,2\r\n",
           'row 2, field "a": holds the delimiter', "--output-delimiter", ","),
    *lossy("the begin of a delimiter", "a;b\n1-;2\n", b"a--b\r\n1---2\r\n",
           'row 1, field "a": holds the delimiter', "--output-delimiter", "--"),
    *lossy("a row of empty values", "a;b\n ; \n1;2\n", b"a;b\r\n;\r\n1;2\r\n",
           "row 1: holds empty values only, and is skipped when it is read"),
    *lossy("a line break", "a\n1\r2\n", b"a\r\n1\r2\r\n", 'row 1, field "a": holds a line break'),
    *lossy("a quotation mark in front", 'a\n""x\n', b'a\r\n"x\r\n',
           'row 1, field "a": begins or ends with a quotation mark, which is taken away when it is read'),
    *lossy("a quotation mark at the end", 'диаметр\n9 5/8""\n', 'диаметр\r\n9 5/8"\r\n'.encode("cp1251"),
           'row 1, field "диаметр": begins or ends with a quotation mark, which is taken away when it is '
           "read"),
)
class Losses(CaseTest):
    def test_ten_are_listed(self):
        self.write({"t.csv": "a\n" + "中\n" * 1234})
        run = run_tool("convert", "t.csv", "out.csv", cwd=self.folder)
        self.assertEqual(run.code, 1)
        lines = run.err.splitlines()
        self.assertEqual(lines[0],
                         "vok_table: warning: 1 234 values will not be read back unchanged from out.csv:")
        self.assertEqual([line.split(",")[0] for line in lines[1:11]], [f"  row {i}" for i in range(1, 11)])
        self.assertEqual(lines[11:], ["  and 1 224 more"])

    def test_ten_rows_are_listed(self):
        self.write({"t.csv": "a;b\n" + " ; \n" * 12})
        run = run_tool("convert", "t.csv", "out.csv", cwd=self.folder)
        self.assertEqual(run.code, 1)
        lines = run.err.splitlines()
        self.assertEqual(lines[0],
                         "vok_table: warning: 12 values will not be read back unchanged from out.csv:")
        self.assertEqual([line.split(":")[0] for line in lines[1:11]], [f"  row {i}" for i in range(1, 11)])
        self.assertEqual(lines[11:], ["  and 2 more"])

    def test_values_of_a_database(self):
        for value, written, reason in (
                ("x\ny", b"x\r\ny", "holds a line break"),
                ("x\x1ay", b"x\x1ay", "holds Ctrl-Z (0x1A), which ends the file when it is read"),
                ("\vx", b"\vx", "begins or ends with a blank, which is taken away when it is read"),
                ("x\f", b"x\f", "begins or ends with a blank, which is taken away when it is read"),
                ("\uffff", b"?", "holds a character outside Windows-1251 (U+FFFF)")):
            with self.subTest(value):
                self.write({"t.sqlite": database(("t", "a TEXT", [[value]]))})
                run = run_tool("convert", "t.sqlite", "out.csv", "--table", "t", "--force", cwd=self.folder)
                self.assertEqual((run.code, run.err), (1, "vok_table: warning: 1 value will not be read back unchanged "
                                                          f'from out.csv:\n  row 1, field "a": {reason}\n'))
                self.assertEqual(self.content()["out.csv"], b"a\r\n" + written + b"\r\n")
                back = run_tool("cat", "out.csv", "--encoding", "CP1251", cwd=self.folder)
                self.assertNotEqual(back.out, run_tool("cat", "t.sqlite", "--table", "t", cwd=self.folder).out)

    def test_strict_keeps_an_old_target(self):
        self.write({"t.csv": "a\n中\n", "out.csv": "old"})
        run = run_tool("convert", "t.csv", "out.csv", "--strict", "--force", cwd=self.folder)
        self.assertEqual(run.code, 5)
        self.assertEqual(self.content(), {"t.csv": "a\n中\n".encode(), "out.csv": b"old"})

    def test_every_character_of_the_code_page_survives(self):
        characters = [bytes([byte]).decode("cp1251") for byte in range(0x80, 0x100) if byte != 0x98]
        text = "a\n" + "".join(f"x{character}y\n" for character in characters)
        self.write({"t.csv": text})
        run = run_tool("convert", "t.csv", "out.csv", "--strict", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.content()["out.csv"], text.replace("\n", "\r\n").encode("cp1251"))


class RoundTrip(CaseTest):
    def test_a_converted_table_reads_as_before(self):
        self.write({"t.csv": 'Скважина;Порода;X\nС-1;"гранит; серый";1\n№ 2;«кварц»;-2,5\nС-3;;\n'})
        options = ["--output-delimiter", "|"]
        run = run_tool("convert", "t.csv", "out.csv", "--strict", *options, cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        first = run_tool("cat", "t.csv", cwd=self.folder)
        second = run_tool("cat", "out.csv", "--delimiter", "|", "--encoding", "CP1251", cwd=self.folder)
        self.assertEqual(first.out, second.out)
        self.assertEqual((second.code, second.err), (0, ""))

    def test_large_table(self):
        self.write({"t.csv": "a;b\n" + "".join(f"{i};проба {i}\n" for i in range(50000))})
        run = run_tool("convert", "t.csv", "out.csv", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.content()["out.csv"].decode("cp1251"),
                         "a;b\r\n" + "".join(f"{i};проба {i}\r\n" for i in range(50000)))


class Meanwhile(CaseTest):
    """What other programs do while a table is converted."""

    @posix_only
    @skip_for_windows("named pipes of this system")
    def test_a_target_that_appears(self):
        os.mkfifo(self.path("slow.csv"))
        with subprocess.Popen([*Settings.tool, "convert", "slow.csv", "out.csv"], cwd=self.folder,
                              stdin=subprocess.DEVNULL, stderr=subprocess.PIPE) as tool:
            # The pipe opens when the tool does: it has looked for the target by then.
            with open(self.path("slow.csv"), "wb") as source:
                self.write({"out.csv": "another program's"})
                source.write(b"a\n1\n")
            message = tool.stderr.read().decode("utf-8")
        os.remove(self.path("slow.csv"))
        self.assertEqual((tool.returncode, message), (5, "vok_table: " + EXISTS))
        self.assertEqual(self.content(), {"out.csv": b"another program's"})

    @posix_only
    @skip_for_windows("signals of this system")
    def test_signals_that_are_to_be_ignored(self):
        def ignore():
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                signal.signal(number, signal.SIG_IGN)
        rows = [[f"проба {i}"] for i in range(20000)]
        self.write({"t.sqlite": database(("a", "a TEXT", rows), ("b", "a TEXT", rows))})
        with subprocess.Popen([*Settings.tool, "convert", "t.sqlite", "out", "--all-tables"], cwd=self.folder,
                              preexec_fn=ignore, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE) as tool:
            while tool.poll() is None:
                for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                    tool.send_signal(number)
                time.sleep(0.001)
            self.assertEqual((tool.returncode, tool.stderr.read()), (0, b""))
        written = "a\r\n".encode() + "".join(f"{row[0]}\r\n" for row in rows).encode("cp1251")
        self.assertTrue(all(self.content()[os.path.join("out", name)] == written for name in ("a.csv", "b.csv")))


class DiskTrouble(CaseTest):
    """Whatever fails, there is no half file and no temporary file, and the old target stays."""

    def limited(self, *arguments):
        import resource  # only here: it does not exist everywhere
        import signal

        def limit_file_size():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 16, 1 << 16))
        return run_tool(*arguments, cwd=self.folder, preexec_fn=limit_file_size)

    @posix_only
    @skip_for_windows("limits of this system would hit the Windows program's own files")
    def test_disk_that_takes_only_a_part(self):
        files = {"t.csv": b"a;b\n" + b"1;2\n" * 100000, "out.csv": b"old"}
        self.write(files)
        run = self.limited("convert", "t.csv", "out.csv", "--force")
        self.assertEqual((run.code, run.err),
                         (5, "vok_table: error: out.csv was not written: the disk did not take the whole "
                             "file; is it full?\n"))
        self.assertEqual(self.content(), files)

    @posix_only
    @skip_for_windows("permissions of this system do not reach the Windows program")
    def test_folder_without_permission(self):
        if os.geteuid() == 0:
            self.skipTest("root writes everywhere")
        self.write({"t.csv": "a\n", "out/x": ""})
        os.chmod(self.path("out"), 0o555)
        self.addCleanup(os.chmod, self.path("out"), 0o755)
        run = run_tool("convert", "t.csv", "out/out.csv", cwd=self.folder)
        self.assertEqual(run.code, 5)
        self.assertIn("cannot create out/out.csv", run.err)

    @posix_only
    @skip_for_windows("links and pipes of this system")
    def test_links_and_pipes_are_not_replaced(self):
        self.write({"t.csv": "a\n1\n", "real.csv": "old"})
        os.symlink("real.csv", self.path("link.csv"))
        os.symlink("nothing.csv", self.path("dangling.csv"))
        os.mkfifo(self.path("pipe.csv"))
        for target in ("link.csv", "dangling.csv", "pipe.csv"):
            for options in ([], ["--force"]):
                run = run_tool("convert", "t.csv", target, *options, cwd=self.folder)
                self.assertEqual((run.code, run.err),
                                 (5, f"vok_table: error: cannot write {target}: it is a link, a pipe or a "
                                     "device; name a file\n"))
        self.assertTrue(os.path.islink(self.path("link.csv")))
        self.assertTrue(os.path.islink(self.path("dangling.csv")))
        os.remove(self.path("pipe.csv"))
        os.remove(self.path("dangling.csv"))
        self.assertEqual(self.content(), {"t.csv": b"a\n1\n", "real.csv": b"old", "link.csv": b"old"})

    @posix_only
    @skip_for_windows("links of this system")
    def test_hard_link_to_the_source(self):
        self.write({"t.csv": "a\n1\n"})
        os.link(self.path("t.csv"), self.path("same.csv"))
        run = run_tool("convert", "t.csv", "same.csv", "--force", cwd=self.folder)
        self.assertEqual(run.code, 2)
        self.assertIn("both the source and the target", run.err)


if __name__ == "__main__":
    main()
