"""A small machine for the program: a folder, a clock that stands still, and faults on demand."""

import os
import pathlib
import shutil
import signal
import struct
import subprocess
import typing

# Numbers of the errors that a call can be made to have.
ERRORS = {"EIO": 5, "ENOSPC": 28, "EACCES": 13, "EMFILE": 24, "ENOMEM": 12}
# Far above what a run needs on a busy machine: a run that is not done by then waits for ever.
LIMIT_SECONDS = 20


class Run(typing.NamedTuple):
    exit: int  # Negative: the signal that ended it. None: it did not end.
    out: str
    err: str


class Call(typing.NamedTuple):
    """One call on a file, as the library logged it (plan.h)."""
    kind: str
    changes: bool
    errors: list  # Names of those with which it can fail.
    succeeded: bool
    descriptor: int
    number: int
    path: str
    other: str
    data: bytes


KINDS = ("open read write truncate sync rename link symlink unlink folder rights look list lock map "
         "close dup memory").split()


def read_log(path):
    log = path.read_bytes()
    header = struct.Struct("<IHHBBBBiq")
    names = list(ERRORS)
    calls = []
    at = 0
    while at < len(log):
        size, first, second, kind, changes, mask, succeeded, descriptor, number = \
            header.unpack_from(log, at)
        at += header.size
        parts = []
        for length in (first, second, size):
            parts.append(log[at:at + length])
            at += length
        calls.append(Call(KINDS[kind], bool(changes),
                          [name for bit, name in enumerate(names) if mask >> bit & 1],
                          bool(succeeded), descriptor, number, parts[0].decode(),
                          parts[1].decode(), parts[2]))
    return calls


class Machine:
    """One folder that runs happen in. What it holds is a tree: a dictionary from relative paths to
    the bytes of a file, or to None for a folder."""

    errors = ERRORS
    sound_errors = []  # Those of wave devices alone.
    kinds = ["kill", "power", "call", "memory"]
    lacks = ("with devices",)  # Ends of the names of commands that this system does not have.
    limit = LIMIT_SECONDS

    def __init__(self, program, library, folder):
        self.program = program
        self.library = library
        self.folder = pathlib.Path(folder)
        self.home = self.folder / "home"
        self._log = self.folder / "log"
        shutil.rmtree(self.folder, ignore_errors=True)
        self.home.mkdir(parents=True)

    def run(self, arguments, fault="", time=0, logs=False, locale="C.UTF-8"):
        environment = {
            "PATH": os.defpath,
            "LC_ALL": locale,
            # No sound server of the machine's.
            "PULSE_SERVER": "unix:" + str(self.folder / "none"),
            "VOXTREL_ROOT": self._path("/root"),
            "VOXTREL_FAULT_TIME": str(time),
            **self._surroundings(),
        }
        if fault:
            environment["VOXTREL_FAULT"] = fault
        if logs:
            environment["VOXTREL_FAULT_LOG"] = str(self._log)
        arguments = [argument.replace("@", self._path("")) for argument in arguments]
        with open(self.folder / "out", "w+b") as out, open(self.folder / "err", "w+b") as err:
            process = subprocess.Popen([*self._start(), *arguments], env=environment, cwd=self.home,
                                       stdin=subprocess.DEVNULL, stdout=out, stderr=err)
            try:
                code = process.wait(self.limit)
            except subprocess.TimeoutExpired:
                process.send_signal(signal.SIGKILL)
                process.wait()
                code = None
            texts = []
            for file in (out, err):
                file.seek(0)
                texts.append(self._plain(file.read().decode("utf-8", "replace")))
        return Run(code, *texts)

    def _start(self):
        """What starts the program."""
        return [self.program]

    def _surroundings(self):
        """More of the environment."""
        return {
            "HOME": str(self.home),
            # No address book of the machine's.
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=" + str(self.folder / "none"),
            "LD_PRELOAD": self.library,
            "VOXTREL_FAULT_FOLDER": str(self.home),
        }

    def _path(self, inside):
        """A path in the folder of the tree, as the program takes it."""
        return str(self.home) + inside

    def _plain(self, text):
        """What the program printed, without the place of the machine."""
        return text.replace(str(self.home), "@")

    def heard(self):
        """What the loudspeaker played in the last run."""
        return b""

    def faults_of_devices(self, calls):
        """Faults of wave devices of a run with these calls, besides errors of calls."""
        return []

    def calls(self):
        """Of the last run that logged, with paths relative to the folder of the tree."""
        prefix = str(self.home) + "/"
        return [call._replace(path=call.path.removeprefix(prefix),
                              other=call.other.removeprefix(prefix))
                for call in read_log(self._log)]

    def tree(self):
        found = {}
        base = str(self.home)
        for folder, folders, files in os.walk(base):
            inside = os.path.relpath(folder, base)
            inside = "" if inside == "." else inside + "/"
            for name in folders:
                found[inside + name] = None
            for name in files:
                if not name.endswith("-shm"):
                    with open(os.path.join(folder, name), "rb") as file:
                        found[inside + name] = file.read()
        return found

    def restore(self, wanted):
        """Makes the folder hold what the tree says, and nothing else."""
        for path in self.home.glob("root/*-shm"):
            path.unlink()
        there = self.tree()
        for path in sorted(there, reverse=True):
            if path not in wanted or (there[path] is None) != (wanted[path] is None):
                full = self.home / path
                full.rmdir() if there[path] is None else full.unlink()
                del there[path]
        for path in sorted(wanted):
            if path in there and there[path] == wanted[path]:
                continue
            full = self.home / path
            if wanted[path] is None:
                full.mkdir()
            else:
                full.write_bytes(wanted[path])
