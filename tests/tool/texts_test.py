#!/usr/bin/env python3
"""Help, the manual page and the completion scripts: one table of commands and options, told four times."""
import os
import re
import shutil
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "support"))
from tool_cases import Case, CaseTest, cases, main, run_tool  # noqa: E402

READING = {"--json", "--type", "--encoding", "--delimiter", "--quote", "--header-row", "--data-row", "--table",
           "--system-encoding"}
OPTIONS = {
    "tables": READING, "fields": READING, "count": READING, "stats": READING,
    "head": READING | {"-n", "--rows", "--select"},
    "cat": READING | {"--select"},
    "errors": READING | {"--csv"},
    "find": READING | {"--where", "--show", "--select"},
    "convert": READING | {"--select", "--force", "--strict", "--output-delimiter", "--fields", "--rejects", "--all-tables",
                          "--to"},
    "doctor": {"--type", "--json"}, "formats": {"--json"}, "version": {"--json"}, "completion": set(),
}
SHELLS = ["bash", "zsh", "fish", "powershell"]


def text_of(*arguments):
    run = run_tool(*arguments)
    assert (run.code, run.err) == (0, ""), run.err
    return run.out.decode("utf-8")


def judge(*command):
    """The program that checks a text, or a skip that counts."""
    if shutil.which(command[0]) is None:
        raise unittest.SkipTest(f"{command[0]} is not installed")
    return list(command)


class Help(CaseTest):
    def test_every_command_and_option(self):
        page = text_of("--help")
        for command, options in OPTIONS.items():
            self.assertRegex(page, rf"(?m)^  {command} +\w")
            found = set(re.findall(r"(?m)^  (?:-h,)?(--?[\w-]+)(?:,(--[\w-]+))?", text_of(command, "--help")))
            self.assertEqual({name for names in found for name in names if name}, options | {"--help"}, command)
        self.assertNotIn("manual", page)
        self.assertIn("Exit codes: 0 clean; 1 done, but lines were rejected", page)

    def test_help_as_a_command(self):
        self.assertEqual(text_of("help"), text_of("--help"))
        for command in OPTIONS:
            self.assertEqual(text_of("help", command), text_of(command, "--help"))

    def test_lines_fit_a_terminal(self):
        for command in ([], *[[name] for name in OPTIONS]):
            for line in text_of(*command, "--help").splitlines():
                self.assertLessEqual(len(line), 105, line)


class Manual(CaseTest):
    def setUp(self):
        super().setUp()
        self.page = text_of("manual")

    def test_every_command_and_option(self):
        plain = self.page.replace("\\-", "-")
        commands = plain.split(".SH COMMANDS")[1].split(".SH OPTIONS")
        for command, options in OPTIONS.items():
            self.assertIn(f".TP\n\\fB{command}\\fR", commands[0])
            own = commands[0].split(f"\\fB{command}\\fR", 1)[1].split("\n.RE", 1)[0]
            for option in options - READING:
                self.assertIn(f"\\fB{option}\\fR", own, command)
        for option in READING:
            self.assertIn(f"\\fB{option}\\fR", commands[1])

    def test_sections(self):
        self.assertEqual(re.findall(r"(?m)^\.SH (.*)", self.page),
                         ["NAME", "SYNOPSIS", "DESCRIPTION", "COMMANDS", "OPTIONS", "EXIT STATUS", "ENVIRONMENT",
                          "EXAMPLES"])
        self.assertTrue(all(ord(character) < 128 for character in self.page))
        self.assertEqual(self.page.count(".RS"), self.page.count(".RE"))

    def test_only_known_requests(self):
        requests = {line.split()[0] for line in self.page.splitlines() if line.startswith((".", "'"))}
        self.assertEqual(requests, {'.\\"', ".TH", ".SH", ".TP", ".PP", ".RS", ".RE"})

    def test_exit_codes(self):
        for code in range(6):
            self.assertIn(f".TP\n\\fB{code}\\fR\n", self.page)

    def check(self, *command):
        done = subprocess.run(judge(*command), input=self.page.encode(), capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr.decode(), done.stdout.decode() if "-z" in command else ""),
                         (0, "", ""))
        return done.stdout.decode("utf-8", "replace")

    def test_groff(self):
        self.check("groff", "-man", "-ww", "-z")

    def test_mandoc(self):
        judge("mandoc")
        done = subprocess.run(["mandoc", "-Tlint", "-Werror"], input=self.page.encode(), capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (0, b""))

    def test_man(self):
        judge("man")
        self.write({"vok_table.1": self.page})
        done = subprocess.run(["man", "-l", self.path("vok_table.1")], capture_output=True, check=False,
                              env={**os.environ, "MANWIDTH": "80", "LC_ALL": "C.UTF-8", "MANPAGER": "cat"})
        if done.returncode != 0 or b"NAME" not in done.stdout:
            self.skipTest("man cannot show a page here")
        self.assertIn("--all-tables", re.sub(".\b", "", done.stdout.decode("utf-8")))


class Completion(CaseTest):
    def test_every_command_and_option(self):
        for shell in SHELLS:
            script = text_of("completion", shell)
            for command, options in OPTIONS.items():
                self.assertIn(command, script)
                for option in options:
                    name = option.lstrip("-") if shell == "fish" else option
                    self.assertIn(name, script, shell)
            self.assertNotIn("manual", script)
            self.assertNotIn("\r", script)

    def test_syntax(self):
        for shell, command in (("bash", ["bash", "-n"]), ("zsh", ["zsh", "-n"]), ("fish", ["fish", "--no-execute"])):
            self.write({"script": text_of("completion", shell)})
            with self.subTest(shell):
                done = subprocess.run([*judge(*command), self.path("script")], capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, b"", b""))

    def test_powershell(self):
        judge("pwsh")
        self.write({"script.ps1": text_of("completion", "powershell")})
        done = subprocess.run(["pwsh", "-NoProfile", "-File", self.path("script.ps1")], capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))


class Bash(CaseTest):
    """What bash offers for a line: its words, the last one being completed."""

    def offered(self, *words):
        judge("bash")
        self.write({"completion.bash": text_of("completion", "bash")})
        line = " ".join(f"'{word}'" for word in ("vok_table", *words))
        done = subprocess.run(
            ["bash", "-c", f"source ./completion.bash; COMP_WORDS=({line}); COMP_CWORD={len(words)}; _vok_table; "
                           'for word in "${COMPREPLY[@]}"; do printf "%s\\n" "$word"; done; complete -p vok_table'],
            cwd=self.folder, capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        offered = done.stdout.decode("utf-8").splitlines()
        self.assertEqual(offered.pop(), "complete -F _vok_table vok_table")
        return offered

    def test_commands(self):
        self.assertEqual(set(self.offered("")), set(OPTIONS) | {"--help", "--version"})
        self.assertEqual(self.offered("co"), ["count", "convert", "completion"])

    def test_options(self):
        for command, options in OPTIONS.items():
            self.assertEqual(set(self.offered(command, "-")), options | {"--help"}, command)
        self.assertEqual(self.offered("convert", "a.csv", "--re"), ["--rejects"])

    def test_values(self):
        self.assertEqual(self.offered("cat", "--type", "d"), ["dbf", "dhdb"])
        self.assertEqual(self.offered("cat", "--type", "=", "d"), ["dbf", "dhdb"])
        self.assertIn("csv", self.offered("cat", "--type", "="))
        self.assertEqual(self.offered("cat", "--encoding", "CP86"), ["CP866"])
        self.assertEqual(self.offered("convert", "--to", ""), ["csv", "xlsx", "dbf"])
        self.assertEqual(self.offered("cat", "--delimiter", ""), [])
        self.assertEqual(self.offered("completion", "p"), ["powershell"])

    def test_files(self):
        self.write({"my wells.csv": "", "Скважины.csv": "", "x/a.csv": ""})
        self.assertEqual(set(self.offered("cat", "")), {"my wells.csv", "Скважины.csv", "x", "completion.bash"})
        self.assertEqual(self.offered("cat", "my"), ["my wells.csv"])
        self.assertEqual(self.offered("convert", "a.csv", "--rejects", "x/"), ["x/a.csv"])


@cases(
    Case("no shell", ["completion"], "", ["error: SHELL is required\n"], 2),
    Case("an unknown shell", ["completion", "csh"], "",
         ['error: there is no script for the shell "csh": the shells are bash, zsh, fish, powershell\n'], 2),
)
class Refusals(CaseTest):
    pass


if __name__ == "__main__":
    main()
