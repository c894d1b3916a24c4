"""What the tests of vok_table share: starting the tool, and tables of cases.

A case is one command line in a fresh folder with given files. Its standard output must be exactly what
the case says, byte by byte; its standard error must hold every given text, and be empty when none is
given. Each case becomes a test of its own, so the count at the end counts cases.

Every script runs as: script.py --tool "<command line of the tool>" --source <project folder>
"""
import argparse
import dataclasses
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest


class Settings:
    """The command line of the script."""
    tool = []
    source = ""

    @classmethod
    def is_windows(cls):
        return cls.tool[-1].lower().endswith(".exe")


@dataclasses.dataclass
class Run:
    code: int
    out: bytes
    err: str


def run_tool(*args, cwd=None, env=None, **more):
    """Starts the tool and waits. Settings of the environment that could change the answers are gone, and those that
    `env` has as None."""
    environment = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "TERM")}
    environment.update(env or {})
    environment = {k: v for k, v in environment.items() if v is not None}
    done = subprocess.run([*Settings.tool, *args], cwd=cwd, env=environment, check=False,
                          stdin=subprocess.DEVNULL, stderr=subprocess.PIPE,
                          **{"stdout": subprocess.PIPE, **more})
    return Run(done.returncode, done.stdout, done.stderr.decode("utf-8").replace("\r\n", "\n"))


@dataclasses.dataclass
class Case:
    """One command line, the files that it finds, and everything that must come of it."""
    name: str
    args: list
    out: object = ""  # str (as UTF-8) or bytes
    err: tuple = ()
    code: int = 0
    files: dict = dataclasses.field(default_factory=dict)
    leaves: dict = None  # all files afterwards; None: those that were there before


class CaseTest(unittest.TestCase):
    """A folder for each test, and the comparison of a case."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vok_table_")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, files):
        for name, content in files.items():
            os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
            with open(self.path(name), "wb") as file:
                file.write(content.encode("utf-8") if isinstance(content, str) else content)

    def run_copy(self, *args, env=None, **more):
        """Starts a copy of the tool in the test's folder, where the converter does not stand beside it."""
        copy = self.path("vok_table")
        shutil.copy(Settings.tool[-1], copy)
        environment = {**os.environ, **(env or {}), "LD_LIBRARY_PATH": os.path.dirname(Settings.tool[-1])}
        done = subprocess.run([copy, *args], cwd=self.folder, env=environment, check=False, stdin=subprocess.DEVNULL,
                              capture_output=True, **more)
        return Run(done.returncode, done.stdout, done.stderr.decode("utf-8"))

    def content(self):
        """All files in the folder and what they hold."""
        found = {}
        for folder, _, names in os.walk(self.folder):
            for name in names:
                path = os.path.join(folder, name)
                with open(path, "rb") as file:
                    found[os.path.relpath(path, self.folder)] = file.read()
        return found

    def check(self, case):
        self.write(case.files)
        run = run_tool(*case.args, cwd=self.folder)
        out = case.out.encode("utf-8") if isinstance(case.out, str) else case.out
        self.assertEqual(run.out, out, f"standard output; standard error was: {run.err}")
        for text in case.err:
            self.assertIn(text, run.err)
        if not case.err:
            self.assertEqual(run.err, "")
        self.assertEqual(run.code, case.code)
        expected = case.files if case.leaves is None else case.leaves
        self.assertEqual(self.content(),
                         {name: content.encode("utf-8") if isinstance(content, str) else content
                          for name, content in expected.items()})


def cases(*table):
    """Class decorator: every case becomes a test method."""
    def add(cls):
        for number, case in enumerate(table):
            name = f"test_{number:03}_" + re.sub(r"\W+", "_", case.name)
            setattr(cls, name, lambda self, case=case: self.check(case))
        return cls
    return add


posix_only = unittest.skipIf(os.name != "posix", "needs a POSIX system")


def skip_for_windows(reason):
    """Decorator of a test that the Windows program cannot pass for a reason of its system."""
    def wrap(test):
        def run(self, *args):
            if Settings.is_windows():
                self.skipTest(reason)
            test(self, *args)
        run.__name__ = test.__name__
        return run
    return wrap


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--source", required=True)
    arguments, rest = parser.parse_known_args()
    Settings.tool = shlex.split(arguments.tool)
    Settings.source = arguments.source
    sys.stderr.reconfigure(encoding="utf-8", errors="backslashreplace")
    unittest.main(module="__main__", argv=[sys.argv[0], *rest])
