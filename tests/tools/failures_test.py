#!/usr/bin/env python3
"""Tests of tools/failures.py: whoever sees the last lines of `./check` alone knows what failed."""

import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import failures  # noqa: E402

LOG = """\
1: [ RUN      ] Door.Opens
1: [       OK ] Door.Opens (0 ms)
12: [ RUN      ] Files.AreHeld
12: /tests/files_test.cpp:34: Failure
12: Value of: Held()
12:   Actual: false
12: [  FAILED  ] Files.AreHeld (3 ms)
12: [ RUN      ] Files.AreLeft
12: a word of the program
12: [       OK ] Files.AreLeft (0 ms)
12: [  FAILED  ] 1 test, listed below:
12: [  FAILED  ] Files.AreHeld
13: ==7==ERROR: AddressSanitizer: heap-use-after-free
13:     #0 0x1 in Read
13: SUMMARY: AddressSanitizer: heap-use-after-free read.cpp:3
112: Traceback
112: AssertionError: no window

96% tests passed, 3 tests failed out of 90

The following tests FAILED:
\t 12 - files_test (Failed)
\t 13 - cli_tests_0 (Failed)
\t112 - access_windows (Timeout)
Errors while running CTest
""".splitlines()


class Failures(unittest.TestCase):
    def test_name_each_test_with_its_failed_assertions_and_their_case(self):
        self.assertEqual(
            failures.failures(LOG)[:5],
            [
                "  files_test (Failed)",
                "    /tests/files_test.cpp:34: Failure",
                "    Value of: Held()",
                "      Actual: false",
                "    [  FAILED  ] Files.AreHeld (3 ms)",
            ],
        )

    def test_of_a_sanitizer_are_its_findings_without_the_calls(self):
        self.assertEqual(
            failures.failures(LOG)[5:8],
            [
                "  cli_tests_0 (Failed)",
                "    ==7==ERROR: AddressSanitizer: heap-use-after-free",
                "    SUMMARY: AddressSanitizer: heap-use-after-free read.cpp:3",
            ],
        )

    def test_of_anything_else_are_its_last_lines(self):
        self.assertEqual(
            failures.failures(LOG)[8:],
            ["  access_windows (Timeout)", "    Traceback", "    AssertionError: no window"],
        )

    def test_of_a_compiler_are_its_errors(self):
        self.assertEqual(
            failures.failures(["[1/9] a.cpp", "a.cpp:3:1: error: no such name", "ninja: stopped"]),
            ["    a.cpp:3:1: error: no such name"],
        )

    def test_of_a_log_that_names_none_are_its_last_lines(self):
        self.assertEqual(failures.failures(["begun", "killed"]), ["    begun", "    killed"])

    def test_have_a_long_form_without_the_cases_that_passed(self):
        said = failures.ends(LOG)
        self.assertIn("12: a word of the program", said)
        self.assertNotIn("12: [       OK ] Files.AreLeft (0 ms)", said)
        self.assertNotIn("1: [ RUN      ] Door.Opens", said)


if __name__ == "__main__":
    unittest.main()
