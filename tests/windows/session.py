"""A session of its own for tests of the Windows build under Wine: a folder, a sound server whose
microphone hears what a test wants, a screen, and Wine with a registry and drives of its own."""
import glob
import os
import shutil
import subprocess
import tempfile
import threading
import time

RATE = 11025
BYTES_PER_SECOND = 2 * RATE
LIMIT = 60.0  # Seconds: far above what a busy machine needs.
POLL = 0.02


def find_wine():
    return shutil.which("wine64") or "/usr/lib/wine/wine64"


def wait_until(holds, what, limit=LIMIT):
    """Returns the first true answer of `holds`. Fails if there is none within the limit."""
    deadline = time.monotonic() + limit
    while True:
        answer = holds()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"{what}: not within {limit:.0f} s")
        time.sleep(POLL)


class Microphone:
    """Writes sound into the server's pipe at the pace of a real one, from a thread of its own."""

    def __init__(self, pipe, background):
        self._background = background
        self._at = 0
        self._sound = b""
        self._lock = threading.Lock()
        self._stop = threading.Event()
        self._pipe = os.open(pipe, os.O_RDWR | os.O_NONBLOCK)
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def hear(self, sound):
        """Hears `sound` from now on, once, and then the background again."""
        with self._lock:
            self._sound = sound

    def close(self):
        self._stop.set()
        self._thread.join()
        os.close(self._pipe)

    def _piece(self, count):
        with self._lock:
            piece, self._sound = self._sound[:count], self._sound[count:]
        while len(piece) < count:
            more = self._background[self._at:self._at + count - len(piece)]
            self._at = (self._at + len(more)) % len(self._background)
            piece += more
        return piece

    def _run(self):
        begin = time.monotonic()
        written = 0
        rest = b""
        while not self._stop.wait(0.005):
            due = int((time.monotonic() - begin) * RATE) * 2
            rest += self._piece(due - written)
            written = due
            try:
                rest = rest[os.write(self._pipe, rest):] if rest else rest
            except BlockingIOError:
                pass  # The server does not read now; it gets the sound later.
            except OSError:
                return


class SoundServer:
    """A sound server of the session. Its loudspeaker is heard by nobody but `heard`."""

    count = 0

    def __init__(self, folder, background, microphone=True, loudspeaker=True):
        self.folder = folder
        self.socket = os.path.join(folder, "sound")
        form = f"format=s16le rate={RATE} channels=1"
        SoundServer.count += 1
        pipe = os.path.join(folder, f"microphone{SoundServer.count}")
        command = ["pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--realtime=no",
                   "--high-priority=no", "--disable-shm=yes", "--exit-idle-time=-1",
                   "--log-target=stderr"]
        if loudspeaker:
            command.append(f"--load=module-null-sink sink_name=speaker norewinds=1 {form}")
        if microphone:
            command.append(f"--load=module-pipe-source source_name=voice file={pipe} {form}")
        command.append(f"--load=module-native-protocol-unix socket={self.socket}")
        environment = dict(os.environ, HOME=folder, XDG_RUNTIME_DIR=folder)
        self._log = open(os.path.join(folder, "server.log"), "w")
        self._process = subprocess.Popen(command, env=environment, stdout=self._log,
                                         stderr=self._log)
        wait_until(lambda: os.path.exists(self.socket), "The sound server comes up")
        if microphone:
            subprocess.run(["pactl", f"--server=unix:{self.socket}", "set-default-source", "voice"],
                           env=environment, check=True)
        self.microphone = Microphone(pipe, background) if microphone else None
        self._ear = None
        if loudspeaker:
            self.heard = os.path.join(folder, "heard")
            self._heard = open(self.heard, "wb")
            self._ear = subprocess.Popen(
                ["parec", f"--server=unix:{self.socket}", "--device=speaker.monitor",
                 "--format=s16le", f"--rate={RATE}", "--channels=1", "--latency-msec=200"],
                env=environment, stdout=self._heard, stderr=self._log)
            wait_until(lambda: os.path.getsize(self.heard) > 0, "The ear hears")

    def end(self):
        for process in (self._process, self._ear):
            if process is not None and process.poll() is None:
                process.kill()
                process.wait()
        if self.microphone is not None:
            self.microphone.close()
            self.microphone = None
        if os.path.exists(self.socket):
            os.unlink(self.socket)


class Session:
    """`with Session() as session:` gives the folder, and cleans up."""

    def __init__(self, screen=None, percent=100):
        """`percent` is the scale of the screen, which the user chooses in the settings of the system."""
        self._screen_size = screen
        self._percent = percent
        self._folder = tempfile.TemporaryDirectory(prefix="voxtrel-windows-")
        self.folder = self._folder.name
        self.variables = {}
        self._processes = []

    def __enter__(self):
        self.wine_folder = os.path.join(self.folder, "wine")
        if self._screen_size is not None:
            self._start_screen()
        subprocess.run([find_wine(), "wineboot", "--init"], env=self.environment(), check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # The font of dialogs on Windows, which Wine does not find by itself on every machine.
        fonts = os.path.join(self.wine_folder, "drive_c", "windows", "Fonts")
        for font in glob.glob("/usr/share/wine/fonts/tahoma*.ttf"):
            shutil.copy(font, fonts)
        # Letters that it does not have are those of another font, as on Windows.
        for font in glob.glob("/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"):
            shutil.copy(font, fonts)
            self.wine("reg", "add",
                      r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink", "/v",
                      "Tahoma", "/t", "REG_MULTI_SZ", "/d", "wqy-microhei.ttc,WenQuanYi Micro Hei", "/f")
        self.wine("reg", "add", r"HKCU\Control Panel\Desktop", "/v", "LogPixels", "/t", "REG_DWORD", "/d",
                  str(96 * self._percent // 100), "/f")
        if self._screen_size is None:
            self.wine("reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null",
                      "/f")
        # What has begun before would not show a window, or would keep the earlier scale.
        self._end_wine()
        return self

    def _end_wine(self):
        server = os.path.join(os.path.dirname(find_wine()), "wineserver")
        if not os.path.exists(server):
            server = "/usr/lib/wine/wineserver"
        subprocess.run([server, "-k"], env=self.environment(), check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def __exit__(self, *failure):
        self._end_wine()
        for process in reversed(self._processes):
            process.kill()
            process.wait()
        self._folder.cleanup()

    def environment(self):
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith(("PULSE_", "VOXTREL_", "WINE", "WAYLAND_"))
                       and name != "DISPLAY"}
        environment.update(HOME=self.folder, XDG_RUNTIME_DIR=self.folder, WINEDEBUG="-all",
                           WINEPREFIX=self.wine_folder,
                           PULSE_SERVER="unix:" + os.path.join(self.folder, "sound"))
        environment.update(self.variables)
        return environment

    def wine(self, *arguments, check=True):
        """Runs a program until it ends, and returns what it has printed."""
        run = subprocess.run([find_wine(), *arguments], env=self.environment(), check=check,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=300)
        return run.stdout.decode(errors="replace")

    def start(self, *arguments, stdout=subprocess.DEVNULL):
        process = subprocess.Popen([find_wine(), *arguments], env=self.environment(), stdout=stdout,
                                   stderr=subprocess.DEVNULL)
        self._processes.append(process)
        return process

    def _start_screen(self):
        read, write = os.pipe()
        log = open(os.path.join(self.folder, "screen.log"), "w")
        self._processes.append(subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{self._screen_size}x24",
             "-nolisten", "tcp"], pass_fds=[write], stdout=log, stderr=log))
        os.close(write)
        with os.fdopen(read) as number:
            self.variables["DISPLAY"] = ":" + number.readline().strip()
        self._processes.append(subprocess.Popen(["openbox"], env=self.environment(), stdout=log,
                                                stderr=log))
