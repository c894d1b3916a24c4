#!/usr/bin/env python3
"""Petrel tables and Micromine data files: the examples and their script, and what such files may hold."""
import importlib.util
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import CaseTest, Settings, main, run_tool  # noqa: E402

TOPS = ("# Petrel well tops\nVERSION 2\nBEGIN HEADER\nWell\nMD\nEND HEADER\n"
        "\"P 1\" 1200.5 \n\"P 2\" -999 \n\"NULL\" 3 \n")


def example(name):
    return os.path.join(Settings.source, "examples", name)


def script():
    found = importlib.util.spec_from_file_location("make_package_tables",
                                                           example("make_package_tables.py"))
    module = importlib.util.module_from_spec(found)
    found.loader.exec_module(module)
    return module


class PackageCase(CaseTest):
    def lines(self, *words, code=0, error=""):
        run = run_tool(*words, cwd=self.folder)
        self.assertEqual((run.code, run.err), (code, error))
        return run.out.decode("utf-8").splitlines()


class Examples(PackageCase):
    def test_the_script_makes_the_same_files(self):
        script().make(self.folder)
        for name in ("well_tops.petrel", "samples.micromine"):
            with open(example(name), "rb") as shipped, open(self.path(name), "rb") as made:
                self.assertEqual(shipped.read(), made.read(), name)

    def test_petrel_values_are_those_of_the_script(self):
        made = script()
        rows = [made.TOPS_FIELDS] + [["" if value is None else f"{value:.2f}" if isinstance(value, float) else value
                                      for value in row] for row in made.TOPS]
        self.assertEqual(self.lines("cat", example("well_tops.petrel")), ["\t".join(row) for row in rows])
        self.assertEqual(self.lines("tables", example("well_tops.petrel")), ["well tops"])
        self.assertEqual(self.lines("count", example("well_tops.petrel")), ["5"])

    def test_micromine_values_are_those_of_the_script(self):
        made = script()
        names = [description if description.startswith(name) and len(name) == 10 else name
                 for name, _, _, _, description in made.VARIABLES]
        rows = [["" if value is None else str(value) for value in row] for row in made.SAMPLES]
        self.assertEqual(self.lines("cat", example("samples.micromine")),
                         ["\t".join(row) for row in [names] + rows])
        self.assertEqual(self.lines("tables", example("samples.micromine")), ["micromine_dat"])
        self.assertEqual(self.lines("fields", example("samples.micromine"))[:2],
                         ["СКВАЖИНА\ttext", "ОТ\tnumber"])


class Petrel(PackageCase):
    def test_chosen_by_first_line_whatever_the_extension(self):
        self.write({"tops": TOPS, "tops.txt": TOPS})
        for name in ("tops", "tops.txt"):
            self.assertEqual(self.lines("cat", name), ["Well\tMD", "P 1\t1200.5", "P 2\t", "\t3"])

    def test_chosen_by_type(self):
        self.write({"tops.csv": TOPS.replace("# Petrel ", "# ")})
        self.assertEqual(self.lines("count", "tops.csv", "--type", "petrel"), ["3"])
        self.assertEqual(self.lines("tables", "tops.csv", "--type", "petrel"), ["petrel"])

    def test_options_without_an_effect(self):
        self.write({"tops": TOPS})
        for more in ([], ["--type", "petrel"]):
            run = run_tool("count", "tops", *more, "--encoding", "CP1251", "--header-row", "2", cwd=self.folder)
            self.assertEqual((run.code, run.out, run.err),
                             (0, b"3\n", "vok_table: hint: --header-row has no effect on tops\n"))

    def test_a_file_without_fields(self):
        self.write({"t.csv": "a;b\n1;2\n", "t.txt": "# Petrel well tops\nBEGIN HEADER\nEND HEADER\n"})
        for command in (["cat", "t.csv", "--type", "petrel"], ["fields", "t.csv", "--type", "petrel"],
                        ["cat", "t.csv", "--type", "petrel", "--table", "petrel"], ["cat", "t.txt"]):
            run = run_tool(*command, cwd=self.folder)
            self.assertEqual((run.code, run.out, run.err),
                             (3, b"", f"vok_table: error: cannot read {command[1]} as a Petrel text table: it has no "
                                      "fields; check the file and --type\n"))

    def test_a_preview_is_as_long_as_asked_for(self):
        self.write({"tops": TOPS})
        self.assertEqual(self.lines("head", "tops", "-n", "2"), ["Well\tMD", "P 1\t1200.5", "P 2\t"])

    def test_the_last_value_of_a_line_without_a_blank_is_lost(self):
        self.write({"tops": TOPS.replace(" \n", "\n")})
        self.assertEqual(self.lines("cat", "tops"), ["Well\tMD", "P 1", "P 2", ""])

    def test_conversion(self):
        self.write({"tops": TOPS})
        self.assertEqual(self.lines("convert", "tops", "out.csv"), [])
        with open(self.path("out.csv"), "rb") as file:
            self.assertEqual(file.read(), b"Well;MD\r\nP 1;1200.5\r\nP 2;\r\n;3\r\n")

    def test_conversion_of_rows_of_any_length(self):
        """Short rows are filled up, values without a field are left out and named, in every format."""
        self.write({"tops": TOPS[:TOPS.index('"P 1"')] + "1 2 3 4 \n5 \n6 7 \n"})
        for target in ("out.csv", "out.dbf"):
            run = run_tool("convert", "tops", target, cwd=self.folder)
            self.assertEqual((run.code, run.out), (1, b""), target)
            self.assertIn("row 1: holds 2 values more than the table has fields, which are left out", run.err)
            self.assertEqual(self.lines("cat", target)[1:], ["1\t2", "5\t", "6\t7"])
        run = run_tool("convert", "tops", "strict.csv", "--strict", cwd=self.folder)
        self.assertNotEqual(run.code, 0)
        self.assertFalse(os.path.exists(self.path("strict.csv")))


class Micromine(PackageCase):
    def test_a_damaged_file_is_refused(self):
        data = script().micromine()
        for size in (0, 41, 4096, 4120, 6000):
            with open(self.path("cut.micromine"), "wb") as file:
                file.write(data[:size])
            run = run_tool("cat", "cut.micromine", cwd=self.folder)
            self.assertEqual((run.code, run.out), (3, b""), size)
            self.assertIn("cannot read cut.micromine", run.err)
            self.assertNotIn("--table", run.err)

    def test_chosen_by_type(self):
        with open(self.path("t.dat"), "wb") as file:
            file.write(script().micromine())
        self.assertEqual(self.lines("count", "t.dat", "--type", "micromine"), ["6"])

    def test_conversion_keeps_every_digit(self):
        self.assertEqual(self.lines("convert", example("samples.micromine"), "out.csv"), [])
        rows = self.lines("cat", "out.csv", "--encoding", "CP1251")
        self.assertEqual(rows, self.lines("cat", example("samples.micromine")))


if __name__ == "__main__":
    main()
