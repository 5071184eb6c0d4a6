#!/usr/bin/env python3
"""Runs the tests of the dialogs at two scales of the screen, under Wine without a screen.

    scales.py TEST_PROGRAM
"""
import subprocess
import sys

import session


def main(program):
    failed = 0
    for percent in (100, 200):
        with session.Session(percent=percent) as here:
            here.variables["VOXTREL_SCREEN_PERCENT"] = str(percent)
            failed |= subprocess.run([session.find_wine(), program, "--gtest_brief=1"],
                                     env=here.environment(), check=False).returncode
    return failed


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
