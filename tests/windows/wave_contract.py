#!/usr/bin/env python3
"""Runs the contracts of wave devices over those of Windows, under Wine with a sound server.

    wave_contract.py TEST_PROGRAM
"""
import os
import random
import subprocess
import sys

import session

# Cases that take the device away. Each needs a server of its own.
UNPLUGGING = "*ThatIsGone*"


def run_cases(here, program, melody, cases):
    server = session.SoundServer(here.folder, melody)
    asked = os.path.join(here.folder, "end_server")
    process = subprocess.Popen([session.find_wine(), program, "--gtest_filter=" + cases,
                                "--gtest_brief=1"], env=here.environment(),
                               stderr=subprocess.DEVNULL)
    while process.poll() is None:
        if os.path.exists(asked):
            server.end()
            os.unlink(asked)
        try:
            process.wait(0.05)
        except subprocess.TimeoutExpired:
            pass
    server.end()
    return process.returncode == 0


def main(program):
    with session.Session() as here:
        here.variables["VOXTREL_SHARED_FOLDER"] = "Z:" + here.folder
        melody = random.Random(1).randbytes(session.BYTES_PER_SECOND)
        with open(os.path.join(here.folder, "melody"), "wb") as file:
            file.write(melody)
        passed = run_cases(here, program, melody, "-" + UNPLUGGING)
        for case in ("*MicrophoneThatIsGone*", "*LoudspeakerThatIsGone*"):
            passed = run_cases(here, program, melody, case) and passed
    return 0 if passed else 1


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
