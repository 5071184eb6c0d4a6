#!/usr/bin/env python3
"""How often one learned tag forces something to the medium: as often as the promises of
docs/companion.md need, and no more."""

import argparse
import sys
import tempfile

import machine

# What each sync is for. A store that is made, and the folders on the way to it, are not counted.
EXPECTED = [
    "Voxtrel_wav/TAG.wav",  # The trimmed recording, before it takes its name.
    "Voxtrel_wav",          # The name.
    "Voxtrel_stor/TAG.st",
    "Voxtrel_stor",
    "registry.db-wal",      # The entry, after its files.
]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--samples", required=True)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        small = machine.Machine(arguments.program, arguments.library, folder + "/machine")
        (small.home / "contacts.vcf").write_text(
            "BEGIN:VCARD\nVERSION:3.0\nUID:1\nN:Berg;Anna\nTEL;TYPE=CELL:1\nTEL;TYPE=HOME:2\n"
            "END:VCARD\n")
        for time, kind in ((1, "Mobile"), (10, "Home")):
            run = small.run(
                ["--contacts", str(small.home / "contacts.vcf"),
                 "--microphone", arguments.samples + "/anna_1.wav", "tags", "learn",
                 "--contact", "Anna", "--number", kind], time=time, logs=True)
            print(run)
        for call in small.calls():
            if call.kind == "sync":
                print(call.path)
    return 0


sys.exit(main())
