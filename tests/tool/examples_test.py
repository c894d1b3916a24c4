#!/usr/bin/env python3
"""The examples: each table reads as it is meant to be, by the command that its README names."""
import csv
import os
import shlex
import shutil
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import CaseTest, Settings, main, run_tool  # noqa: E402


def example(name):
    return os.path.join(Settings.source, "examples", name)


def lines_of(name, encoding):
    with open(example(name), "rb") as file:
        return file.read().decode(encoding).replace("\r\n", "\n").splitlines()


def tabbed(rows):
    return "".join("\t".join(row) + "\n" for row in rows)


class Examples(CaseTest):
    """Expected values come from Python's own decoding and its csv module."""

    def compare(self, rows, code, *arguments):
        run = run_tool("cat", *arguments)
        self.assertEqual(run.out.decode("utf-8"), tabbed(rows))
        self.assertEqual(run.code, code)
        return run

    def test_wells(self):
        rows = list(csv.reader(lines_of("wells.csv", "utf-8"), delimiter=";"))
        good = [row for row in rows if len(row) == 8]
        bad = [number for number, row in enumerate(rows, 1) if len(row) not in (0, 8)]
        self.assertEqual(bad, [6, 7, 11])
        run = self.compare(good, 1, example("wells.csv"))
        self.assertIn("3 of 12 lines were rejected (first: line 6)", run.err)
        run = run_tool("errors", example("wells.csv"))
        listed = [line.split("\t")[0] for line in run.out.decode("utf-8").splitlines()[1:]]
        self.assertEqual(listed, [str(number) for number in bad])

    def test_wells_cp1251(self):
        rows = [line.split(";") for line in lines_of("wells_cp1251.csv", "cp1251")]
        self.assertEqual(rows.pop(), ["Итого", "5"])
        self.compare(rows, 1, example("wells_cp1251.csv"), "--encoding", "CP1251")

    def test_drillholes_cp866(self):
        rows = [line.split(";") for line in lines_of("drillholes_cp866.csv", "cp866")]
        run = self.compare(rows, 0, example("drillholes_cp866.csv"), "--encoding", "CP866")
        self.assertEqual(run.err, "")

    def test_assays_tab(self):
        rows = [line.split("\t") for line in lines_of("assays_tab.txt", "utf-8")[4:]]
        run = self.compare(rows, 0, example("assays_tab.txt"), "--delimiter", "tab", "--header-row", "5")
        self.assertEqual(run.err, "")

    def test_survey_quoted(self):
        rows = list(csv.reader(lines_of("survey_quoted.csv", "utf-8")))
        run = self.compare(rows, 0, example("survey_quoted.csv"), "--delimiter", ",")
        self.assertEqual(run.err, "")

    def test_wrong_options_lead_to_the_right_ones(self):
        for name, options, hint in (
                ("wells_cp1251.csv", [], "try another --encoding"),
                ("drillholes_cp866.csv", [], "try another --encoding"),
                ("wells.csv", ["--encoding", "CP1251"], "try --encoding UTF-8"),
                ("assays_tab.txt", [], "try --delimiter tab"),
                ("assays_tab.txt", ["--delimiter", "tab"], "line 5 has 7 values and the header in line 1"),
                ("survey_quoted.csv", [], "try --delimiter ,")):
            self.assertIn(hint, run_tool("count", example(name), *options).err)

    def test_right_encodings_are_not_questioned(self):
        for name, encoding in (("wells_cp1251.csv", "CP1251"), ("drillholes_cp866.csv", "CP866"), ("wells.csv", "UTF-8")):
            self.assertNotIn("hint:", run_tool("count", example(name), "--encoding", encoding).err)

    def test_commands_of_the_readme(self):
        with open(example("README.md"), encoding="utf-8") as file:
            commands = [piece for piece in file.read().split("`") if piece.startswith("vok_table ")]
        self.assertGreater(len(commands), 5)
        for command in commands:
            run = run_tool(*shlex.split(command)[1:], cwd=Settings.source)
            self.assertIn(run.code, (0, 1), run.err)
            self.assertNotIn("hint:", run.err)
            self.assertGreater(len(run.out.splitlines()), 3)

    def test_commands_of_the_projects_readme(self):
        """In their order and in one folder: some read what others have written."""
        with open(os.path.join(Settings.source, "README.md"), encoding="utf-8") as file:
            chapter = file.read().split("## From the command line\n")[1]
        commands = [line.split("  #")[0] for line in chapter.split("```")[1].split("\n") if line]
        self.assertGreater(len(commands), 15)
        shutil.copytree(os.path.join(Settings.source, "examples"), self.path("examples"))
        os.mkdir(self.path("build"))
        for command in commands:
            run = run_tool(*shlex.split(command)[1:], cwd=self.folder)
            self.assertIn(run.code, (0, 1), command + "\n" + run.err)
            self.assertNotIn("hint:", run.err, command)
        self.assertEqual(sorted(os.listdir(self.path("build"))),
                         ["bad.csv", "samples.csv", "tables", "wells.csv", "wells.dbf", "wells.xlsx"])


if __name__ == "__main__":
    main()
