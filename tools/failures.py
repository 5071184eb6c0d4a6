#!/usr/bin/env python3
"""Prints what failed in the log of one stage of `./check`.

    tools/failures.py LOG          in few lines
    tools/failures.py --all LOG    the last lines of each failed test

In few lines each failed test has its name, its failed assertions with their cases, and what a sanitizer
found. A test that reports none of these has its last lines shown. A log without tests, such as a compiler's,
has its first errors shown.
"""

import re
import sys

NAMED = re.compile(r"\s*(\d+) - (.*)")
OF_A_SANITIZER = re.compile(r"ERROR: |: runtime error: |^SUMMARY: ")
OF_A_COMPILER = re.compile(r"error: | Error |FAILED")
MOST_LINES = 60
LINES_OF_AN_ASSERTION = 12
LAST_LINES = 10


def failed_tests(lines):
    """Returns the names of the failed tests by their numbers, as ctest lists them at its end."""
    if "The following tests FAILED:" not in lines:
        return {}
    last = lines[lines.index("The following tests FAILED:") + 1 :]
    return dict(found.groups() for line in last if (found := NAMED.match(line)))


def assertions(said):
    """Returns the lines of failed assertions, the names of their cases, and the findings of sanitizers."""
    found = []
    wanted = 0
    for line in said:
        if OF_A_SANITIZER.search(line) or re.match(r"\[  FAILED  \] .*\(", line):
            found.append(line)
            wanted = 0
        elif line.endswith(": Failure"):
            found.append(line)
            wanted = LINES_OF_AN_ASSERTION
        elif line.startswith("["):
            wanted = 0
        elif wanted > 0:
            found.append(line)
            wanted -= 1
    return found[:MOST_LINES]


def failures(lines):
    """Returns what failed in few lines."""
    found = []
    for number, name in failed_tests(lines).items():
        said = [line.split(": ", 1)[1] for line in lines if line.startswith(f"{number}: ")]
        found.append(f"  {name}")
        found += [f"    {line}" for line in assertions(said) or said[-LAST_LINES:]]
    if not found:
        errors = [line for line in lines if OF_A_COMPILER.search(line)]
        found = [f"    {line}" for line in errors[:LAST_LINES] or lines[-LAST_LINES:]]
    return found


def ends(lines):
    """Returns the last lines of each failed test."""
    found = []
    for number in failed_tests(lines):
        said = [line for line in lines if line.startswith(f"{number}: ")]
        found += [line for line in said if not re.match(r"\d+: \[( RUN  |       OK|---)", line)][-MOST_LINES:]
    return found


def main():
    with open(sys.argv[-1], errors="replace") as log:
        lines = log.read().splitlines()
    print("\n".join(ends(lines) if sys.argv[1] == "--all" else failures(lines)))


if __name__ == "__main__":
    main()
