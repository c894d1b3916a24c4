#!/usr/bin/env python3
"""The Python package over the built library.

usage: python_test.py --product LIBRARY --source SOURCE_DIR [test classes]

Exit code 77 when every test was skipped.
"""
import csv
import gc
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
SKIPPED = 77


class Settings:
    product = ""
    source = ""


def package():
    import vok_table_rw
    return vok_table_rw


class PackageTest(unittest.TestCase):
    def setUp(self):
        self.vok = package()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, name):
        return os.path.join(self.folder, name)

    def file(self, name, data):
        with open(self.path(name), "wb") as file:
            file.write(data if isinstance(data, bytes) else data.encode("utf-8"))
        return self.path(name)

    def example(self, name):
        return os.path.join(Settings.source, "examples", name)

    def read(self, data, **options):
        table = self.vok.read_table(self.file("t.csv", data), **options)
        self.addCleanup(table.close)
        return table


class Reading(PackageTest):
    def test_a_table(self):
        table = self.read("WELL;DEPTH;WELL\nW-1;1250.5;a\nW-2;;b\n")
        self.assertEqual(table.names, ["WELL", "DEPTH", "WELL"])
        self.assertEqual(table.types, ["text", "text", "text"])
        self.assertEqual(len(table), 2)
        self.assertEqual(table["WELL"], ["W-1", "W-2"])
        self.assertEqual(table[2], ["a", "b"])
        self.assertEqual(table[-1], ["a", "b"])
        self.assertEqual(table.columns(), {"WELL": ["W-1", "W-2"], "DEPTH": ["1250.5", ""]})
        self.assertEqual(table.row(1), ["W-2", "", "b"])
        self.assertEqual(table.row(-2), ["W-1", "1250.5", "a"])
        self.assertEqual(list(table), [("W-1", "1250.5", "a"), ("W-2", "", "b")])
        self.assertEqual(table.tables(), ["csv"])
        self.assertEqual(table.rejected(), [])

    def test_an_example_in_cp1251_against_pythons_own_decoding(self):
        with open(self.example("wells_cp1251.csv"), encoding="cp1251", newline="") as file:
            rows = [row for row in csv.reader(file, delimiter=";")]
        total = rows.pop()
        with self.vok.read_table(self.example("wells_cp1251.csv"), encoding="windows-1251") as table:
            self.assertEqual(table.names, rows[0])
            self.assertEqual([list(row) for row in table.rows()], rows[1:])
            self.assertEqual(table.rejected(), [(6, ";".join(total))])

    def test_every_option(self):
        data = "note\nA::B\n«x::y»::1\n::2\n".encode("utf-8")
        table = self.read(data, delimiter="::", quote="", header_position=1, data_position=3, table="any",
                          direction=0, file_type="csv", encoding=0)
        self.assertEqual((table.names, list(table)), (["A", "B"], [("", "2")]))
        table = self.read("1;2\n3;4\n", header_position=None)
        self.assertEqual((table.names, len(table)), (["field_0", "field_1"], 2))
        table = self.read("1;2\n3;4\n", delimiter="")
        self.assertEqual((table.names, list(table)), (["1;2"], [("3;4",)]))
        table = self.read("a;b\n'1;2';3\n", quote="'")
        self.assertEqual(list(table), [("1;2", "3")])

    def test_text_of_all_planes(self):
        text = "Ж€\U0001F600"
        table = self.read(f"{text}\n{text}\nx\n")
        self.assertEqual((table.names, table[text]), ([text], [text, "x"]))
        self.assertEqual(table.find(text, {text: text}), [text])
        path = self.file(f"{text}.csv", "a\n1\n")
        with self.vok.read_table(path) as other:
            self.assertEqual(other["a"], ["1"])

    def test_find(self):
        table = self.read("W;A;R\n1;N;c\n2;S;c\n3;N;c\n4;N;s\n")
        self.assertEqual(table.find("W", {"A": "N", "R": "c"}), ["1", "3"])
        self.assertEqual(table.find("W", {}), ["1", "2", "3", "4"])
        self.assertEqual(table.find("W", {"A": "n"}), [])
        with self.assertRaisesRegex(TypeError, "values are text: 'A' is to be 2, a int"):
            table.find("W", {"A": 2})
        for field, conditions in (("X", {}), ("W", {"X": "1"})):
            with self.assertRaisesRegex(self.vok.UnknownFieldError, r"no field 'X'; it has 'W', 'A', 'R'$"):
                table.find(field, conditions)

    def test_rejected_lines(self):
        table = self.read("a;b\n1\n1;2\n1;2;3\n")
        self.assertEqual(table.rejected_count, 2)
        self.assertEqual(table.rejected(), [(1, "1"), (3, "1;2;3")])
        self.assertEqual(table.rejected(1), [(1, "1")])
        self.assertEqual(table.rejected(0), [])
        os.remove(self.path("t.csv"))
        self.assertEqual(table.rejected(), [(1, ""), (3, "")])

    def test_a_database_with_types_and_tables(self):
        table = self.vok.open_table(self.example("project.well2"))
        self.addCleanup(table.close)
        self.assertIn("well_base", table.tables())
        table.choose_table("well_base").read_headers()
        self.assertEqual(len(table), 0)
        self.assertEqual(table.types[table.names.index("w_id")], "number")
        table.read()
        self.assertEqual(table.typed("w_id")[:1], [float(table["w_id"][0])])
        self.assertEqual(table.typed("name"), table["name"])
        table.read_preview(1)
        self.assertEqual(len(table), 1)

    def test_a_value_with_a_nul(self):
        import sqlite3
        path = self.path("nul.sqlite")
        base = sqlite3.connect(path)
        base.execute("CREATE TABLE T (A TEXT)")
        base.executemany("INSERT INTO T VALUES (?)", [("a",), ("",), ("b\0c",), ("ж",)])
        base.commit()
        base.close()
        with self.vok.read_table(path, table="T") as table:
            values = table["A"]
            self.assertEqual(values[:2] + values[3:], ["a", "", "ж"])
            self.assertIn(values[2], ("b\0c", "b"))
            self.assertEqual(len(values), 4)

    def test_rows_of_different_lengths(self):
        path = self.file("t.petrel", "# Petrel Points\nBEGIN HEADER\nA\nB\nEND HEADER\n1 2 \n3 \n4 5 6 \n")
        with self.vok.read_table(path) as table:
            self.assertEqual(table.names, ["A", "B"])
            exact = [table.row(i) for i in range(len(table))]
            self.assertEqual(list(table), [tuple((row + ["", ""])[:2]) for row in exact])

    def test_numbers(self):
        values = ["1250.5", "-3", "", "1e3", "<0.05", "no core", "1,5", "nan", "inf", "1e999", "1_000", "٣"]
        table = self.read("X\n" + "\n".join(value or '""' for value in values) + "\n", delimiter="|")
        expected = [1250.5, -3.0, None, 1000.0, "<0.05", "no core", "1,5", "nan", "inf", "1e999", "1_000", "٣"]
        if len(table) == len(values) - 1:  # a line without a value is no row
            del expected[2]
        self.assertEqual(table.numbers("X"), expected)
        table = self.read("X;Y\n1,5;\n2.5;3\n;1\n")
        self.assertEqual(table.numbers("X", decimal=","), [1.5, "2.5", None])
        self.assertEqual(table.typed("Y"), ["", "3", "1"])


class Failures(PackageTest):
    def test_sources(self):
        with self.assertRaisesRegex(FileNotFoundError, "there is no file .*gone.csv"):
            self.vok.read_table(self.path("gone.csv"))
        with self.assertRaisesRegex(self.vok.ReadError, "damaged.dbf cannot be read as a table: check"):
            self.vok.read_table(self.file("damaged.dbf", b"\x03"))
        with self.assertRaisesRegex(self.vok.ReadError, "cannot be read"):
            self.vok.read_table(self.folder, file_type="csv")
        # Opens, and gives an error when it is read.
        with self.assertRaisesRegex(self.vok.ReadError, "mem could not be read to its end"):
            self.vok.read_table("/proc/self/mem", file_type="csv")
        with self.assertRaisesRegex(self.vok.ReadError, "mem could not be read to its end"):
            self.vok.Table("/proc/self/mem", file_type="petrel").tables()

    def test_options(self):
        for options, message in (
                ({"encoding": "KOI8"}, "unknown encoding 'KOI8'; known are UTF-8"),
                ({"encoding": 19}, "encoding 19 is not between 0 and 18"),
                ({"file_type": "word"}, "unknown file type 'word'; known are auto, csv, xls, xls-odbc"),
                ({"file_type": 10}, "10 is not a valid FileType"),
                ({"direction": 2}, "direction is 2"),
                ({"header_position": -(2**40)}, "lines count from 0"),
                ({"header_position": -2}, "lines count from 0"),
                ({"header_position": None, "data_position": 2}, "without a header every line is data"),
                ({"data_position": -1}, "lines count from 0"),
                ({"table": "a\0b"}, "the table's name holds a NUL"),
                ({"delimiter": "\ud800"}, "the delimiter holds what is no character")):
            with self.subTest(options), self.assertRaisesRegex(ValueError, message):
                self.vok.open_table("x.csv", **options)
        with self.assertRaises(TypeError):
            self.vok.open_table(b"x.csv")
        with self.assertRaises(TypeError):
            self.vok.open_table("x.csv", sheet="1")

    def test_fields_and_rows(self):
        table = self.read("a;b\n1;2\n")
        with self.assertRaisesRegex(KeyError, r"^.*t.csv has no field 'c'; it has 'a', 'b'$"):
            table["c"]
        for bad in (2, -3):
            with self.assertRaisesRegex(IndexError, f"has 2 fields, and no field {bad}"):
                table[bad]
        for bad in (1, -2):
            with self.assertRaisesRegex(IndexError, f"has 1 rows, and no row {bad}"):
                table.row(bad)
        with self.assertRaises(ValueError):
            table.read_preview(0)

    def test_closed(self):
        table = self.read("a\n1\n")
        table.close()
        table.close()
        for use in (lambda: len(table), lambda: table.names, lambda: table["a"], table.read, table.tables,
                    table.rejected, lambda: table.find("a", {}), table.__enter__):
            with self.assertRaisesRegex(self.vok.ClosedError, "is closed"):
                use()
        self.assertIn("closed", repr(table))

    def test_a_forgotten_table_is_freed(self):
        table = self.vok.read_table(self.file("t.csv", "a\n1\n"))
        freed = table._freed
        self.assertTrue(freed.alive)
        del table
        gc.collect()
        self.assertFalse(freed.alive)


class Pandas(PackageTest):
    def setUp(self):
        super().setUp()
        try:
            import pandas
        except ImportError:
            self.skipTest("pandas is not installed")
        self.pandas = pandas

    def test_frames(self):
        table = self.read("W;X;Y\n007;1.5;1\n008;;<2\n")
        frame = table.to_pandas()
        self.assertEqual(list(frame.columns), ["W", "X", "Y"])
        self.assertEqual(list(frame["X"]), ["1.5", ""])
        frame = table.to_pandas(numbers="all")
        self.assertEqual(str(frame["X"].dtype), "float64")
        self.assertTrue(self.pandas.isna(frame["X"][1]))
        self.assertEqual(list(frame["W"]), [7.0, 8.0])
        self.assertEqual(list(frame["Y"]), ["1", "<2"])
        frame = table.to_pandas(numbers=["X", "Y"])
        self.assertEqual(list(frame["W"]), ["007", "008"])
        self.assertEqual(list(frame["Y"]), [1.0, "<2"])
        with self.assertRaisesRegex(ValueError, '"declared", "all" or a list'):
            table.to_pandas(numbers="X")

    def test_declared_numbers_and_same_names(self):
        with self.vok.read_table(self.example("project.well2"), table="well_base") as table:
            self.assertEqual(str(table.to_pandas()["w_id"].dtype), "float64")
        frame = self.read("a;a\n1;2\n").to_pandas()
        self.assertEqual(frame.values.tolist(), [["1", "2"]])


class WithoutPandas(PackageTest):
    def test_says_what_to_install(self):
        table = self.read("a\n1\n")
        hidden = {name: module for name, module in sys.modules.items() if name.split(".")[0] == "pandas"}
        for name in hidden:
            del sys.modules[name]
        sys.modules["pandas"] = None
        try:
            with self.assertRaisesRegex(ImportError, "pip install pandas"):
                table.to_pandas()
        finally:
            del sys.modules["pandas"]
            sys.modules.update(hidden)


class Writing(PackageTest):
    def test_formats_read_back(self):
        rows = [("101-Р", 2860.25, None), ("", -3, "глина")]
        wanted = [("101-Р", "2860.25", ""), ("", "-3", "глина")]
        for name, options in (("o.csv", {"encoding": "CP1251"}), ("o.txt", {"encoding": "CP1251"}),
                              ("o.DBF", {}), ("o.xlsx", {})):
            with self.subTest(name):
                self.assertEqual(self.vok.write_table(self.path(name), ["WELL", "DEPTH", "ROCK"], rows), 2)
                with self.vok.read_table(self.path(name), **options) as table:
                    self.assertEqual(table.names, ["WELL", "DEPTH", "ROCK"])
                    read = [tuple(row) for row in table]
                    if name == "o.DBF":
                        self.assertEqual(table.types, ["text", "number", "text"])
                        self.assertEqual(table.numbers("DEPTH"), [2860.25, -3.0])
                        read[1] = (read[1][0], "-3", read[1][2])
                    self.assertEqual(read, wanted)
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("vok_")], [])

    def test_delimiter_and_line_breaks(self):
        self.vok.write_table(self.path("o.csv"), ["a", "b"], [("1\n2", "3")], delimiter="|")
        with open(self.path("o.csv"), "rb") as file:
            self.assertEqual(file.read(), b"a|b\r\n1\r\n2|3\r\n")

    def test_fields_of_dbf(self):
        fields = [self.vok.Field("WELL", "text", 5), self.vok.Field("DEPTH", "number", 8, 2)]
        self.vok.write_table(self.path("o.dbf"), fields, [("W-1", 12.345)])
        with self.vok.read_table(self.path("o.dbf")) as table:
            self.assertEqual((table.types, table.row(0)), (["text", "number"], ["W-1", "12.35"]))

    def test_dbf_fields_from_values(self):
        rows = [("007", "1.5", "x", "1e5", None), ("8", "-22", "", "2", None)]
        self.vok.write_table(self.path("o.dbf"), list("ABCDE"), rows)
        with self.vok.read_table(self.path("o.dbf")) as table:
            self.assertEqual(table.types, ["text", "number", "text", "text", "text"])
            self.assertEqual(table["A"], ["007", "8"])
            self.assertEqual(table.numbers("B"), [1.5, -22.0])
            self.assertEqual(table["D"], ["1e5", "2"])

    def test_an_exception_leaves_the_target(self):
        path = self.file("o.csv", "old")
        with self.assertRaisesRegex(RuntimeError, "stop"):
            with self.vok.TableWriter(path, ["a"]) as writer:
                writer.add_row(["1"])
                raise RuntimeError("stop")
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), "old")
        self.assertEqual(os.listdir(self.folder), ["o.csv"])
        with self.assertRaises(self.vok.ClosedError):
            writer.add_row(["1"])

    def test_refusals(self):
        for fields, rows, error, message in (
                (["a"], [("1", "2")], ValueError, "row 0 has 2 values for 1 fields"),
                ([], [], ValueError, "at least one field"),
                (["a"], [("x\0y",)], ValueError, "holds a NUL"),
                ([self.vok.Field("a", "date")], [], ValueError, "neither text nor number"),
                ([self.vok.Field("a", "number", 1, 256)], [], ValueError, "out of range")):
            with self.subTest(message), self.assertRaisesRegex(error, message):
                self.vok.write_table(self.path("o.csv"), fields, rows)
        with self.assertRaisesRegex(ValueError, "DBF needs a width from 1 to 254"):
            self.vok.write_table(self.path("o.dbf"), [self.vok.Field("a")], [])
        with self.assertRaisesRegex(ValueError, "a value of 255 bytes"):
            self.vok.write_table(self.path("o.dbf"), ["a"], [("x" * 255,)])
        with self.assertRaisesRegex(self.vok.WriteError, "there is no folder"):
            self.vok.write_table(self.path("gone/o.csv"), ["a"], [])
        self.assertEqual(os.listdir(self.folder), [])

    def test_a_file_that_is_not_whole_is_not_taken(self):
        for name in ("o.csv", "o.dbf", "o.xlsx"):
            with self.subTest(name):
                self.file(name, "old")
                writer = self.vok.TableWriter(self.path(name), [self.vok.Field("a", "text", 5)])
                writer.add_row(["1"])
                finish = writer._finish

                def cut():
                    finish()
                    with open(writer._temporary, "r+b") as file:
                        file.truncate(os.path.getsize(writer._temporary) - 4)

                writer._finish = cut
                with self.assertRaisesRegex(self.vok.WriteError, "did not take the whole file"):
                    writer.close()
                with open(self.path(name), encoding="utf-8") as file:
                    self.assertEqual(file.read(), "old")
        self.assertEqual(sorted(os.listdir(self.folder)), ["o.csv", "o.dbf", "o.xlsx"])

    def test_a_workbook_that_nothing_would_open_is_not_taken(self):
        self.file("o.xlsx", "old")
        for value in ("a&b&c", "a<b<c", "x\x01y&&"):
            with self.assertRaisesRegex(self.vok.WriteError, "was not written: a value holds"):
                self.vok.write_table(self.path("o.xlsx"), ["A"], [(value,)])
        with open(self.path("o.xlsx"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "old")
        self.vok.write_table(self.path("o.xlsx"), ["A"], [("a&b <c",)])
        self.assertEqual(os.listdir(self.folder), ["o.xlsx"])

    def test_a_code_page_file_takes_the_old_ones_place(self):
        self.file("o.cpg", "old")
        self.vok.write_table(self.path("o.dbf"), ["a"], [("ж",)])
        if os.path.exists(self.path("o.cpg")):
            with open(self.path("o.cpg"), encoding="ascii") as file:
                self.assertNotEqual(file.read(), "old")
        with self.vok.read_table(self.path("o.dbf")) as table:
            self.assertEqual(table["a"], ["ж"])


class TheLibrary(PackageTest):
    """How it is found, each in a process of its own."""

    def run_python(self, program, cwd=None, **environment):
        settings = {key: value for key, value in os.environ.items() if key != "VOK_TABLE_RW_LIBRARY"}
        settings.update(environment)
        settings["PYTHONPATH"] = os.path.join(Settings.source, "bindings", "python")
        settings["PYTHONDONTWRITEBYTECODE"] = "1"
        return subprocess.run([sys.executable, "-c", program], env=settings, capture_output=True, text=True,
                              encoding="utf-8", cwd=cwd, check=False)

    def test_by_file_and_by_folder(self):
        program = "import vok_table_rw; print(vok_table_rw.load_library()._name)"
        for place in (Settings.product, os.path.dirname(Settings.product)):
            run = self.run_python(program, VOK_TABLE_RW_LIBRARY=place)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertEqual(os.path.dirname(run.stdout.strip()), os.path.dirname(Settings.product))
        run = self.run_python(f"import vok_table_rw; print(vok_table_rw.load_library({Settings.product!r})._name)")
        self.assertEqual(run.stdout.strip(), Settings.product)

    def test_by_the_systems_loader(self):
        program = ("import vok_table_rw\n"
                   f"table = vok_table_rw.read_table({self.example('wells.csv')!r})\n"
                   "print(len(table))")
        run = self.run_python(program, LD_LIBRARY_PATH=os.path.dirname(Settings.product))
        self.assertEqual((run.returncode, run.stdout.strip(), run.stderr), (0, "9", ""))

    def test_missing(self):
        for environment, message in (({}, "libvok_table_rw_vc.so.1: "),
                                     ({"VOK_TABLE_RW_LIBRARY": self.path("gone.so")}, "gone.so: ")):
            run = self.run_python("import vok_table_rw; vok_table_rw.read_table('x.csv')", **environment)
            self.assertEqual(run.returncode, 1)
            self.assertIn(message, run.stderr)
            self.assertIn("environment variable VOK_TABLE_RW_LIBRARY", run.stderr)

    def test_a_workbook_through_the_systems_loader(self):
        self.vok.write_table(self.path("o.xlsx"), ["A"], [("1",), ("2",)])
        program = f"import vok_table_rw; print(vok_table_rw.read_table({self.path('o.xlsx')!r})['A'])"
        run = self.run_python(program, LD_LIBRARY_PATH=os.path.dirname(Settings.product))
        self.assertEqual((run.stdout.strip(), run.stderr), ("['1', '2']", ""))

    def test_the_readmes_program(self):
        with open(os.path.join(Settings.source, "README.md"), encoding="utf-8") as file:
            program = re.search(r"```python\n(.*?)```", file.read(), re.DOTALL).group(1)
        program = re.sub(r"^ +frame = .*\n", "", program, flags=re.MULTILINE)  # pandas has its own tests
        os.symlink(os.path.join(Settings.source, "examples"), self.path("examples"))
        run = self.run_python(program, cwd=self.folder, VOK_TABLE_RW_LIBRARY=Settings.product)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("9\n['101-Р', '102-Р']\n6 105-Р;Восточная;", run.stdout)
        with self.vok.read_table(self.path("out.xlsx")) as table:
            self.assertEqual((table.names, len(table)), (["WELL", "DEPTH"], 9))

    def test_encodings_are_the_librarys(self):
        with open(os.path.join(Settings.source, "table_rw", "text", "textEncoding.h"), encoding="utf-8") as file:
            rows = re.findall(r'^    \{"([^"]+)", +"([^"]+)", +\d+ *\},$', file.read(), re.MULTILINE)
        self.assertEqual(tuple(rows), self.vok.ENCODINGS)

    def test_file_types_are_the_librarys(self):
        with open(os.path.join(Settings.source, "table_rw", "core", "tableReaderOptions.h"), encoding="utf-8") as file:
            numbers = re.findall(r"^  fileType\w+ = (\d+),", file.read(), re.MULTILINE)
        self.assertEqual([int(number) for number in numbers], [int(kind) for kind in self.vok.FileType])


class Installation(PackageTest):
    def test_pip_installs_it(self):
        if subprocess.run([sys.executable, "-c", "import setuptools, wheel, pip"], capture_output=True,
                          check=False).returncode != 0:
            self.skipTest("pip, setuptools or wheel is not installed")
        source, target = self.path("source"), self.path("installed")
        shutil.copytree(os.path.join(Settings.source, "bindings", "python"), source)  # pip leaves its marks there
        run = subprocess.run([sys.executable, "-m", "pip", "install", "--no-index", "--no-build-isolation", "--no-deps",
                              "--target", target, source], capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assertEqual(sorted(name for name in os.listdir(os.path.join(target, "vok_table_rw"))
                                if name != "__pycache__"),
                         ["__init__.py", "_errors.py", "_library.py", "_reading.py", "_writing.py", "py.typed"])


# These may have nothing to run on, and are run by their names, so that they are counted when they are skipped.
BY_NAME_ALONE = ("Pandas", "Installation")


def main():
    arguments = sys.argv[1:]
    for option in ("product", "source"):
        if f"--{option}" not in arguments:
            sys.exit(__doc__)
        place = arguments.index(f"--{option}")
        setattr(Settings, option, os.path.abspath(arguments[place + 1]))
        del arguments[place:place + 2]
    sys.path.insert(0, os.path.join(Settings.source, "bindings", "python"))
    package().load_library(Settings.product)
    if not arguments:
        arguments = [case.__name__ for case in PackageTest.__subclasses__() if case.__name__ not in BY_NAME_ALONE]
    result = unittest.main(argv=[sys.argv[0], *arguments], exit=False).result
    if not result.wasSuccessful() or result.testsRun == 0:
        sys.exit(1)
    sys.exit(SKIPPED if len(result.skipped) == result.testsRun else 0)


if __name__ == "__main__":
    main()
