"""The small machine under Wine: the program of Windows with the calls that it imports taken over
(windows_calls.h). The registry of its root folder is a file of its tree while nothing runs."""

import os
import signal
import subprocess

from machine import Call, Machine, Run

# The errors of Windows that stand for those of Linux.
ERRORS = {"EIO": 1117, "ENOSPC": 112, "EACCES": 5, "EMFILE": 4, "ENOMEM": 8}
LETTERS = dict(zip("isafm", ERRORS))
EXIT_OF_KILLED = 99
# A process of Wine's takes a while on a busy machine.
LIMIT_SECONDS = 60


class WindowsMachine(Machine):
    errors = ERRORS
    # The system writes at once what it is given, and nothing can be lost but by a kill.
    kinds = ["kill", "call"]
    lacks = ["dial"]

    def run(self, arguments, fault="", time=0, logs=False, locale="C.UTF-8"):
        environment = {
            "PATH": os.defpath,
            "HOME": str(self.folder),
            "PULSE_SERVER": "unix:" + str(self.folder / "none"),
            "LC_ALL": locale,
            "WINEPREFIX": os.environ["WINEPREFIX"],
            "WINEDEBUG": "-all",
            "VOXTREL_ROOT": self._path("/root"),
            "VOXTREL_FAULT_TIME": str(time),
        }
        if fault:
            environment["VOXTREL_FAULT"] = fault
        if logs:
            environment["VOXTREL_FAULT_LOG"] = str(self._log)
        arguments = [argument.replace("@", self._path("")) for argument in arguments]
        with open(self.folder / "out", "w+b") as out, open(self.folder / "err", "w+b") as err:
            # The library is what starts the program.
            process = subprocess.Popen([self.library, self.program, *arguments], env=environment,
                                       cwd=self.home, stdin=subprocess.DEVNULL, stdout=out, stderr=err)
            try:
                code = process.wait(LIMIT_SECONDS)
            except subprocess.TimeoutExpired:
                process.send_signal(signal.SIGKILL)
                process.wait()
                code = None
            texts = []
            for file in (out, err):
                file.seek(0)
                text = file.read().decode("utf-8", "replace")
                for path in (self._path("").replace("\\", "\\\\"), self._path(""), str(self.home)):
                    text = text.replace(path, "@")
                texts.append(text)
        return Run(-signal.SIGKILL if code == EXIT_OF_KILLED else code, *texts)

    def _path(self, inside):
        return "Z:" + (str(self.home) + inside).replace("/", "\\")

    def calls(self):
        calls = []
        for line in self._log.read_text().splitlines():
            name, changes, letters, size = line.split()
            kind = "write" if name == "WriteFile" else name
            calls.append(Call(kind, changes == "1", [LETTERS[letter] for letter in letters], True, -1,
                              0, "", "", bytes(int(size))))
        return calls
