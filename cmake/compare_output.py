#!/usr/bin/env python3
"""Runs a program and compares what it prints with a file: compare_output.py EXPECTED COMMAND...

Line ends are compared as LF, because a C program on Windows prints CR LF. The program must end with
exit code 0, or with 77: what it needs is not installed, and so is the answer here.
"""
import difflib
import subprocess
import sys


def text_lines(data):
    return data.replace(b"\r\n", b"\n").decode("utf-8", "backslashreplace").splitlines(keepends=True)


def main():
    if len(sys.argv) < 3:
        sys.exit("usage: compare_output.py EXPECTED COMMAND...")
    skipped = 77
    expected_name, command = sys.argv[1], sys.argv[2:]
    run = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if run.returncode == skipped:
        print("".join(text_lines(run.stdout)), end="")
        return skipped
    with open(expected_name, "rb") as file:
        expected = text_lines(file.read())
    printed = text_lines(run.stdout)
    failed = False
    if run.returncode != 0:
        print(f"{command[-2]}: exit code {run.returncode}, expected 0")
        failed = True
    if printed != expected:
        print(f"{command[-2]}: the output differs from {expected_name}")
        for line in difflib.unified_diff(expected, printed, "expected", "printed"):
            print(line.rstrip("\n"))
        failed = True
    if failed:
        print("".join(text_lines(run.stderr)), end="")
    return 1 if failed else 0


if __name__ == "__main__":
    # A difference may hold any character; the log takes them whatever the locale is.
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    sys.exit(main())
