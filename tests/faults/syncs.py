#!/usr/bin/env python3
"""How often one learned tag forces something to the medium: as often as the promises of
docs/companion.md need, and no more."""

import argparse
import pathlib
import sys
import tempfile

import machine

WAVES = "root/Program Files/Zedra Tech./Zedra Voxtrel/Voxtrel_wav/"
TEMPLATES = "root/Program Files/Zedra Tech./Zedra Voxtrel/Voxtrel_stor/"
FILES = [
    WAVES,  # The trimmed recording, which has no name yet.
    WAVES,  # Its name.
    TEMPLATES + "100010000.st",
    TEMPLATES,
]
# The log's first page, its name and the entry; then the log is folded back as nobody else has the
# store open: the log once more, and the database. A window that stays open needs one of the five.
MOST_OF_THE_STORE = 5

CONTACT = "BEGIN:VCARD\nVERSION:3.0\nUID:1\nN:Berg;Anna\nTEL;TYPE=CELL:1\nTEL;TYPE=HOME:2\nEND:VCARD\n"


def syncs_of_a_tag(small, samples):
    """Of the second one: folders and store are there."""
    contacts = small.home / "contacts.vcf"
    contacts.write_text(CONTACT)
    for time, kind in ((1, "Mobile"), (10, "Home")):
        run = small.run(["--contacts", str(contacts), "--microphone", samples + "/anna_1.wav",
                         "tags", "learn", "--contact", "Anna", "--number", kind],
                        time=time, logs=True)
        if run.exit != 0:
            sys.exit(f"no tag was learned: {run}")
    return [call.path for call in small.calls() if call.kind == "sync"]


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "library", "samples"):
        parser.add_argument("--" + name, required=True)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        small = machine.Machine(arguments.program, arguments.library, pathlib.Path(folder) / "m")
        syncs = syncs_of_a_tag(small, arguments.samples)
    store = [path for path in syncs if not path.startswith("root/Program Files")]
    faults = []
    if syncs[:len(FILES)] != FILES:
        faults.append("recording and template are not on the medium, each once, before the entry")
    if len(syncs) != len(FILES) + len(store):
        faults.append("something else is forced to the medium")
    if not 0 < len(store) <= MOST_OF_THE_STORE:
        faults.append(f"the store takes {len(store)}")
    for fault in faults:
        print(fault)
    if faults:
        print("\n".join(syncs))
    return 1 if faults else 0


sys.exit(main())
