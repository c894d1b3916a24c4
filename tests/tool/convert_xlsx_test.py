#!/usr/bin/env python3
"""convert to workbooks: what is told, and what other programs make of the package.

Judges: python's zipfile, xmllint and openpyxl where they are installed; LibreOffice too.
"""
import json
import os
import shutil
import signal
import subprocess
import sys
import time
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from databases import database  # noqa: E402
from tool_cases import CaseTest, Settings, main, posix_only, run_tool, skip_for_windows  # noqa: E402

# Packages of the system belong to its own Python, which need not be the one that runs this.
SYSTEM_PYTHON = "/usr/bin/python3" if os.path.exists("/usr/bin/python3") else sys.executable

READ_CELLS = """
import json, sys
import openpyxl
found = []
for fast in (False, True):
    book = openpyxl.load_workbook(sys.argv[1], read_only=fast)
    assert book.sheetnames == ["List1"], book.sheetnames
    found.append([[cell.value for cell in row] for row in book["List1"].iter_rows()])
assert found[0] == found[1]
json.dump(found[0], sys.stdout)
"""


def has_openpyxl():
    return subprocess.run([SYSTEM_PYTHON, "-c", "import openpyxl"], stderr=subprocess.DEVNULL,
                          check=False).returncode == 0


def in_sheet(value):
    """The value as the writer changes it: the first blank, and a blank behind the first quotation mark."""
    return value.replace(" ", "\u00a0", 1).replace('"', '" ', 1)


class Convert(CaseTest):
    def convert(self, text, *options, target="out.xlsx", **more):
        self.write({"t.csv": text})
        return run_tool("convert", "t.csv", target, *options, cwd=self.folder, **more)

    def parts(self, target="out.xlsx"):
        with zipfile.ZipFile(self.path(target)) as package:
            self.assertIsNone(package.testzip())
            return {name: package.read(name) for name in package.namelist()}

    def cells(self, target="out.xlsx"):
        if not has_openpyxl():
            self.skipTest("openpyxl is not installed")
        done = subprocess.run([SYSTEM_PYTHON, "-c", READ_CELLS, self.path(target)],
                              stdout=subprocess.PIPE, check=True)
        return json.loads(done.stdout)

    def assert_only(self, *names):
        """No temporary folder, no temporary file."""
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(names))

    def assert_clean(self, run):
        self.assertEqual((run.code, run.out, run.err), (0, b"", ""))


class Judged(Convert):
    """What other programs find."""

    TABLE = [["Скважина", "Depth", "Note"],
             ["101-Р", "1250.50", "a & b"],
             ["102", "-7", 'say "x" to them'],
             ["103", "1<2", "2>1>0"],
             ["", "x" * 32767, "tab\there"],
             ["中文", "\U0001F600", "it's"]]

    def table_text(self):
        return "".join("|".join(row) + "\n" for row in self.TABLE)

    def converted(self):
        self.assert_clean(self.convert(self.table_text(), "--delimiter", "|", "--quote", ""))
        self.assert_only("t.csv", "out.xlsx")

    def test_zipfile(self):
        self.converted()
        self.assertEqual(list(self.parts()),
                         ["[Content_Types].xml", "_rels/.rels", "docProps/core.xml", "docProps/app.xml",
                          "xl/workbook.xml", "xl/styles.xml", "xl/_rels/workbook.xml.rels",
                          "xl/theme/theme1.xml", "xl/sharedStrings.xml", "xl/worksheets/sheet1.xml"])
        with zipfile.ZipFile(self.path("out.xlsx")) as package:
            for member in package.infolist():
                self.assertEqual(member.compress_type, zipfile.ZIP_DEFLATED)
                self.assertEqual(member.flag_bits, 0)

    def test_xmllint(self):
        if not shutil.which("xmllint"):
            self.skipTest("xmllint is not installed")
        self.converted()
        for name, content in self.parts().items():
            done = subprocess.run(["xmllint", "--noout", "-"], input=content, stderr=subprocess.PIPE,
                                  check=False)
            self.assertEqual((done.returncode, done.stderr), (0, b""), name)

    def test_openpyxl(self):
        self.converted()
        self.assertEqual(self.cells(), [[in_sheet(value) for value in row] for row in self.TABLE])

    def test_openpyxl_formula(self):
        self.assert_clean(self.convert("a;b\n1;=SUM(A2:A3)\n2;=A2&A3\n"))
        self.assertEqual(self.cells(), [["a", "b"], ["1", "=SUM(A2:A3)"], ["2", "=A2&A3"]])

    def test_openpyxl_large(self):
        rows = [["N", "T"]] + [[str(i), f"слой{i % 100}"] for i in range(20000)]
        self.assert_clean(self.convert("".join(";".join(row) + "\n" for row in rows)))
        self.assertEqual(self.cells(), rows)

    @skip_for_windows("the program's own times are those of Wine")
    def test_times_are_utc(self):
        self.converted()
        with zipfile.ZipFile(self.path("out.xlsx")) as package:
            dates = {member.date_time[:3] for member in package.infolist()}
        import datetime
        today = datetime.datetime.now(datetime.timezone.utc)
        days = [today, today - datetime.timedelta(minutes=5)]
        self.assertLessEqual(dates, {(day.year, day.month, day.day) for day in days})

    def test_libreoffice(self):
        office = shutil.which("soffice") or shutil.which("localc")
        if not office:
            self.skipTest("LibreOffice is not installed")
        self.converted()
        profile = "-env:UserInstallation=file://" + self.path("profile")
        subprocess.run([office, profile, "--headless", "--convert-to", "csv:Text - txt - csv (StarCalc):124,0,76",
                        "--outdir", self.path("csv"), self.path("out.xlsx")],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=100)
        with open(self.path("csv/out.csv"), encoding="utf-8") as file:
            lines = file.read().split("\n")
        self.assertEqual(lines[:len(self.TABLE)],
                         ["|".join(in_sheet(value) for value in row) for row in self.TABLE])


class Told(Convert):
    """Each value that a workbook cannot hold is told, or refused with --strict."""

    HEAD = "vok_table: warning: 1 value will not be read back unchanged from out.xlsx:\n"
    REFUSED = ("vok_table: error: nothing was written: out.xlsx cannot hold 1 value unchanged; leave out "
               "--strict to write all the same, or choose another format\n")
    AMPERSANDS = 'holds "&" more than once, and spreadsheet programs refuse the workbook'
    ANGLES = 'holds "<" more than once, and spreadsheet programs refuse the workbook'

    def both(self, text, reason, *options):
        run = self.convert(text, *options)
        self.assertEqual((run.code, run.err), (1, f"{self.HEAD}  {reason}\n"))
        self.assert_only("t.csv", "out.xlsx")
        self.parts()
        os.remove(self.path("out.xlsx"))
        run = self.convert(text, "--strict", *options)
        self.assertEqual((run.code, run.err), (5, f"{self.REFUSED}  {reason}\n"))
        self.assert_only("t.csv")

    def test_ampersands(self):
        self.both("a\nx\na & b & c\n", f'row 2, field "a": {self.AMPERSANDS}')

    def test_angles(self):
        self.both("a\n1<2<3\n", f'row 1, field "a": {self.ANGLES}')

    def test_in_the_header(self):
        self.both("a&b&c\n1\n", f'the header, field "a&b&c": {self.AMPERSANDS}')

    def test_end_of_a_character_section(self):
        self.both("a\nx>]]>\n", 'row 1, field "a": holds "]]>" behind a ">", and spreadsheet programs refuse '
                                "the workbook")

    def test_control_character(self):
        self.both("a\nx\x01\n", 'row 1, field "a": holds a character that no workbook can hold (U+0001)')

    def test_character_without_meaning(self):
        self.both("a\nx\uFFFE\n", 'row 1, field "a": holds a character that no workbook can hold (U+FFFE)')

    def test_carriage_return(self):
        self.both("a\nx\ry\n", 'row 1, field "a": holds a CR, which is read back as a line feed')

    def test_long_text(self):
        self.both("a\n" + "x" * 32767 + "\n" + "x" * 32768 + "\n",
                  'row 2, field "a": is 32 768 characters long; a cell has 32 767 at most')

    def test_long_text_in_utf16(self):
        self.both("a\n" + "\U0001F600" * 16383 + "x\n" + "\U0001F600" * 16384 + "\n",
                  'row 2, field "a": is 32 768 characters long; a cell has 32 767 at most')

    def test_long_text_with_a_quotation_mark(self):
        self.both("a\n" + "x" * 32765 + '""' + "\n",
                  'row 1, field "a": is 32 768 characters long; a cell has 32 767 at most', "--quote", "")

    def test_long_formula(self):
        self.both("a\n=" + "1" * 8192 + "\n",
                  'row 1, field "a": is 8 193 characters long; a formula has 8 192 at most')

    def test_empty_formula(self):
        self.both("a\n=\n", 'row 1, field "a": is an equals sign alone, a formula that spreadsheet programs '
                            "refuse")

    def test_coded_character(self):
        self.both("a\nx_x0041_\n", 'row 1, field "a": holds _x, four hexadecimal digits and _, which '
                                   "spreadsheet programs read as a character")

    def test_values_of_a_database(self):
        self.write({"t.sqlite": database(("t", "a TEXT", [["x\ny"], ["\uffff"]]))})
        run = run_tool("convert", "t.sqlite", "out.xlsx", "--table", "t", cwd=self.folder)
        problem = '  row 2, field "a": holds a character that no workbook can hold (U+FFFF)\n'
        self.assertEqual((run.code, run.err), (1, self.HEAD + problem))
        self.assertIn("x\ny".encode(), self.parts()["xl/sharedStrings.xml"])

    def test_every_hexadecimal_digit(self):
        for digits in ("0123", "4567", "89ab", "cdef", "ABCD", "EF00"):
            self.both(f"a\n_x{digits}_\n", 'row 1, field "a": holds _x, four hexadecimal digits and _, which '
                                           "spreadsheet programs read as a character")

    def test_what_is_no_coded_character(self):
        digits = ("00G1", "00g1", "00:1", "00/1", "00@1", "00`1", "00411")
        self.assert_clean(self.convert("a\n" + "".join(f"_x{each}_\n" for each in digits) +
                                       "_x0041x\n_X0041_\n_x_x004\n", "--strict"))

    def test_too_many_columns(self):
        names = ";".join(f"c{i}" for i in range(16385))
        self.both(names + "\n", "the table: holds 16 385 fields; a sheet holds 16 384 columns")

    def test_as_many_columns_as_a_sheet_holds(self):
        self.assert_clean(self.convert(";".join(f"c{i}" for i in range(16384)) + "\n"))

    def test_too_many_rows(self):
        self.both("a\n" + "1\n" * 1048576,
                  "the table: holds 1 048 576 rows and its header; a sheet holds 1 048 576 rows")

    def test_as_many_rows_as_a_sheet_holds(self):
        self.assert_clean(self.convert("a\n" + "1\n" * 1048575, "--strict"))

    def test_what_is_no_loss(self):
        self.assert_clean(self.convert('a b;"c"\na & b;1<2\n>>;x_x004_\n=A1;]]>\n', "--strict"))

    def test_a_row_of_empty_values_survives(self):
        self.assert_clean(self.convert("a;b\n ; \n1;2\n", "--strict"))
        self.assertEqual(self.cells(), [["a", "b"], ["", ""], ["1", "2"]])


class Files(Convert):
    def test_xls_target(self):
        self.assert_clean(self.convert("a\n1\n", target="out.xls"))
        self.assertIn("xl/workbook.xml", self.parts("out.xls"))

    def test_existing_target(self):
        self.write({"out.xlsx": "old"})
        run = self.convert("a\n1\n")
        self.assertEqual(run.code, 5)
        self.assertIn("out.xlsx exists already", run.err)
        self.assert_clean(self.convert("a\n1\n", "--force"))
        self.assertIn("xl/workbook.xml", self.parts())

    def test_cyrillic_target(self):
        os.mkdir(self.path("мои файлы"))
        self.assert_clean(self.convert("a\n1\n", target="мои файлы/скважины.xlsx"))
        self.assertIn("xl/workbook.xml", self.parts("мои файлы/скважины.xlsx"))

    @skip_for_windows("Wine sets its programs' TEMP")
    def test_temp_that_is_missing(self):
        run = self.convert("a\n1\n", env={"TEMP": self.path("gone")})
        self.assertEqual(run.code, 5)
        self.assertIn("cannot create out.xlsx", run.err)
        self.assertIn("hint: a workbook is made in the folder that TEMP names", run.err)
        self.assert_only("t.csv")

    @skip_for_windows("Wine sets its programs' TEMP")
    def test_temp_is_used_and_left_empty(self):
        os.mkdir(self.path("temp"))
        self.assert_clean(self.convert("a\n1\n", env={"TEMP": self.path("temp")}))
        self.assertEqual(os.listdir(self.path("temp")), [])

    @posix_only
    @skip_for_windows("limits of this system would hit the Windows program's own files")
    def test_disk_that_takes_only_a_part(self):
        import resource

        def limit_file_size():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 16, 1 << 16))
        run = self.convert("a;b\n" + "".join(f"{i};x\n" for i in range(100000)), preexec_fn=limit_file_size)
        self.assertEqual(run.code, 5)
        self.assertIn("cannot create out.xlsx", run.err)
        self.assert_only("t.csv")

    def interrupt_when(self, has_begun):
        """Interrupts a conversion at a moment that files in its folders show."""
        self.write({"t.csv": "a;b\n" + "".join(f"{i};text {i * 7919}\n" for i in range(200000))})
        os.mkdir(self.path("temp"))
        environment = {**os.environ, "TEMP": self.path("temp")}
        with subprocess.Popen([*Settings.tool, "convert", "t.csv", "out.xlsx"], cwd=self.folder, env=environment,
                              stdin=subprocess.DEVNULL, stderr=subprocess.PIPE) as tool:
            while tool.poll() is None and not has_begun():
                time.sleep(0.001)
            tool.send_signal(signal.SIGINT)
            message = tool.stderr.read().decode("utf-8")
        self.assertEqual((tool.returncode, message),
                         (5, "vok_table: error: interrupted: out.xlsx was not written\n"))
        self.assertEqual(os.listdir(self.path("temp")), [])
        self.assert_only("t.csv", "temp")

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted_while_rows_are_written(self):
        self.interrupt_when(lambda: os.listdir(self.path("temp")))

    @posix_only
    @skip_for_windows("signals of this system")
    def test_interrupted_while_the_package_is_made(self):
        self.interrupt_when(lambda: any(name.startswith("~vok_table") for name in os.listdir(self.folder)))


if __name__ == "__main__":
    main()
