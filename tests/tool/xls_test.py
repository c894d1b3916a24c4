#!/usr/bin/env python3
"""The converter program and vok_table over workbooks, from outside.

Workbooks are made here, part by part (support/workbooks.py). Real ones, in the folder that VOK_REAL_FILES
names, are compared cell by cell with what openpyxl and xlrd read; without the folder or these packages that
is skipped. Which differences are right and why: docs/formats/xlsx.md and xls.md.
"""
import os
import signal
import subprocess
import sys
import time
import unittest
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
import displayed_workbooks  # noqa: E402
import real_workbooks  # noqa: E402
from tool_cases import Case, CaseTest, Settings, cases, main, posix_only, run_tool, skip_for_windows  # noqa: E402
from workbooks import book, cell, sheet  # noqa: E402

SIMPLE = sheet("<row><c t='str'><v>a</v></c><c t='str'><v>b</v></c></row><row><c><v>1</v></c><c><v>2</v></c></row>")
AB = {"t.xlsx": book({"One": SIMPLE, "Два": sheet("<row><c><v>7</v></c></row>")})}
ONE = {"t.xlsx": book({"One": SIMPLE})}
NO_LINE = "error: cannot read t.xlsx: the sheet has no line 30; check --header-row\n"
DAMAGED = {"t.xlsx": b"PK\x03\x04 and nothing more"}
NOT_CONVERTED = "cannot read t.xlsx"


@cases(
    Case("tables", ["tables", "t.xlsx"], "One\nДва\n", files=AB),
    Case("fields", ["fields", "t.xlsx"], "a\ttext\nb\ttext\n", files=AB),
    Case("head", ["head", "t.xlsx"], "a\tb\n1\t2\n", files=AB),
    Case("cat", ["cat", "t.xlsx"], "a\tb\n1\t2\n", files=AB),
    Case("count", ["count", "t.xlsx"], "1\n", files=AB),
    Case("find", ["find", "t.xlsx", "--where", "a=1", "--show", "b"], "2\n", files=AB),
    Case("a sheet by its name", ["cat", "t.xlsx", "--table", "Два", "--header-row", "none"], "field_0\n7\n",
         files=AB),
    Case("convert", ["convert", "t.xlsx", "out.csv"], files=AB,
         leaves={**AB, "out.csv": b"a;b\r\n1;2\r\n"}),
    Case("a macro workbook", ["head", "t.xlsm"], "a\tb\n1\t2\n", files={"t.xlsm": AB["t.xlsx"]}),
    Case("fields without a header row", ["fields", "t.xlsx", "--header-row", "none"], "field_0\ttext\nfield_1\ttext\n",
         files=AB),
    Case("fields of another header row", ["fields", "t.xlsx", "--header-row", "2"], "1\ttext\n2\ttext\n", files=AB),
    *(Case(f"{command[0]} with a header row behind the sheet's end", [*command, "--header-row", "30"], "",
           [NO_LINE, "hint: name one of its tables with --table: One, Два\n"], 3, AB)
      for command in (["fields", "t.xlsx"], ["cat", "t.xlsx"])),
    Case("options of text", ["cat", "t.xlsx", "--encoding", "UTF-8", "--header-row", "2"], "1\t2\n",
         ["hint: --encoding has no effect on t.xlsx\n"], files=AB),
    Case("an unknown sheet", ["head", "t.xlsx", "--table", "Three"], "", [NOT_CONVERTED, '"Three"'], 3, AB),
    Case("tables of a damaged workbook", ["tables", "t.xlsx"], "", [NOT_CONVERTED], 3, DAMAGED),
    Case("head of a damaged workbook", ["head", "t.xlsx"], "", [NOT_CONVERTED], 3, DAMAGED),
    Case("fields of a damaged workbook", ["fields", "t.xlsx"], "", [NOT_CONVERTED], 3, DAMAGED),
    Case("a renamed text file", ["head", "t.xlsx"], "", [NOT_CONVERTED], 3, {"t.xlsx": "a;b\n1;2\n"}),
)
class TestTool(CaseTest):
    def test_no_other_sheet_is_proposed_for_a_wrong_line(self):
        for files, options in ((AB, ["--table", "Два"]), (ONE, [])):
            self.write(files)
            run = run_tool("cat", "t.xlsx", "--header-row", "30", *options, cwd=self.folder)
            self.assertEqual((run.code, run.err), (3, "vok_table: " + NO_LINE))


LOCKED = b"\x09\x08\x10\0\0\x06\x05\0" + b"\0" * 12 + b"\x2F\0\2\0\0\0"  # a BIFF stream with a password


class TestTemporaryFolder(unittest.TestCase):
    def test_nothing_is_left_in_it(self):
        case = CaseTest()
        case.setUp()
        self.addCleanup(case.doCleanups)
        folder = case.path("temporary files")
        os.mkdir(folder)
        seen = "Z:" + folder.replace("/", "\\") if Settings.is_windows() and folder.startswith("/") else folder
        whole = AB["t.xlsx"]
        for name, content, code in (("t.xlsx", whole, 0), ("t.xlsx", whole[:len(whole) // 2], 3),
                                    ("t.xlsx", b"a;b\n1;2\n", 3), ("t.xls", b"<html><table></table></html>", 3),
                                    ("t.xls", LOCKED, 3), ("t.xls", whole, 0)):
            case.write({name: content})
            for command in ("tables", "cat"):
                with self.subTest(f"{command} {name} {content[:20]}"):
                    run = run_tool(command, name, cwd=case.folder, env={"TMPDIR": folder, "TMP": seen})
                    self.assertEqual(run.code, code, run.err)
                    left = [name for name in os.listdir(folder) if not name.startswith("wine-")]  # Wine's own
                    self.assertEqual(left, [])


class TestFolderOfItsOwn(CaseTest):
    """The converter leaves the sheet under the workbook's name: not among the files of others."""

    def temporary(self):
        folder = self.path("temp")
        os.makedirs(folder, exist_ok=True)
        seen = "Z:" + folder.replace("/", "\\") if Settings.is_windows() and folder.startswith("/") else folder
        return {"TMPDIR": folder, "TMP": seen, "TEMP": seen}

    def test_files_of_that_name_stay(self):
        environment = self.temporary()
        names = ["t.csv", "t.csv.lines", "t_tabList.csv", "t.xlsx", "t.xls"]
        self.write({f"temp/{name}": b"the user's own" for name in names})
        self.write({"t.xlsx": AB["t.xlsx"], "t.xls": AB["t.xlsx"]})
        for command in (["cat", "t.xlsx"], ["tables", "t.xlsx"], ["count", "t.xls"], ["doctor", "t.xlsx"],
                        ["errors", "t.xlsx"], ["fields", "t.xlsx", "--table", "no such sheet"]):
            run_tool(*command, cwd=self.folder, env=environment)
            self.assertEqual({name: content for name, content in self.content().items()
                              if name.startswith("temp/") and not name.startswith("temp/wine-")},
                             {f"temp/{name}": b"the user's own" for name in names}, command)

    def test_two_of_one_name_at_a_time(self):
        environment = {**os.environ, **self.temporary()}
        expected = {}
        for name in ("a", "b"):
            rows = [f"{name}{i}" for i in range(5000)]
            expected[name] = "\n".join(["h", *rows, ""])
            cells = "".join(f"<row><c t='str'><v>{text}</v></c></row>" for text in ["h", *rows])
            self.write({f"{name}/data.xlsx": book({"One": sheet(cells)})})
        for _ in range(4):
            running = {name: subprocess.Popen([*Settings.tool, "cat", f"{name}/data.xlsx"], cwd=self.folder,
                                              env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
                       for name in expected}
            for name, tool in running.items():
                printed = tool.communicate()[0].decode("utf-8").replace("\r\n", "\n")
                self.assertEqual((tool.returncode, printed[-200:], len(printed)),
                                 (0, expected[name][-200:], len(expected[name])))
        self.assertEqual([name for name in os.listdir(self.path("temp")) if not name.startswith("wine-")], [])

    def interrupt(self, send):
        environment = {**os.environ, **self.temporary()}
        rows = "".join(f"<row><c><v>{i}</v></c><c><v>{i * 7919}</v></c></row>" for i in range(200000))
        self.write({"t.xlsx": book({"One": sheet(rows)})})
        with subprocess.Popen([*Settings.tool, "count", "t.xlsx"], cwd=self.folder, env=environment,
                              start_new_session=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as tool:
            folder = None
            while tool.poll() is None and not (folder and os.listdir(folder)):
                folder = next(iter(os.listdir(self.path("temp"))), None)
                folder = folder and self.path(f"temp/{folder}")
                time.sleep(0.001)
            send(tool)
            printed, message = tool.communicate()
        self.assertEqual((tool.returncode, printed), (3, b""))
        self.assertEqual(message, b"vok_table: error: interrupted: t.xlsx was not read\n")
        self.assertEqual(os.listdir(self.path("temp")), [])

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted(self):
        self.interrupt(lambda tool: tool.send_signal(signal.SIGINT))

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted_with_its_converter(self):
        self.interrupt(lambda tool: os.killpg(tool.pid, signal.SIGTERM))


class ConverterTest(unittest.TestCase):
    """Runs the converter itself, which stands beside the tool."""

    def setUp(self):
        case = CaseTest()
        case.setUp()
        self.addCleanup(case.doCleanups)
        self.files = case
        os.mkdir(case.path("out"))

    def convert(self, *switches, source="t.xlsx", folder="out/"):
        program = os.path.join(os.path.dirname(Settings.tool[-1]), "vok_xls2csv.exe")
        return subprocess.run([*Settings.tool[:-1], program, source, "-destFolder", *folder.split(" "), *switches],
                              cwd=self.files.folder, stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def outputs(self):
        return {name: content for name, content in self.files.content().items() if name.startswith("out")}

    def expect(self, files, run, code=0, error=""):
        self.assertEqual({name: content.decode() for name, content in self.outputs().items()}, files)
        self.assertEqual(run.returncode, code, run.stderr)
        self.assertEqual(run.stdout, b"")
        if error:
            self.assertIn(error, run.stderr.decode())
        else:
            self.assertEqual(run.stderr, b"")


class TestConverter(ConverterTest):
    def test_sheet(self):
        self.files.write(AB)
        self.expect({"out/t.csv": "a$b\n1$2\n"}, self.convert("-copyMerged", "-delimiter", "$"))

    def test_list_of_sheets(self):
        self.files.write(AB)
        self.expect({"out/t_tabList.csv": "One$Два\n"}, self.convert("-tablelist", "-delimiter", "$"))

    def test_named_sheet(self):
        self.files.write(AB)
        self.expect({"out/t.csv": "7\n"}, self.convert("-delimiter", "$", "-table", "Два"))

    def test_header_row(self):
        self.files.write(AB)
        self.expect({"out/t.csv": "1$2\n"}, self.convert("-delimiter", "$", "-headers", "1"))

    def test_folder_with_a_blank_without_quotes(self):
        self.files.write(AB)
        os.mkdir(self.files.path("out my"))
        self.expect({"out my/t.csv": "a$b\n1$2\n"}, self.convert("-delimiter", "$", folder="out my/"))

    def test_help(self):
        program = os.path.join(os.path.dirname(Settings.tool[-1]), "vok_xls2csv.exe")
        run = subprocess.run([*Settings.tool[:-1], program, "-help"], capture_output=True, check=False)
        self.assertIn(b"-copyMerged", run.stdout)
        self.assertEqual(run.returncode, 0)

    def test_wrong_usage(self):
        self.expect({}, self.convert("-copyMerged", "-surprise"), 2, "-surprise")

    def test_missing_source(self):
        self.expect({}, self.convert(), 1, "it cannot be opened")

    def test_failure_leaves_no_file_and_removes_a_stale_one(self):
        self.files.write({**DAMAGED, "out/t.csv": "stale\n"})
        self.expect({}, self.convert("-delimiter", "$"), 1, "damaged")

    def test_folder_that_is_missing(self):
        self.files.write(AB)
        self.expect({}, self.convert(folder="gone/"), 1, "could not be written")

    def test_source_that_would_be_replaced(self):
        self.files.write({"out/t.csv": AB["t.xlsx"]})
        run = self.convert(source="out/t.csv")
        self.assertEqual((run.returncode, self.outputs()), (1, {"out/t.csv": AB["t.xlsx"]}))

    def test_inflating_without_end(self):
        """A member that says it is small and inflates to 1.1 GiB of blanks."""
        self.files.write(AB)
        path = self.files.path("t.xlsx")
        with zipfile.ZipFile(path, "a", zipfile.ZIP_DEFLATED) as archive:
            with archive.open("xl/worksheets/sheet1.xml", "w", force_zip64=True) as part:
                part.write(b"<worksheet>")
                block = b" " * (1 << 20)
                for _ in range(1100):
                    part.write(block)
                part.write(b"</worksheet>")
        self.expect({}, self.convert("-delimiter", "$"), 1, "inflates to more than 100 times its size")

    def test_bomb_of_entities(self):
        levels = "".join(f'<!ENTITY e{i} "{f"&e{i - 1};" * 10 if i else "ha"}">' for i in range(12))
        part = f"<!DOCTYPE worksheet [{levels}]><worksheet><sheetData>" + cell("A1", "&e11;", "str") + \
            "</sheetData></worksheet>"
        self.files.write({"t.xlsx": book({"S": part})})
        self.expect({}, self.convert("-delimiter", "$"), 1, "declares entities")

    def test_one_cell_in_the_last_corner(self):
        self.files.write({"t.xlsx": book({"S": sheet(f'<row r="1048576">{cell("XFD1048576", "1")}</row>')})})
        self.expect({}, self.convert("-delimiter", "$"), 1, "it is no table")

    def test_a_sparse_column_to_the_last_row(self):
        self.files.write({"t.xlsx": book({"S": sheet(f'<row r="1048576">{cell("B1048576", "1")}</row>')})})
        self.expect({"out/t.csv": "$\n" * 1048575 + "$1\n"}, self.convert("-delimiter", "$"))


class TestRealFiles(ConverterTest):
    def compare(self, kind):
        files = real_workbooks.files(kind)
        if not files:
            self.skipTest("VOK_REAL_FILES names no folder with files, or the package to compare with is missing")
        # Every program start takes its time under Wine.
        for path in files[::8] if Settings.is_windows() else files:
            with self.subTest(os.path.basename(path)):
                self.compare_file(kind, path)

    def compare_file(self, kind, path):
        expected = real_workbooks.expected_sheets(kind, path)
        if expected is None:
            return  # the other package cannot read it
        for name, cells in expected.items():
            run = self.convert("-delimiter", "$", "-table", name, source=path)
            if run.returncode != 0 and real_workbooks.is_refused(os.path.basename(path)):
                self.assertEqual(self.outputs(), {})
                continue
            self.assertEqual(run.returncode, 0, run.stderr)
            ((written, output),) = self.outputs().items()
            os.remove(self.files.path(written))
            self.assertEqual(real_workbooks.differences(cells, output.decode()), [], name)

    def test_xlsx_as_openpyxl(self):
        self.compare("xlsx")

    def test_xls_as_xlrd(self):
        self.compare("xls")


class TestAsDisplayed(ConverterTest):
    """Sheets that a spreadsheet program has exported as it shows them, in VOK_REAL_FILES too."""

    def output(self, *switches, source):
        run = self.convert("-delimiter", "$", *switches, source=source)
        if run.returncode != 0:
            return ""
        ((written, content),) = self.outputs().items()
        os.remove(self.files.path(written))
        return content.decode()

    def compare(self, kind):
        exports = displayed_workbooks.displays(os.environ.get("VOK_REAL_FILES", ""), kind)
        if not exports:
            self.skipTest("VOK_REAL_FILES names no folder with files")
        for path, number, csv_path in exports[::8] if Settings.is_windows() else exports:
            if os.path.basename(csv_path) in displayed_workbooks.EXPLAINED:
                continue
            with self.subTest(os.path.basename(csv_path)):
                listed = self.output("-tablelist", source=path).rstrip("\n").split("$")
                if listed == [""] and displayed_workbooks.is_refused(os.path.basename(path)):
                    continue
                name = displayed_workbooks.sheet_name(csv_path, number, listed)
                text = self.output("-table", name, source=path)
                self.assertEqual(displayed_workbooks.differences(csv_path, text), [])

    def test_xlsx(self):
        self.compare("xlsx")

    def test_xls(self):
        self.compare("xls")


def use_the_systems_python():
    """Packages of the system belong to its own Python, which need not be the first one in the path."""
    system = "/usr/bin/python3"
    if not real_workbooks.HAS_PACKAGES and os.path.exists(system) and not os.path.samefile(system, sys.executable):
        os.execv(system, [system, *sys.argv])


if __name__ == "__main__":
    use_the_systems_python()
    main()
