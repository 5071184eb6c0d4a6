#!/usr/bin/env python3
"""How many calls of the system a list of a hundred tags among five thousand contacts takes, and
that a second list does not read the address book again."""

import argparse
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time

TAGS = 100
PEOPLE = 5000
MOST_CALLS = 600
# Besides those of the program that starts and ends.
MOST_OWN_CALLS = 250
CANNOT_WATCH = 77
# Far above what a busy machine needs.
LIMIT_SECONDS = 60

CARD = ("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:person-%d\r\nN:Family%d;Given;Middle;;\r\n"
        "ORG:Acme Works;Sales\r\nTEL;TYPE=CELL:+1 555 100 %d\r\nEND:VCARD\r\n")


class Machine:
    def __init__(self, arguments, folder):
        self.arguments = arguments
        self.folder = folder
        self.contacts = folder / "contacts.vcf"
        self.copy = folder / "cache" / "voxtrel" / "contacts"
        self.sound = folder / "cache" / "voxtrel" / "sound"
        self.environment = {
            "PATH": os.defpath, "HOME": str(folder), "LC_ALL": "C.UTF-8",
            "XDG_CACHE_HOME": str(folder / "cache"), "VOXTREL_ROOT": str(folder / "root"),
            "PULSE_SERVER": "unix:" + str(folder / "none"),
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + str(folder / "none"),
        }

    def run(self, command, watched=False):
        """Returns what the program printed, and how many calls it made if it is watched."""
        counted = self.folder / "counted"
        watcher = [self.arguments.watcher, str(counted)] if watched else []
        run = subprocess.run([*watcher, self.arguments.program, *command], env=self.environment,
                             stdin=subprocess.DEVNULL, capture_output=True, check=False)
        if watched and run.returncode == CANNOT_WATCH:
            sys.exit(CANNOT_WATCH)
        code, calls = map(int, counted.read_text().split()) if watched else (run.returncode, 0)
        if code != 0:
            sys.exit(f"{command}: {code} {run.stderr.decode()}")
        return run.stdout.decode(), calls

    def make_tags(self, card=lambda i: (CARD % (i, i, i)).encode()):
        """One is learned, so that the numbers of the contacts are given. The rest are entries.
        `card` gives the bytes of a card of a number."""
        self.contacts.write_bytes(b"".join(card(i) for i in range(PEOPLE)))
        self.run(["--contacts", str(self.contacts), "--microphone",
                  self.arguments.samples + "/anna_1.wav", "tags", "learn", "--contact", "1",
                  "--number", "Mobile"])
        people = json.loads(self.run(["contacts", "list", "--json"])[0])
        lines = ["Windows Registry Editor Version 5.00", ""]
        for i in range(TAGS - 1):
            lines.append(f"[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Voxtrel\\{1000 + i}]")
            for name, text in (("contact", str(people[i]["oid"])), ("phone type", "Mobile")):
                value = text.encode("utf-16-le").ljust(100, b"\0")
                lines.append(f'"{name}"=hex(1):' + ",".join("%02x" % byte for byte in value))
        file = self.folder / "tags.reg"
        file.write_bytes(b"\xff\xfe" + "\r\n".join([*lines, ""]).encode("utf-16-le"))
        self.run(["registry", "import", str(file)])


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "watcher", "samples"):
        parser.add_argument("--" + name, required=True)
    with tempfile.TemporaryDirectory() as folder:
        machine = Machine(parser.parse_args(), pathlib.Path(folder))
        machine.make_tags()
        # What changed a moment ago is not kept: the clock of the files has to go on.
        limit = time.monotonic() + LIMIT_SECONDS
        machine.copy.unlink(missing_ok=True)
        machine.sound.unlink(missing_ok=True)
        while not (machine.copy.exists() and machine.sound.exists()):
            if time.monotonic() > limit:
                sys.exit("nothing is kept")
            first = machine.run(["tags", "list"])[0]
        for private in (machine.copy.parent, machine.copy, machine.sound):
            if private.stat().st_mode & 0o077:
                sys.exit(f"others may use {private}")
        second, calls = machine.run(["tags", "list"], watched=True)
        if second != first or len(first.splitlines()) != TAGS + 1:
            sys.exit("the lists differ")
        own = calls - machine.run(["--version"], watched=True)[1]
        print(f"{calls} calls, {own} of them besides those of the start")
        if calls > MOST_CALLS or own > MOST_OWN_CALLS:
            sys.exit(f"these are more than {MOST_CALLS}, {MOST_OWN_CALLS} of them its own")
        machine.contacts.write_text(machine.contacts.read_text().replace("Family", "Clan"))
        if "Clan0" not in machine.run(["tags", "list"])[0]:
            sys.exit("a list is of contacts that have changed")


if __name__ == "__main__":
    main()
