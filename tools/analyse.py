#!/usr/bin/env python3
"""Runs clang-tidy over the program's own folders.

    tools/analyse.py BUILD

The analyser goes through every header of each file that it gets, those of the system included, and spends
most of its time there. So the sources are joined to a few files, with the options that the compile
commands of BUILD have for them. Their helpers have names of their own: those of one library because it is
compiled as one file, too, and those of two libraries by their namespaces.
"""

import itertools
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parent.parent
# What is joined to one file: rooms, and the files that do not go with the rest of their room. Rooms with
# headers of the window library stand apart, since those make words like `signals` macros.
PARTS = [
    ["backends", "resources", "language", "framework", "audio", "voicemath"],
    [
        "storage",
        "maintenance",
        "tags",
        "connection",
        "dialer",
        "applet",
        "host/applet",
        "backends/serial/line_settings.cpp",
        "backends/text/without_icu.cpp",
        "voicemath/template_distance.cpp",
    ],
    ["host/machine", "host/session", "host/calling", "host/cli", "host/dial"],
    ["backends/qt", "host/connection", "host/panel"],
    ["host/home"],
]


def sources_of(command):
    """Returns the sources that a compile command compiles: those that its file joins, or the file itself."""
    file = pathlib.Path(command["file"])
    if "Unity" not in file.parts:
        return [file]
    lines = file.read_text().splitlines()
    return [pathlib.Path(line.split('"')[1]) for line in lines if line.startswith('#include "')]


def options_of(command):
    """Returns the options of a compile command that matter to an analyser, each as its words."""
    words = shlex.split(command["command"])
    options = []
    for word, following in itertools.pairwise(words):
        if word == "-isystem":
            options.append((word, following))
        elif word.startswith(("-I", "-D", "-W", "-std=")) and not word.endswith("_EXPORTS"):
            options.append((word,))
    return options


def part_of(source):
    """Returns the number of the part of a source. Returns None if it is none of the program's own."""
    if ROOT not in source.parents:
        return None
    path = source.relative_to(ROOT)
    for place in [path, *path.parents]:
        for number, part in enumerate(PARTS):
            if str(place) in part:
                return number
    return None


def write_parts(commands, folder):
    """Writes the joined files and their compile commands to a folder. Returns the files."""
    parts = [{} for _ in PARTS]
    for command in commands:
        for source in sources_of(command):
            number = part_of(source)
            if number is not None:
                parts[number].setdefault(source, options_of(command))
    # Each program has its own function `main`, and so may each part.
    programs = [(part, source) for part in parts for source in part if source.name == "main.cpp"]
    for (part, source), other in zip(programs, itertools.cycle(parts)):
        other[source] = part.pop(source)

    files = []
    database = []
    for number, part in enumerate(parts):
        file = folder / f"part_{number}.cpp"
        file.write_text("".join(f'#include "{source}"\n' for source in part))
        options = dict.fromkeys(option for found in part.values() for option in found)
        words = ["clang++", *itertools.chain(*options), "-c", str(file)]
        database.append({"directory": str(folder), "file": str(file), "arguments": words})
        files.append(file)
    (folder / "compile_commands.json").write_text(json.dumps(database, indent=1))
    return files


def analyse(file):
    """Analyses one file. Returns whether nothing was found, and prints what was."""
    done = subprocess.run(
        ["clang-tidy", "-quiet", "-p", file.parent, file], capture_output=True, text=True
    )
    print(re.sub(r"\x1b\[[0-9;]*m", "", done.stdout), end="")
    if done.returncode != 0:
        print(done.stderr, file=sys.stderr)
    return done.returncode == 0


def main():
    build = pathlib.Path(sys.argv[1])
    folder = build.resolve() / "analysis"
    folder.mkdir(exist_ok=True)
    files = write_parts(json.loads((build / "compile_commands.json").read_text()), folder)
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as workers:
        if not all(list(workers.map(analyse, files))):
            sys.exit(1)


main()
