#!/usr/bin/env python3
"""What the tool answers when it cannot do what is asked: exit codes, and messages that help."""
import os
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import (Case, CaseTest, Settings, cases, main, posix_only, run_tool,  # noqa: E402
                        skip_for_windows)

AB = {"t.csv": "a;b\n1;2\n"}
HELP = "hint: vok_table --help tells how it is used\n"
CAT_HELP = "hint: vok_table cat --help tells how it is used\n"
COMMANDS = ("the commands are tables, fields, head, cat, count, stats, errors, find, convert, doctor, formats, "
            "completion, version\n")


@cases(
    Case("no command", [], "", ["error: a command is missing; " + COMMANDS, HELP], 2),
    Case("unknown command", ["show"], "", ['error: there is no command "show"; ' + COMMANDS, HELP], 2),
    Case("unknown option without a command", ["--color"], "", ['there is no option "--color"; '], 2),
    Case("mistyped command", ["hed", "t.csv"], "",
         ['error: there is no command "hed"; perhaps head is meant; ' + COMMANDS, HELP], 2, AB),
    Case("unknown option", ["cat", "t.csv", "--color"], "", ['error: cat has no option "--color"\n', CAT_HELP], 2, AB),
    Case("mistyped option", ["cat", "--encodng", "CP866", "t.csv"], "",
         ['error: cat has no option "--encodng"; perhaps --encoding is meant\n', CAT_HELP], 2, AB),
    Case("the begin of an option", ["cat", "t.csv", "--enc", "CP866"], "",
         ['cat has no option "--enc"; perhaps --encoding is meant\n'], 2, AB),
    Case("mistyped option with its value", ["cat", "t.csv", "--dleimiter=,"], "",
         ['cat has no option "--dleimiter"; perhaps --delimiter is meant\n'], 2, AB),
    Case("no file", ["cat"], "", ["error: FILE is required\n", CAT_HELP], 2),
    Case("an option before the command", ["--csv", "errors", "t.csv"], "",
         ['error: "--csv" stands before the command errors: options come behind it\n',
          "hint: vok_table errors --help tells how it is used\n"], 2, AB),
    Case("a word before the command", ["show", "cat", "t.csv"], "",
         ['error: there is no command "show"; ' + COMMANDS], 2, AB),
    Case("a minus alone", ["cat", "t.csv", "-"], "",
         ['error: cat has no use for "-"; a name with blanks needs quotes\n'], 2, AB),
    Case("two files", ["cat", "t.csv", "t.csv"], "", ['error: cat has no use for "t.csv"; a name with blanks needs quotes\n'], 2, AB),
    Case("option without its value", ["cat", "t.csv", "--delimiter"], "",
         ["error: --delimiter needs a value: TEXT\n", CAT_HELP], 2, AB),
    Case("option given twice", ["cat", "t.csv", "--quote", "a", "--quote", "b"], "", ["--quote"], 2, AB),
    Case("option of another command", ["cat", "t.csv", "--force"], "", ['cat has no option "--force"\n'], 2, AB),
    Case("find without a condition", ["find", "t.csv", "--show", "a"], "", ["--where is required"], 2, AB),
    Case("find without a field", ["find", "t.csv", "--where", "a=1"], "",
         ["error: name the fields to print, either one with --show FIELD or some with --select "
          "FIELD[,FIELD...]\n"], 2, AB),
    Case("find with both", ["find", "t.csv", "--where", "a=1", "--show", "a", "--select", "b"], "",
         ["name the fields to print, either one"], 2, AB),
    Case("type by unknown name", ["cat", "t.csv", "--type", "ods"], "",
         ['error: there is no type "ods": the types are auto, csv, xls, xls-odbc, access, dbf, sqlite, '
          "micromine, dhdb, petrel\n"], 2, AB),
    Case("type by unknown number", ["cat", "t.csv", "--type", "10"], "", ['no type "10"'], 2, AB),
    Case("unknown encoding", ["cat", "t.csv", "--encoding", "KOI8-R"], "",
         ['there is no encoding "KOI8-R": the encodings are UTF-8, UTF-16, ', "CP866, ASCII, SYSTEM, or"],
         2, AB),
    Case("encoding number too large", ["cat", "t.csv", "--encoding", "19"], "", ["no encoding"], 2, AB),
    Case("encoding number below 0", ["cat", "t.csv", "--encoding", "-1"], "", ["no encoding"], 2, AB),
    Case("header row no number", ["cat", "t.csv", "--header-row", "first"], "",
         ['error: --header-row "first" is no line: give its number, counted from 1, or none\n'], 2, AB),
    Case("header row below 0", ["cat", "t.csv", "--header-row", "-1"], "", ['"-1" is no line'], 2, AB),
    Case("header row too large", ["cat", "t.csv", "--header-row", "2147483648"], "",
         ['"2147483648" is no line'], 2, AB),
    Case("data row no number", ["cat", "t.csv", "--data-row", "2x"], "", ['"2x" is no line'], 2, AB),
    Case("data row 0", ["cat", "t.csv", "--data-row", "0"], "", ['--data-row "0" is no line'], 2, AB),
    Case("data row not below the header", ["cat", "t.csv", "--header-row", "3", "--data-row", "3"], "",
         ["--data-row 3 does not lie below the header row, which is line 3\n"], 2, AB),
    Case("data row without a header", ["cat", "t.csv", "--header-row", "none", "--data-row", "2"], "",
         ["error: --data-row needs a header row: without one the data begin in line 1\n"], 2, AB),
    Case("number of rows below 0", ["head", "t.csv", "-n", "-1"], "",
         ['error: -n "-1" is no number of rows: give it in digits\n'], 2, AB),
    Case("empty file name", ["cat", ""], "", ["error: the name of the file is empty\n"], 3),
    Case("missing file", ["cat", "нет такого.csv"], "",
         ["error: cannot open нет такого.csv: there is no such file; check the path\n"], 3),
    Case("missing file of an unavailable format", ["cat", "t.dbf"], "", ["there is no such file"], 3),
    Case("folder", ["count", "wells.csv"], "",
         ["error: cannot open wells.csv: it is a folder; name a file in it\n"], 3,
         {"wells.csv/t.csv": "a\n"}),
)
class Refusals(CaseTest):
    pass


class Unavailable(CaseTest):
    """Formats that the tool itself says it does not read are refused, by extension and by type."""

    EXTENSIONS = {"xls": "xls", "access": "accdb", "dbf": "dbf", "sqlite": "sqlite",
                  "micromine": "micromine", "dhdb": "dhdb"}

    def formats(self):
        rows = run_tool("formats").out.decode("utf-8").splitlines()[1:]
        return {row.split("\t")[1]: row.split("\t") for row in rows}

    def test_reading(self):
        self.write({"t.csv": "a\n1\n"})
        for name, row in self.formats().items():
            if row[3] == "yes":
                continue
            run = run_tool("cat", "t.csv", "--type", name, cwd=self.folder)
            self.assertEqual((run.code, run.out), (4, b""), name)
            self.assertEqual(run.err,
                             f'vok_table: error: cannot read t.csv: reading the format "{row[0]}" is not '
                             "in this version\nvok_table: hint: vok_table formats lists what can be read; "
                             "--type chooses another format\n")

    def test_reading_by_extension(self):
        for name, row in self.formats().items():
            # Without the converter a spreadsheet is a matter of ODBC, which odbc_test.py looks at.
            if row[3] == "yes" or name == "xls" or name not in self.EXTENSIONS:
                continue
            file = "t." + self.EXTENSIONS[name].upper()
            self.write({file: "a\n1\n"})
            run = run_tool("cat", file, cwd=self.folder)
            self.assertEqual((run.code, run.out), (4, b""), name)
            self.assertIn(f"cannot read {file}: reading the format", run.err)

    def test_writing(self):
        self.write({"t.csv": "a\n1\n"})
        for name, extension in {"dbf": "dbf", "xls": "xlsx"}.items():
            if self.formats()[name][4] == "yes":
                continue
            run = run_tool("convert", "t.csv", "out." + extension, cwd=self.folder)
            self.assertEqual((run.code, run.out), (4, b""), name)
            self.assertIn(f"cannot write out.{extension}: writing its format is not in this version",
                          run.err)
        self.assertEqual(self.content(), {"t.csv": b"a\n1\n"})


class Unreadable(CaseTest):
    @skip_for_windows("permissions of this system do not reach the Windows program")
    def test_file_without_permission(self):
        if os.geteuid() == 0:
            self.skipTest("root reads everything")
        self.write({"t.csv": "a\n", "t": "a\n"})
        for name in ("t.csv", "t"):
            os.chmod(self.path(name), 0)
            run = run_tool("cat", name, cwd=self.folder)
            self.assertEqual((run.code, run.out), (3, b""))
            self.assertEqual(run.err, f"vok_table: error: cannot open {name}: it may not be read; check "
                                      "its permissions and close programs that use it\n")


class Output(CaseTest):
    """Where standard output leads does not matter for the data, and matters for the end."""

    def big(self):
        self.write({"t.csv": "a;b\n" + "1;2\n" * 100000})

    def test_pipe_of_many_lines(self):
        self.big()
        run = run_tool("cat", "t.csv", cwd=self.folder)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(run.out, b"a\tb\n" + b"1\t2\n" * 100000)

    def test_file(self):
        self.write({"t.csv": "a;b\n1;2\n"})
        with open(self.path("out"), "wb") as out:
            run = run_tool("cat", "t.csv", cwd=self.folder, stdout=out)
        self.assertEqual((run.code, run.err), (0, ""))
        self.assertEqual(self.content()["out"], b"a\tb\n1\t2\n")

    @posix_only
    @skip_for_windows("the Windows program is not told why its pipe closed")
    def test_reader_that_goes_away(self):
        self.big()
        with subprocess.Popen([*Settings.tool, "cat", "t.csv"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as tool:
            self.assertEqual(tool.stdout.readline(), b"a\tb\n")
            tool.stdout.close()
            self.assertEqual(tool.stderr.read(), b"")
        self.assertEqual(tool.returncode, 0)

    @posix_only
    @skip_for_windows("the device is one of this system")
    def test_full_disk(self):
        self.big()
        for command in (["cat", "t.csv"], ["count", "t.csv"], ["--help"], ["formats"]):
            with open("/dev/full", "wb") as full:
                run = run_tool(*command, cwd=self.folder, stdout=full)
            self.assertEqual(run.code, 5, command)
            self.assertEqual(run.err, "vok_table: error: standard output did not take everything: is the "
                                      "disk full?\n")


class Memory(CaseTest):
    @posix_only
    @skip_for_windows("limits of this system would hit the Windows program's own files")
    def test_table_that_is_too_large(self):
        import resource  # only here: it does not exist everywhere

        def limit_memory():
            resource.setrlimit(resource.RLIMIT_AS, (1 << 26, 1 << 26))
        if run_tool("version", preexec_fn=limit_memory).code != 0:
            self.skipTest("the tool itself does not fit into the limit")
        self.write({"t.csv": "a\n" + ("x" * 1000 + "\n") * 80000})
        run = run_tool("cat", "t.csv", cwd=self.folder, preexec_fn=limit_memory)
        self.assertEqual((run.code, run.out, run.err),
                         (3, b"", "vok_table: error: not enough memory for this table\n"))


class Names(CaseTest):
    @posix_only
    @skip_for_windows("names are no bytes there")
    def test_bytes_that_are_no_character(self):
        run = run_tool("cat", os.fsdecode(b"a\xffb.csv"), cwd=self.folder)
        self.assertEqual((run.code, run.err), (3, "vok_table: error: cannot open a\ufffdb.csv: there is no such file; "
                                                  "check the path\n"))

    @posix_only
    @skip_for_windows("sockets of this system")
    def test_a_socket(self):
        import socket
        with socket.socket(socket.AF_UNIX) as listener:
            folder = os.open(self.folder, os.O_RDONLY)
            self.addCleanup(os.close, folder)
            listener.bind(f"/proc/self/fd/{folder}/t.csv")  # the folder's own path may be too long for one
            for command in ("cat", "count"):
                run = run_tool(command, "t.csv", cwd=self.folder)
                self.assertEqual((run.code, run.out, run.err),
                                 (3, b"", "vok_table: error: cannot open t.csv: it may not be read; check its "
                                          "permissions and close programs that use it\n"))


class Pipes(CaseTest):
    """A source that can be read only once: opened once, never looked into beforehand."""

    @posix_only
    @skip_for_windows("named pipes of this system")
    def test_hints_read_no_pipe_again(self):
        os.mkfifo(self.path("t.csv"))
        with subprocess.Popen([*Settings.tool, "count", "t.csv"], cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as tool:
            with open(self.path("t.csv"), "wb") as source:
                source.write(b"a\n1;2\n3;4\n")
            self.assertEqual((tool.stdout.read(), tool.stderr.read()),
                             (b"0\n", b"vok_table: warning: 2 of 2 lines were rejected (first: line 2); "
                                      b"see: vok_table errors t.csv\n"))
        self.assertEqual(tool.returncode, 1)

    @posix_only
    @skip_for_windows("named pipes of this system")
    def test_source_is_a_pipe(self):
        for command, answer, code in ((["count"], b"2\n", 0), (["cat"], b"a\tb\n1\t2\n3\t4\n", 0),
                                      (["errors"], b"", 3)):
            with subprocess.Popen(["cat"], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as source:
                source.stdin.write(b"a;b\n1;2\n3;4\n")
                source.stdin.close()
                name = f"/dev/fd/{source.stdout.fileno()}"
                tool = subprocess.run([*Settings.tool, *command, name], check=False,
                                      pass_fds=[source.stdout.fileno()], stdin=subprocess.DEVNULL,
                                      capture_output=True)
            self.assertEqual((tool.returncode, tool.stdout), (code, answer), tool.stderr)
            self.assertEqual(b"can be read only once" in tool.stderr, code == 3)


if __name__ == "__main__":
    main()
