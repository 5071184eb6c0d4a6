#!/usr/bin/env python3
"""Runs the contracts of wave devices over those of Windows, under Wine with a sound server.

    wave_contract.py TEST_PROGRAM
"""
import json
import os
import random
import subprocess
import sys

import session

# Cases that take the device away. Each needs a server of its own.
UNPLUGGING = ["*MicrophoneThatIsGone*", "*LoudspeakerThatIsGone*"]
# Wine has some hundredths of a second of sound in hand. If the machine stops it for longer, there is a
# gap, which is no fault of the device. So a case that fails is tried again, by itself.
ATTEMPTS = 3


def run_cases(here, program, melody, cases):
    """Returns the names of the cases that failed, or `cases` if the program did not end by itself."""
    server = session.SoundServer(here.folder, melody)
    asked = os.path.join(here.folder, "end_server")
    report = os.path.join(here.folder, "report.json")
    if os.path.exists(report):
        os.unlink(report)
    process = subprocess.Popen([session.find_wine(), program, "--gtest_filter=" + cases,
                                "--gtest_brief=1", "--gtest_output=json:Z:" + report],
                               env=here.environment(), stderr=subprocess.DEVNULL)
    while process.poll() is None:
        if os.path.exists(asked):
            server.end()
            os.unlink(asked)
        try:
            process.wait(0.05)
        except subprocess.TimeoutExpired:
            pass
    server.end()
    if not os.path.exists(report):
        return [cases]
    with open(report) as file:
        suites = json.load(file)["testsuites"]
    return [f"{suite['name']}.{case['name']}" for suite in suites for case in suite["testsuite"]
            if "failures" in case]


def main(program):
    with session.Session() as here:
        here.variables["VOXTREL_SHARED_FOLDER"] = "Z:" + here.folder
        melody = random.Random(1).randbytes(session.BYTES_PER_SECOND)
        with open(os.path.join(here.folder, "melody"), "wb") as file:
            file.write(melody)
        failed = run_cases(here, program, melody, "-" + ":".join(UNPLUGGING))
        failed += UNPLUGGING
        for _ in range(ATTEMPTS):
            failed = [case for name in failed for case in run_cases(here, program, melody, name)]
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
