#!/usr/bin/python3
"""Prints the table of docs/accuracy.md over the sets that make_speakers.py made.

    measure.py PROGRAM FOLDER [--limits]

PROGRAM is voxtrel or voxtrel-dial. With --limits it fails if a set is beyond what is to be reached.
"""

import argparse
import json
import os
import subprocess
import sys

# For one and for three takes: at least, at least, at most, at most.
LIMITS = {1: (0.965, 0.75, 0.01, 0.04), 3: (0.988, 0.85, 0.005, 0.04)}
FIGURES = ("forced", "sure", "wrong", "unknownSure")


def measure(program, folder, takes):
    command = [program] + (["dial"] if os.path.basename(program) == "voxtrel" else [])
    run = subprocess.run(command + ["--json", "--evaluate", folder, "--takes", str(takes)],
                         stdout=subprocess.PIPE, check=True)
    figures = json.loads(run.stdout)["all"]
    return [figures[name]["rate"] or 0 for name in FIGURES]


def is_reached(rates, limits):
    return (rates[0] >= limits[0] and rates[1] >= limits[1] and rates[2] <= limits[2] and
            rates[3] <= limits[3])


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("program")
    parser.add_argument("folder")
    parser.add_argument("--limits", action="store_true")
    arguments = parser.parse_args()
    missed = False
    print("| half, set |" + 2 * " right if forced | sure | wrong among sure | untaught but sure |")
    print("| --- |" + 8 * " --- |")
    for name in sorted(os.listdir(arguments.folder)):
        folder = os.path.join(arguments.folder, name)
        if name.startswith(".") or not os.path.isdir(folder):
            continue
        rates = {takes: measure(arguments.program, folder, takes) for takes in LIMITS}
        cells = [f"{100 * rate:.1f}" for takes in LIMITS for rate in rates[takes]]
        print(f"| {name} | " + " | ".join(cells) + " |")
        missed |= any(not is_reached(rates[takes], LIMITS[takes]) for takes in LIMITS)
    return 1 if missed and arguments.limits else 0


if __name__ == "__main__":
    sys.exit(main())
