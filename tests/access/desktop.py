"""A desktop of a test's own, and what a screen reader sees on it.

There is a display, a window manager, a session bus and an accessibility bus. The programs run on it
as a user would start them, and the test reads them as a screen reader does: through AT-SPI. Nothing
of the desktop that the test happens to run on is used or changed.
"""

import contextlib
import os
import signal
import subprocess
import sys
import tempfile

# Far above what a busy machine needs. A test that passes never waits so long.
LIMIT = 60

# The folder `host` of a build: by hand that of the build for development.
_HOST = os.environ.get("VOXTREL_HOST") or os.path.join(
    os.path.dirname(os.path.abspath(__file__)), "..", "..", "build", "dev", "host")
_INSIDE = "VOXTREL_ACCESS_TEST"
# What would lead to the desktop that the test runs on.
_FOREIGN = ("AT_SPI_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "DISPLAY", "GTK_MODULES", "LANGUAGE",
            "NO_AT_BRIDGE", "PULSE_SERVER", "QT_QPA_PLATFORM", "QT_SCALE_FACTOR",
            "QT_STYLE_OVERRIDE", "VOXTREL_CONTACTS", "VOXTREL_MICROPHONE", "VOXTREL_ROOT",
            "VOXTREL_SPEAKER", "WAYLAND_DISPLAY")


def enter():
    """Runs the program again inside a desktop of its own, and ends with it. Returns inside."""
    if _INSIDE in os.environ:
        return
    with tempfile.TemporaryDirectory(prefix="voxtrel_access_") as folder:
        environment = {key: value for key, value in os.environ.items() if key not in _FOREIGN}
        for name in ("home", "run"):
            os.mkdir(os.path.join(folder, name), 0o700)
        home = os.path.join(folder, "home")
        environment.update({
            _INSIDE: folder, "HOME": home, "XDG_CONFIG_HOME": home, "XDG_DATA_HOME": home,
            "XDG_CACHE_HOME": home, "XDG_RUNTIME_DIR": os.path.join(folder, "run"),
            "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "xcb", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        })
        with _display(folder) as display:
            environment["DISPLAY"] = display
            with _running(["openbox", "--sm-disable"], environment, folder):
                inside = subprocess.run(
                    ["dbus-run-session", "--", sys.executable, *sys.argv], env=environment)
        sys.exit(inside.returncode)


@contextlib.contextmanager
def _running(command, environment, folder, **options):
    with open(os.path.join(folder, os.path.basename(command[0]) + ".log"), "ab") as log:
        process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=log,
                                   stderr=log, **options)
    try:
        yield process
    finally:
        process.terminate()
        process.wait()


@contextlib.contextmanager
def _display(folder):
    read, write = os.pipe()
    command = ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"]
    with _running(command, os.environ, folder, pass_fds=(write,)):
        os.close(write)
        with os.fdopen(read) as number:
            # The line comes when the server answers, and the end of the file if it ended.
            line = number.readline().strip()
        if not line:
            sys.exit("no display comes up")
        yield ":" + line


def folder():
    """The folder of this run, which is removed at its end."""
    return os.environ[_INSIDE]


class Programs:
    """The programs of the system with a store of their own, as one user starts them."""

    # Where each program lies below the folder `host` of a build.
    _PLACES = {"voxtrel": "cli", "voxtrel-connection": "connection", "voxtrel-home": "home",
               "voxtrel-panel": "panel", "voxtrel.cpl": "applet"}

    def __init__(self, name, samples):
        self.root = os.path.join(folder(), name)
        self._running = []
        self.environment = dict(
            os.environ, VOXTREL_ROOT=self.root,
            VOXTREL_CONTACTS=os.path.join(samples, "contacts.vcf"),
            VOXTREL_MICROPHONE=os.path.join(samples, "anna_1.wav"),
            VOXTREL_SPEAKER=os.path.join(folder(), "heard.wav"))

    def _path(self, name):
        place = self._PLACES.get(name)
        return os.path.join(_HOST, place, name) if place else name

    def run(self, *command):
        """Runs a program to its end, and returns what it printed."""
        command = [self._path(part) for part in command]
        return subprocess.run(command, env=self.environment, check=True, capture_output=True,
                              text=True).stdout

    def start(self, *command):
        """Starts a program that runs until close()."""
        command = [self._path(part) for part in command]
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   start_new_session=True)
        self._running.append(process)
        return process

    def close(self):
        """Ends all that was started, and what that has started."""
        for process in self._running:
            # Each leads a group of its own.
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()
