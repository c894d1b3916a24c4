#!/usr/bin/env python3
"""Counts the tests of one ctest run: ctest_counts.py NAME LOG_DIR CTEST_EXIT_CODE

LOG_DIR holds the run's result, NAME.xml, and what ctest printed, NAME-ctest.log. Prints every failed
test with its output on standard error, and `PASSED FAILED SKIPPED` on standard output. A run without a
readable result, or one that ctest calls failed without naming a test, is one failure. Tests that passed at a second
try, where ctest was told to try twice, are named on standard error and count as passed.
"""
import os
import re
import sys
import xml.etree.ElementTree as ElementTree

# What ctest says of a test that ran and called itself skipped. Any other test that did not run is a
# failure: its program is missing, or it could not be started.
SKIPPED = ("SKIP_REGULAR_EXPRESSION_MATCHED", "SKIP_RETURN_CODE")


# "7/19 Test  #5: reader.reads ....***Exception: SegFault  0.00 sec": only here ctest says how a test ended.
RESULT_LINE = re.compile(r"^ *\d+/\d+ Test +#\d+: (.+?) \.*(.*\*\*\*.*?) +[0-9.]+ sec", re.MULTILINE)


def outcome(case):
    status = case.get("status")
    if status == "run":
        return "passed"
    if status == "disabled":
        return "skipped"
    skipped = case.find("skipped")
    if status == "notrun" and skipped is not None:
        if any(word in skipped.get("message", "") for word in SKIPPED):
            return "skipped"
    return "failed"


def main():
    name, log_dir, exit_code = sys.argv[1], sys.argv[2], int(sys.argv[3])
    counts = {"passed": 0, "failed": 0, "skipped": 0}
    try:
        cases = list(ElementTree.parse(os.path.join(log_dir, name + ".xml")).getroot().iter("testcase"))
    except (OSError, ElementTree.ParseError) as error:
        print(f"{name}: ctest left no result ({error})", file=sys.stderr)
        cases = []
    with open(os.path.join(log_dir, name + "-ctest.log"), encoding="utf-8", errors="replace") as file:
        reasons = dict(RESULT_LINE.findall(file.read()))
    for case in cases:
        result = outcome(case)
        counts[result] += 1
        if result == "failed":
            reason = reasons.get(case.get("name"), "failed").replace("***", " ").strip()
            print(f"\n--- {name}: {case.get('name')}: {reason}", file=sys.stderr)
            print((case.findtext("system-out") or "").rstrip(), file=sys.stderr)
        elif result == "passed" and case.get("name") in reasons:
            print(f"--- {name}: {case.get('name')} passed at the second try", file=sys.stderr)
    if counts["failed"] == 0 and (exit_code != 0 or not cases):
        print(f"{name}: ctest ended with {exit_code} and {len(cases)} tests", file=sys.stderr)
        counts["failed"] = 1
    print(counts["passed"], counts["failed"], counts["skipped"])


if __name__ == "__main__":
    sys.stderr.reconfigure(encoding="utf-8", errors="backslashreplace")
    main()
