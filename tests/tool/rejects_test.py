#!/usr/bin/env python3
"""Rejected lines: errors as comma-separated values, and the file of --rejects, byte by byte."""
import csv
import io
import os
import random
import signal
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import (Case, CaseTest, Settings, cases, main, posix_only, run_tool,  # noqa: E402
                        skip_for_windows)

REJECTED = {"t.csv": b"a;b\r\n1;2\r\n3\r\n4;5;6\r\n7;8\r\n"}
WRITTEN = b"a;b\r\n1;2\r\n7;8\r\n"
LOST = ["2 of 4 lines were rejected"]
CONVERT = ["convert", "t.csv", "out.csv", "--rejects", "bad.csv"]
EXISTS = "error: bad.csv exists already: name another target, or replace it with --force\n"
TITLES = "line,offset,expected,found,text\n"


def report(name, line, text):
    """A case with one rejected line, the third."""
    return Case(name, ["errors", "t.csv", "--csv"], TITLES + f"3,8,2,{line.count(';') + 1},{text}\n",
                ["1 of 2 lines was rejected"], 1, {"t.csv": f"a;b\n1;2\n{line}\n"})


@cases(
    Case("nothing rejected", ["errors", "t.csv", "--csv"], TITLES, files={"t.csv": "a\n1\n"}),
    report("plain", "x", "x"),
    report("a comma", "x,y", '"x,y"'),
    report("quotes", '"x" y', '"""x"" y"'),
    report("a blank in front", " x", '" x"'),
    report("a blank at the end", "x ", '"x "'),
    report("a line break", "x\ry", '"x\ry"'),
    report("Cyrillic", "скв;1;2", "скв;1;2"),
    Case("of another command", ["cat", "t.csv", "--csv"], "", ["cat has no option \"--csv\""], 2, REJECTED),
)
class Report(CaseTest):
    def test_python_reads_it_and_finds_the_lines(self):
        rng = random.Random(4)
        for end in ("\n", "\r\n"):
            lines = ["a;b"] + ["".join(rng.choice('x",; \tЖ\r') for _ in range(rng.randint(1, 12))) + "q" for _ in range(200)]
            content = "".join(line + end for line in lines).encode("utf-8")
            self.write({"t.csv": content})
            run = run_tool("errors", "t.csv", "--csv", "--quote", "", cwd=self.folder)
            rows = list(csv.reader(io.StringIO(run.out.decode("utf-8"), newline="")))
            self.assertGreater(len(rows), 50)
            self.assertEqual(rows[0], TITLES.strip().split(","))
            for line, offset, expected, found, text in rows[1:]:
                self.assertEqual(text, lines[int(line) - 1])
                self.assertEqual(content[int(offset):].split(end.encode())[0].decode("utf-8"), text)
                self.assertEqual((int(expected), int(found)), (2, text.count(";") + 1))


@cases(
    Case("their own bytes", CONVERT, "", LOST, 1, REJECTED,
         {**REJECTED, "out.csv": WRITTEN, "bad.csv": b"3\r\n4;5;6\r\n"}),
    Case("in their encoding, without an end", [*CONVERT, "--encoding", "CP866"], "", ["1 of 2 lines was rejected"], 1,
         {"t.csv": "a;b\n1;2\nпроба".encode("cp866")},
         {"t.csv": "a;b\n1;2\nпроба".encode("cp866"), "out.csv": b"a;b\r\n1;2\r\n", "bad.csv": "проба".encode("cp866")}),
    Case("NUL bytes", CONVERT, "", ["1 of 2 lines was rejected"], 1, {"t.csv": b"a;b\n1\0z\n;2;3\n5;6\n"},
         {"t.csv": b"a;b\n1\0z\n;2;3\n5;6\n", "out.csv": b"a;b\r\n5;6\r\n", "bad.csv": b"1\0z\n;2;3\n"}),
    Case("no rejected line", CONVERT, files={"t.csv": "a\n1\n"},
         leaves={"t.csv": "a\n1\n", "out.csv": b"a\r\n1\r\n", "bad.csv": b""}),
    Case("an older file", CONVERT, "", [EXISTS], 5, {**REJECTED, "bad.csv": "old"}),
    Case("an older file, force", [*CONVERT, "--force"], "", LOST, 1, {**REJECTED, "bad.csv": "old"},
         {**REJECTED, "out.csv": WRITTEN, "bad.csv": b"3\r\n4;5;6\r\n"}),
    Case("the source", ["convert", "t.csv", "out.csv", "--rejects", "./t.csv", "--force"], "",
         ["error: ./t.csv is both the source and the target: name another target\n"], 2, REJECTED),
    Case("the target", ["convert", "t.csv", "out.csv", "--rejects", "out.csv", "--force"], "",
         ["error: out.csv is both the target and the file for rejected lines: name another one\n"], 2, REJECTED),
    Case("the target by another name", ["convert", "t.csv", "out.csv", "--rejects", "./out.csv", "--force"], "",
         ["error: ./out.csv is both the target and the file for rejected lines"], 2, REJECTED),
    Case("the target by another folder's name", ["convert", "t.csv", "d/out.csv", "--rejects", "d/../d//OUT.csv"], "",
         ["error: d/../d//OUT.csv is both the target and the file for rejected lines"], 2, {**REJECTED, "d/x": ""}),
    Case("the target's name in another folder", ["convert", "t.csv", "out.csv", "--rejects", "d/out.csv"], "",
         LOST, 1, {**REJECTED, "d/x": ""},
         {**REJECTED, "d/x": "", "out.csv": WRITTEN, "d/out.csv": b"3\r\n4;5;6\r\n"}),
    Case("an old target stays", ["convert", "t.csv", "out.csv", "--rejects", "no/bad.csv", "--force"], "",
         ["error: cannot write no/bad.csv: check that its folder exists"], 5, {**REJECTED, "out.csv": "old"}),
    Case("a folder", ["convert", "t.csv", "out.csv", "--rejects", "d"], "", ["cannot write d: it is a folder"], 5,
         {**REJECTED, "d/x": ""}),
    Case("a folder that is missing", ["convert", "t.csv", "out.csv", "--rejects", "no/bad.csv"], "",
         ["error: cannot write no/bad.csv: check that its folder exists"], 5, REJECTED),
    Case("no name", ["convert", "t.csv", "out.csv", "--rejects", ""], "", ["is empty: give it behind --rejects"], 2,
         REJECTED),
    Case("nothing is kept when nothing is written", [*CONVERT, "--strict"], "", ["nothing was written"], 5,
         {"t.csv": "a\n中\n1;2\n"}),
)
class Rejects(CaseTest):
    def test_a_line_longer_than_a_block(self):
        line = b"x" * 700_000 + b";;\r\n"
        self.write({"t.csv": b"a;b\n1;2\n" + line + b"3;4\n" + line})
        run = run_tool(*CONVERT, cwd=self.folder)
        self.assertEqual((run.code, self.content()["bad.csv"]), (1, line + line))

    def start(self, files, begun):
        """Starts the conversion and waits until so many files with temporary names are there."""
        self.write(files)
        tool = subprocess.Popen([*Settings.tool, *CONVERT], cwd=self.folder, stdin=subprocess.DEVNULL,
                                stderr=subprocess.PIPE)
        while tool.poll() is None and sum(name.startswith("~vok_table") for name in os.listdir(self.folder)) < begun:
            time.sleep(0.001)
        return tool

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted(self):
        # Nothing is written yet.
        with self.start({"t.csv": b"a;b\n1;2\n" + b"3\n" * 1000000}, begun=1) as tool:
            tool.send_signal(signal.SIGINT)
            message = tool.stderr.read().decode("utf-8")
        self.assertEqual(tool.returncode, 5)
        self.assertTrue(message.startswith("vok_table: error: interrupted: bad.csv was not written\n"), message)
        self.assertEqual(os.listdir(self.folder), ["t.csv"])

    @posix_only
    @skip_for_windows("its program starts too slowly to be met at work")
    def test_file_that_appears_meanwhile(self):
        with self.start({"t.csv": b"a;b\n3\n" + b"1;2\n" * 1000000}, begun=2) as tool:
            self.write({"bad.csv": "new"})
            message = tool.stderr.read().decode("utf-8")
        self.assertEqual(tool.returncode, 5)
        self.assertTrue(message.startswith(f"vok_table: {EXISTS}"), message)
        self.assertEqual(sorted(os.listdir(self.folder)), ["bad.csv", "out.csv", "t.csv"])
        self.assertEqual(self.content()["bad.csv"], b"new")

    def test_what_is_kept_can_be_read_again(self):
        self.write(REJECTED)
        run_tool(*CONVERT, cwd=self.folder)
        run = run_tool("cat", "bad.csv", "--header-row", "none", cwd=self.folder)
        self.assertEqual(run.out, b"field_0\n3\n")

    @posix_only
    @skip_for_windows("named pipes of this system")
    def test_a_pipe(self):
        os.mkfifo(self.path("pipe.csv"))
        run = run_tool("convert", "pipe.csv", "out.csv", "--rejects", "bad.csv", cwd=self.folder)
        self.assertEqual((run.code, "can be read only once" in run.err), (3, True))


@posix_only
class OtherConverter(CaseTest):
    """A converter whose lines do not fit each other: they have no place in the workbook."""

    def setUp(self):
        super().setUp()
        self.convert_to("printf 'a$b\\n1$2\\nскв\\n4$5$6\\n'")

    def convert_to(self, command):
        self.write({"t.xlsx": "", "vok_xls2csv.exe": f'#!/bin/sh\n{{ {command}; }} > "$3/t.csv"\n'})
        os.chmod(self.path("vok_xls2csv.exe"), 0o755)

    @skip_for_windows("its converter is no script of this system")
    def test_report(self):
        for options, out in ((["--csv"], TITLES + "3,,2,1,скв\n4,,2,3,4$5$6\n"),
                             ([], TITLES.replace(",", "\t") + "3\t\t2\t1\tскв\n4\t\t2\t3\t4$5$6\n")):
            run = self.run_copy("errors", "t.xlsx", *options)
            self.assertEqual((run.code, run.out.decode("utf-8")), (1, out), run.err)
        run = self.run_copy("errors", "t.xlsx", "--json")
        self.assertIn(b'{"line":3,"offset":null,"expected":2,"found":1,', run.out)

    @skip_for_windows("its converter is no script of this system")
    def test_rejects(self):
        run = self.run_copy("convert", "t.xlsx", "out.csv", "--rejects", "bad.csv")
        self.assertEqual((run.code, self.content()["bad.csv"].decode("utf-8")), (1, "скв\n4$5$6\n"), run.err)
        self.assertEqual(self.content()["out.csv"], b"a;b\r\n1;2\r\n")

    @skip_for_windows("its converter is no script of this system")
    def test_rejects_that_appear_while_the_source_is_read(self):
        self.convert_to("printf 'a$b\\n1$2\\n3\\n'; echo new > bad.csv")
        run = self.run_copy("convert", "t.xlsx", "out.csv", "--rejects", "bad.csv")
        self.assertEqual((run.code, self.content()["bad.csv"]), (5, b"new\n"), run.err)
        self.assertIn(EXISTS, run.err)
        self.assertNotIn("out.csv", self.content())

    @skip_for_windows("its converter is no script of this system")
    def test_rejects_that_cannot_be_written(self):
        def limit_file_size():
            import resource
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 16, 1 << 16))
        run = self.run_copy("convert", "t.xlsx", "out.csv", "--rejects", "no/bad.csv")
        self.assertEqual(run.code, 5)
        self.assertIn("cannot write no/bad.csv: check that its folder exists, may be written to and has room", run.err)
        # The line takes three times as many bytes once each of them is a character.
        self.convert_to("printf 'a$b\\n1$2\\n'; head -c 30000 /dev/zero | tr '\\0' '\\377'; echo")
        run = self.run_copy("convert", "t.xlsx", "out.csv", "--rejects", "bad.csv", "--force", preexec_fn=limit_file_size)
        self.assertEqual(run.code, 5)
        self.assertIn("cannot write bad.csv: check that its folder exists, may be written to and has room", run.err)
        self.assertEqual(sorted(os.listdir(self.folder)), ["t.xlsx", "vok_table", "vok_xls2csv.exe"])


if __name__ == "__main__":
    main()
