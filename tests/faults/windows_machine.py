"""The small machine under Wine: the program of Windows with the calls that it imports taken over
(windows_calls.h). The registry of its root folder is a file of its tree while nothing runs."""

import os
import signal

from machine import Call, Machine

# The errors of Windows that stand for those of Linux, and those of wave devices (windows_plan.cpp).
FILE_ERRORS = {"EIO": 1117, "ENOSPC": 112, "EACCES": 5, "EMFILE": 4, "ENOMEM": 8}
SOUND_ERRORS = {"gone": 10006, "taken": 10004, "no memory": 10007, "format": 10032, "in use": 10033}
LETTERS = dict(zip("isafmdtnbp", [*FILE_ERRORS, *SOUND_ERRORS]))
EXIT_OF_KILLED = 99


class WindowsMachine(Machine):
    errors = FILE_ERRORS | SOUND_ERRORS
    sound_errors = SOUND_ERRORS
    # The system writes at once what it is given, and nothing can be lost but by a kill.
    kinds = ["kill", "call", "sound"]
    lacks = ("dial",)
    # A process of Wine's takes a while on a busy machine.
    limit = 60

    def run(self, *arguments, **options):
        (self.folder / "heard").unlink(missing_ok=True)
        run = super().run(*arguments, **options)
        return run._replace(exit=-signal.SIGKILL) if run.exit == EXIT_OF_KILLED else run

    def _start(self):
        # The library is what starts the program.
        return [self.library, self.program]

    def _surroundings(self):
        return {
            "HOME": str(self.folder),
            "WINEPREFIX": os.environ["WINEPREFIX"],
            "WINEDEBUG": "-all",
            "VOXTREL_FAULT_MICROPHONE": self._path("/microphone.wav"),
            "VOXTREL_FAULT_LOUDSPEAKER": "Z:" + str(self.folder / "heard").replace("/", "\\"),
        }

    def _path(self, inside):
        return "Z:" + (str(self.home) + inside).replace("/", "\\")

    def _plain(self, text):
        for path in (self._path("").replace("\\", "\\\\"), self._path(""), str(self.home)):
            text = text.replace(path, "@")
        return text

    def heard(self):
        file = self.folder / "heard"
        return file.read_bytes() if file.exists() else b""

    def calls(self):
        calls = []
        for line in self._log.read_text().splitlines():
            name, changes, letters, size = line.split()
            kind = "write" if name == "WriteFile" else name
            calls.append(Call(kind, changes == "1", [LETTERS[letter] for letter in letters], True, -1,
                              0, "", "", bytes(int(size))))
        return calls

    def faults_of_devices(self, calls):
        # From a call on they give no header back. Or the microphone goes away while it records, more than
        # a second before the end: later it is not known from one that is slow.
        numbers = range(1, 1 + sum(call.kind.startswith("wave") for call in calls))
        lengths = range(100, 2000, 100) if any(call.kind == "waveInStart" for call in calls) else []
        return [f"keep:{number}" for number in numbers] + [f"lose:{length}" for length in lengths]
