#!/usr/bin/env python3
"""Counts what short commands cost: the instructions of their start and of a list of a hundred tags
among five thousand contacts, also in other kinds of cards, and the memory of a list of a hundred
thousand contacts."""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "faults"))
import calls  # The machine with the tags and the contacts.

MANY = 100_000
ENCODED = ";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:"
PICTURE = "\r\n ".join(["PHOTO;ENCODING=b;TYPE=JPEG:", *["QUJDREVGR0hJSktMTU5PUFFSU1RV" * 2] * 100])


def quoted(text):
    return "".join("=%02X" % byte for byte in text.encode())


def long_card(i):
    """What an account of a desktop writes; one of ten has a picture."""
    return (f"BEGIN:VCARD\r\nVERSION:3.0\r\nUID:4fbe8971-0bc3-424c-9c26-{i}\r\n"
            f"N:Family{i};Given;Middle;;\r\nFN:Given Middle Family{i}\r\nORG:Acme Works;Sales\r\n"
            f"TITLE:Engineer\r\nEMAIL;TYPE=WORK:person{i}@example.org\r\n"
            f"TEL;TYPE=CELL,VOICE:+1 555 100 {i}\r\nTEL;TYPE=WORK:+1 555 200 {i}\r\n"
            f'TEL;TYPE="HOME,VOICE":+1 555 300 {i}\r\n'
            "ADR;TYPE=HOME:;;1 Long Street;Town;;12345;Country\r\n"
            "NOTE:Met at the fair\\, twice\r\nREV:2024-05-01T10:00:00Z\r\n"
            + (PICTURE + "\r\n" if i % 10 == 0 else "") + "END:VCARD\r\n").encode()


def quoted_card(i):
    """What a telephone writes."""
    return (f"BEGIN:VCARD\r\nVERSION:2.1\r\nN{ENCODED}{quoted('Müller')};{quoted('Jürgen')}{i};;;"
            f"\r\nFN{ENCODED}{quoted('Jürgen Müller')}\r\nTEL;CELL:+49 171 100 {i}\r\n"
            f"TEL;WORK:+49 30 200 {i}\r\nEND:VCARD\r\n").encode()


def named_set_card(i):
    """What an old program writes, in a character set that it names."""
    return (f"BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=KOI8-R:Иванов{i};Иван;Иванович;;\r\n"
            f"ORG;CHARSET=KOI8-R:Завод\r\nTEL;CELL:+7 900 100 {i}\r\n"
            "END:VCARD\r\n").encode("koi8-r")


def instructions(command, environment):
    watched = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command]
    run = subprocess.run(watched, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                         check=True)
    return int(re.search(rb"Collected : (\d+)", run.stderr)[1])


def empty_program(folder, program):
    """Returns a program that does nothing and is linked with the libraries of `program`."""
    listed = subprocess.run(["readelf", "--dynamic", program], capture_output=True, text=True,
                            check=True).stdout
    libraries = re.findall(r"NEEDED.*\[(.*)\]", listed)
    source = folder / "empty.cpp"
    source.write_text("int main() {}\n")
    result = folder / "empty"
    subprocess.run(["g++", "-O2", source, "-o", result, "-Wl,--no-as-needed",
                    *("-l:" + library for library in libraries)], check=True)
    return str(result)


def most_memory(command, environment):
    """Returns the most memory that was resident, in MiB."""
    started = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(started.pid, 0)
    if status != 0:
        sys.exit(f"{command} failed")
    return usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "samples"):
        parser.add_argument("--" + name, required=True)
    arguments = parser.parse_args()
    program = arguments.program
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        machine = calls.Machine(arguments, folder)
        empty = instructions([empty_program(folder, program)], machine.environment)
        version = instructions([program, "--version"], machine.environment)
        print(f"an empty program with the same libraries: {empty:,} instructions")
        print(f"--version: {version:,}, {version - empty:,} of them its own")
        machine.make_tags()
        without = dict(machine.environment, XDG_CACHE_HOME="/dev/null")
        print(f"tags list, each card read: {instructions([program, 'tags', 'list'], without):,}")
        for kind, card in (("long cards, one of ten with a picture", long_card),
                           ("quoted-printable cards", quoted_card),
                           ("cards in KOI8-R", named_set_card)):
            other = folder / card.__name__
            other.mkdir()
            others = calls.Machine(arguments, other)
            others.make_tags(card)
            own = dict(others.environment, XDG_CACHE_HOME="/dev/null")
            print(f"the same, {kind}: {instructions([program, 'tags', 'list'], own):,}")
        # What changed a moment ago is not kept: the clock of the files has to go on.
        limit = time.monotonic() + calls.LIMIT_SECONDS
        while not machine.copy.exists() and time.monotonic() < limit:
            machine.run(["tags", "list"])
        warm = instructions([program, "tags", "list"], machine.environment)
        print(f"tags list, from the copy: {warm:,}")
        many = folder / "many.vcf"
        many.write_text("".join(calls.CARD % (i, i, i) for i in range(MANY)), newline="")
        peak = most_memory([program, "--root", str(folder / "other"), "--contacts", str(many),
                            "contacts", "list"], without)
        print(f"contacts list, {MANY:,} contacts: {peak:.1f} MiB")


main()
