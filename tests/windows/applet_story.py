#!/usr/bin/env python3
"""A user before the applet in Wine's own control panel.

    applet_story.py APPLET COMMAND_LINE PROBE PICTURES [STORY...]
"""
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import time

import session

CARDS = """BEGIN:VCARD\r
VERSION:3.0\r
UID:a\r
N:Lee;Ann;;;\r
FN:Ann Lee\r
TEL;TYPE=CELL:5551234\r
END:VCARD\r
BEGIN:VCARD\r
VERSION:3.0\r
UID:b\r
N:Ray;Bob;;;\r
FN:Bob Ray\r
TEL;TYPE=HOME:5550001\r
END:VCARD\r
"""
HUM = b"\x09\x00\xf6\xff"
HEADER = 44  # Bytes of a wave file before its sound.

# Controls of the windows; see resources/dialogs.h.
CONTACTS, RECORD, COUNT, TAGS = 1009, 1016, 1030, 1013
PLAY, DELETE, DELETE_ALL, TEST, TEST_LIST = 1014, 1015, 1017, 1025, 1026
OK, CANCEL = 1, 2

TAG_KEY = r"HKLM\Software\Zedra\Zedra Voxtrel"
VERSION_KEY = r"HKLM\Software\Zedra\VoxtrelPEIni"
SOURCES = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def find_linux_program():
    """Returns the command line of this system, which makes the same of the same recording."""
    for preset in ("release", "dev"):
        program = os.path.join(SOURCES, "build", preset, "host", "cli", "voxtrel")
        if os.path.exists(program):
            return program
    sys.exit("The program for Linux is compared: build it first (tools/build.sh release voxtrel)")


def speak(folder, words):
    """Returns `words` as sound of the recording format."""
    spoken, raw = os.path.join(folder, "spoken.wav"), os.path.join(folder, "spoken.raw")
    subprocess.run(["espeak-ng", "-v", "en", "-w", spoken, words], check=True)
    subprocess.run(["sox", spoken, "-t", "raw", "-e", "signed", "-b", "16", "-L", "-r",
                    str(session.RATE), "-c", "1", raw], check=True)
    with open(raw, "rb") as file:
        return file.read()


def read(path):
    with open(path, "rb") as file:
        return file.read()


def was_said(recorded, said):
    """Whether a recording, which may begin and end with what is around the words, holds them bit by
    bit. A machine that is busy may leave a gap in one of its quarters, and not in all."""
    quarter = len(recorded) // 8 * 2
    return any(recorded[at:at + quarter] in said for at in range(0, 4 * quarter, quarter))


class User:
    """Looks at the screen and acts there with mouse and keyboard."""

    def __init__(self, here, probe, pictures):
        self.here = here
        self.probe = probe
        self._pictures = pictures

    def windows(self):
        return [json.loads(line) for line in self.here.wine(self.probe).splitlines() if line]

    def find(self, title):
        """Returns the uppermost window with that title. Returns none if there is none."""
        return next((window for window in self.windows() if window["text"] == title), None)

    def await_window(self, title):
        return session.wait_until(lambda: self.find(title), f"There is a window '{title}'")

    def await_gone(self, title):
        session.wait_until(lambda: not self.find(title), f"The window '{title}' has gone")

    def control(self, title, number):
        window = self.await_window(title)
        return next(control for control in window["controls"] if control["id"] == number)

    def text(self, title, number):
        return self.control(title, number)["text"]

    def items(self, title, number):
        return self.control(title, number)["items"]

    def is_enabled(self, title, number):
        return self.control(title, number)["enabled"]

    def texts(self, title):
        return [control["text"] for control in self.await_window(title)["controls"]]

    def click(self, title, number):
        self.click_place(self.control(title, number)["place"])

    def click_place(self, place, times=1):
        left, top, right, bottom = place
        self._drive("mousemove", str((left + right) // 2), str((top + bottom) // 2))
        for _ in range(times):
            self._drive("click", "1")

    def click_at(self, x, y):
        self._drive("mousemove", str(x), str(y))
        self._drive("click", "1")

    def press(self, *keys):
        self._drive("key", *keys)

    def await_front(self, title):
        session.wait_until(lambda: next(iter(self.windows()), {}).get("text") == title,
                           f"'{title}' is in front of the other windows")

    def shoot(self, name):
        os.makedirs(self._pictures, exist_ok=True)
        subprocess.run(["import", "-window", "root", os.path.join(self._pictures, name + ".png")],
                       env=self.here.environment(), check=True)

    def _drive(self, *arguments):
        subprocess.run(["xdotool", *arguments], env=self.here.environment(), check=True,
                       stdout=subprocess.DEVNULL)


class Story:
    def __init__(self, here, applet, command_line, probe, pictures):
        self.here = here
        self.user = User(here, probe, pictures)
        self.applet = applet
        self.command_line = command_line
        self.cards = os.path.join(here.folder, "cards.vcf")
        with open(self.cards, "w", newline="") as file:
            file.write(CARDS)
        here.variables["VOXTREL_CONTACTS"] = "Z:" + self.cards
        self.server = session.SoundServer(here.folder, HUM)
        # What the applet gives to the user's browser is noted.
        self.asked = os.path.join(here.folder, "asked")
        browser = os.path.join(here.folder, "browser")
        with open(browser, "w") as file:
            file.write(f"#!/bin/sh\nprintf '%s\\n' \"$1\" >>'{self.asked}'\n")
        os.chmod(browser, 0o755)
        here.wine("reg", "add", r"HKCU\Software\Wine\WineBrowser", "/v", "Browsers", "/d", browser,
                  "/f")
        self.install_home(os.path.join(here.wine_folder, "drive_c", "Voxtrel"))

    def install_home(self, home):
        os.makedirs(home)
        shutil.copy(self.applet, os.path.join(home, "voxtrel.cpl"))
        shutil.copytree(os.path.join(SOURCES, "resources", "help"),
                        os.path.join(home, "data", "help"))

    def root(self):
        return glob.glob(os.path.join(self.here.wine_folder, "drive_c", "users", "*", "AppData",
                                      "Local", "Voxtrel"))[0]

    def folder(self, name):
        return os.path.join(self.root(), "Program Files", "Zedra Tech.", "Zedra Voxtrel", name)

    def names(self):
        """Returns the names of the tags that have a recording."""
        return sorted(os.path.basename(path)[:-4]
                      for path in glob.glob(os.path.join(self.folder("Voxtrel_wav"), "*.wav")))

    def template(self, name):
        return os.path.join(self.folder("Voxtrel_stor"), name + ".st")

    def wave(self, name):
        return os.path.join(self.folder("Voxtrel_wav"), name + ".wav")

    def entries(self):
        """Returns what the registry says of each tag."""
        try:
            out = self.here.wine("reg", "query", TAG_KEY, "/s", check=True)
        except subprocess.CalledProcessError:
            return {}
        entries, name = {}, None
        for line in out.splitlines():
            if line.startswith("HKEY_"):
                name = line.strip().rsplit("\\", 1)[1]
            elif value := re.match(r"\s+(contact|phone type)\s+REG_SZ\s+(.*?)\s*$", line):
                entries.setdefault(name, {})[value[1]] = value[2]
        return entries

    def open(self, caption="Property"):
        panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        self.user.await_window(caption)
        return panel

    def open_panel(self):
        """Opens the panel with all applets. Returns it and the icon of this one."""
        user = self.user
        panel = self.here.start("control.exe")

        def find_icon():
            window = user.find("Wine Control Panel")
            icons = [icon for control in window["controls"] for icon in control.get("icons", [])
                     ] if window else []
            return next((icon for icon in icons if icon["text"] == "Zedra Voxtrel"), None)
        return panel, session.wait_until(find_icon, "The panel shows the name")

    def close(self, panel, caption="Property"):
        self.user.click(caption, OK)
        self.user.await_gone(caption)
        session.wait_until(lambda: panel.poll() is not None, "The control panel has ended")

    def learn(self, sound, while_recording=None):
        before = len(self.user.items("Property", TAGS))
        self.user.click("Property", RECORD)
        # Into the three seconds of the recording, which begin a moment after the click. To look at the
        # screen first would take too much of them.
        if self.server.microphone is not None:
            self.server.microphone.hear(HUM * (session.RATE // 2) + sound)
        session.wait_until(self.is_recording, "The bar is shown")
        if while_recording:
            while_recording()
        session.wait_until(lambda: not self.is_recording()
                           and len(self.user.items("Property", TAGS)) > before,
                           "The name is learned")

    def is_recording(self):
        return any(control["class"] == "msctls_progress32"
                   for control in self.user.await_window("Property")["controls"])

    def icon_is_shown_in(self, place):
        """Whether the applet's icon stands somewhere in a place of the screen."""
        left, top, right, bottom = place
        shown, expected = (os.path.join(self.here.folder, name) for name in ("shown.png", "icon.png"))
        subprocess.run(["import", "-window", "root", "-crop",
                        f"{right - left}x{bottom - top}+{left}+{top}", "+repage", shown],
                       env=self.here.environment(), check=True)
        drawn = os.path.join(os.path.dirname(self.applet), "rendered", "icons", "hicolor", "32x32",
                             "apps", "voxtrel.png")
        subprocess.run(["convert", drawn, "-background", "white", "-flatten", expected], check=True)
        found = subprocess.run(["compare", "-metric", "RMSE", "-subimage-search", shown, expected,
                                "null:"], check=False, stderr=subprocess.PIPE, text=True).stderr
        return float(re.search(r"\((.*?)\)", found)[1]) < 0.05  # Of the difference of black and white.

    # The stories, in their order. Each goes on where the one before has ended.

    def panel_shows_name_and_icon_and_opens_the_sheet(self):
        user = self.user
        # The panel shows the applets in the system's own folder.
        system = os.path.join(self.here.wine_folder, "drive_c", "windows", "system32")
        shutil.copy(self.applet, os.path.join(system, "voxtrel.cpl"))
        panel, icon = self.open_panel()
        user.shoot("windows_panel")
        assert self.icon_is_shown_in(icon["place"]), "Another icon is shown"
        user.click_place(icon["place"], times=2)
        sheet = user.await_window("Property")
        user.shoot("windows_sheet")
        assert user.text("Property", COUNT) == "Learned commands: 0"
        assert not user.is_enabled("Property", PLAY) and not user.is_enabled("Property", TEST)
        assert user.items("Property", CONTACTS) == ["Lee Ann", "Ray Bob"], sheet
        user.click("Property", OK)
        user.await_gone("Property")
        # The panel lives on, and opens it again.
        user.click_place(icon["place"], times=2)
        user.await_window("Property")
        user.press("Escape")
        user.await_gone("Property")
        assert panel.poll() is None
        user.press("alt+F4")
        session.wait_until(lambda: panel.poll() is not None, "The control panel has ended")

    def ann_is_learned_from_the_microphone(self):
        user = self.user
        panel = self.open()
        sound = speak(self.here.folder, "Anna")
        self.learn(sound)
        assert user.items("Property", TAGS) == ["Ann Lee 5551234 M"]
        assert user.text("Property", COUNT) == "Learned commands: 1"
        [name] = self.names()
        wave = read(self.wave(name))
        assert wave[:4] == b"RIFF" and int.from_bytes(wave[4:8], "little") == len(wave)
        assert HEADER + session.RATE // 2 < len(wave) < HEADER + 3 * session.BYTES_PER_SECOND
        assert was_said(wave[HEADER:], sound), "Another sound was recorded"
        assert os.path.getsize(self.template(name)) > 0
        entry = self.entries()[name]
        assert entry["phone type"] == "Mobile" and re.fullmatch(r"-?\d+", entry["contact"]), entry
        self.close(panel)
        self.compare_with_linux(entry)

    def compare_with_linux(self, entry):
        """Takes the tags to the program for Linux, which finds them whole: each template is, byte by byte,
        what it makes of the recording itself."""
        root = os.path.join(self.here.folder, "taken_along")
        shutil.copytree(self.root(), root)
        taken = os.path.join(self.here.folder, "taken_along.reg")
        self.here.wine("reg", "export", r"HKLM\Software\Zedra", "Z:" + taken)

        def run(*arguments):
            return subprocess.run([find_linux_program(), "--root", root, *arguments], check=True,
                                  env=dict(os.environ, HOME=self.here.folder),
                                  stdout=subprocess.PIPE).stdout.decode()
        run("registry", "import", taken)
        [tag] = json.loads(run("--json", "--contacts", self.cards, "tags", "list"))
        assert tag["name"] == self.names()[0] and tag["phoneType"] == "Mobile", tag
        assert str(tag["contact"]) == entry["contact"], (tag, entry)
        run("--contacts", self.cards, "check")

    def play_is_heard(self):
        user = self.user
        panel = self.open()
        [name] = self.names()
        sound = read(self.wave(name))[HEADER:]
        before = os.path.getsize(self.server.heard)
        place = user.control("Property", TAGS)["place"]
        user.click_at(place[0] + 20, place[1] + 8)
        assert user.is_enabled("Property", PLAY) and user.is_enabled("Property", DELETE)
        user.click("Property", PLAY)
        time.sleep(2 * len(sound) / session.BYTES_PER_SECOND + 2)
        assert was_said(sound, read(self.server.heard)[before:]), "Another sound was played"
        self.close(panel)

    def second_instance_brings_the_first_one_forward_and_ends(self):
        user = self.user
        panel = self.open()
        notes = self.here.start("notepad.exe")
        user.await_front("Untitled - Notepad")
        second = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        session.wait_until(lambda: second.poll() is not None, "The second instance has ended")
        user.await_front("Property")
        # A panel with all applets lives on.
        other, icon = self.open_panel()
        user.await_front("Wine Control Panel")
        user.click_place(icon["place"], times=2)
        user.await_front("Property")
        assert len([window for window in user.windows() if window["text"] == "Property"]) == 1
        # Under the other windows, the click would not reach it.
        self.close(panel)
        # And now the panel opens the sheet itself.
        user.click_place(icon["place"], times=2)
        user.await_front("Property")
        self.close(panel)
        for process in (other, notes):
            assert process.poll() is None
            process.kill()
        user.await_gone("Wine Control Panel")

    def another_program_that_has_the_tags_is_reported(self):
        """It has no window that could come forward."""
        user = self.user
        holder = self.here.start(self.user.probe, "--hold", stdout=subprocess.PIPE)
        assert holder.stdout.readline().strip() == b"held"
        panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        box = user.await_window("Zedra Voxtrel")
        assert any("in use by another program" in control["text"] for control in box["controls"]), box
        user.press("Return")
        session.wait_until(lambda: panel.poll() is not None, "The second instance has ended")
        holder.kill()

    def closing_while_it_records_does_nothing(self):
        user = self.user
        panel = self.open()
        user.click("Property", CONTACTS)
        user.press("Down", "Return")
        sheet = user.find("Property")

        def close():
            user.press("alt+F4")
            user.press("Escape")
            user.click("Property", OK)
            assert user.find("Property")["place"] == sheet["place"]
        self.learn(speak(self.here.folder, "Bob"), close)
        assert user.items("Property", TAGS) == ["Ann Lee 5551234 M", "Bob Ray 5550001 H"]
        assert user.is_enabled("Property", TEST)
        user.shoot("windows_two_tags")
        self.close(panel)

    def test_lists_both_tags_and_help_opens_its_own_page(self):
        user = self.user
        panel = self.open()
        user.press("F1")
        session.wait_until(lambda: os.path.exists(self.asked), "The help is asked for")
        assert read(self.asked).decode().strip().endswith("ZedraVoxtrelPE_help.htm")
        user.click("Property", TEST)
        lines = user.items("Test", TEST_LIST)
        assert len(lines) == 2, lines
        assert re.fullmatch(r"\d+%; 1; (Ann Lee 5551234 M;  Bob Ray 5550001 H"
                            r"|Bob Ray 5550001 H;  Ann Lee 5551234 M)", lines[0]), lines
        user.shoot("windows_test")
        os.unlink(self.asked)
        user.click("Test", 142)
        session.wait_until(lambda: os.path.exists(self.asked), "The help on the test is asked for")
        assert read(self.asked).decode().strip().endswith("ZedraVoxtrelPE_help.htm#test")
        user.press("alt+F4")
        user.await_gone("Test")
        self.close(panel)

    def about_shows_itself_and_its_link_is_pressed(self):
        user = self.user
        panel = self.open()
        left, top = next(control for control in user.find("Property")["controls"]
                         if control["class"] == "SysTabControl32")["place"][:2]
        user.click_at(left + 80, top + 10)
        page = session.wait_until(
            lambda: next((control for control in user.find("Property")["controls"]
                          if control["class"] == "#32770" and control["text"] == "About"), None),
            "The page is shown")
        user.shoot("windows_about")
        left, top = page["place"][:2]
        user.click_at(left + 120, top + 166)
        user.await_window("Zedra Voxtrel")  # The site is one of examples, so a box says so.
        user.press("Return")
        user.await_gone("Zedra Voxtrel")
        self.close(panel)

    def changed_mathematics_make_every_template_again(self):
        user = self.user
        templates = {name: read(self.template(name)) for name in self.names()}
        for name in templates:
            os.unlink(self.template(name))
        self.here.wine("reg", "add", VERSION_KEY, "/v", "Version_Math", "/d", "2", "/f")
        panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        user.await_window("Reinitialization")
        user.shoot("windows_reinitialization")
        user.await_gone("Reinitialization")
        assert "REG_SZ    3" in self.here.wine("reg", "query", VERSION_KEY, "/v", "Version_Math")
        for name in templates:
            assert os.path.getsize(self.template(name)) > 0
        self.close(panel)

    def same_recording_makes_the_same_bytes_as_on_linux(self):
        user = self.user
        linux = find_linux_program()
        sample = sorted(glob.glob(os.path.join(SOURCES, "samples", "*.wav")))[0]
        before = self.names()
        self.here.variables["VOXTREL_MICROPHONE"] = "Z:" + sample
        panel = self.open()
        self.learn(b"")
        del self.here.variables["VOXTREL_MICROPHONE"]
        self.close(panel)
        [name] = set(self.names()) - set(before)
        root = os.path.join(self.here.folder, "linux")
        subprocess.run([linux, "--root", root, "--contacts", self.cards, "--microphone", sample,
                        "--speaker", os.path.join(self.here.folder, "said.wav"), "tags", "learn",
                        "--contact", "Lee Ann", "--number", "Mobile"], check=True,
                       env=dict(os.environ, HOME=self.here.folder), stdout=subprocess.DEVNULL)
        [wave] = glob.glob(os.path.join(root, "*", "*", "*", "Voxtrel_wav", "*.wav"))
        [template] = glob.glob(os.path.join(root, "*", "*", "*", "Voxtrel_stor", "*.st"))
        assert read(wave) == read(self.wave(name))
        assert read(template) == read(self.template(name))
        # The registry has the same types and bytes, but for the number of the contact, which each store
        # chooses for itself.
        exported = os.path.join(self.here.folder, "linux.reg")
        subprocess.run([linux, "--root", root, "registry", "export", exported], check=True)
        section = read(exported).decode("utf-16").split(os.path.basename(wave)[:-4] + "]", 1)[1]
        theirs = dict(re.findall(r'"(.*?)"=hex\(1\):(.*)',
                                 re.sub(r"\\\r?\n *", "", section.split("[HKEY", 1)[0])))
        ours = dict(re.findall(r"(.*)=1:(.*?)\r?\n", self.here.wine(
            self.user.probe, r"Software\Zedra\Zedra Voxtrel" + "\\" + name)))
        assert ours["phone type"] == theirs["phone type"].strip().replace(",", "")
        assert len(ours["contact"]) == len(theirs["contact"].strip().replace(",", "")) == 200
        assert ours.keys() == theirs.keys() == {"contact", "phone type"}

    def delete_asks_first(self):
        user = self.user
        panel = self.open()
        lines = user.items("Property", TAGS)
        place = user.control("Property", TAGS)["place"]
        user.click_at(place[0] + 20, place[1] + 8)
        user.click("Property", DELETE)
        user.await_window("Attention")
        user.shoot("windows_delete")
        user.click("Attention", CANCEL)
        user.await_gone("Attention")
        assert user.items("Property", TAGS) == lines
        user.click("Property", DELETE)
        user.click("Attention", OK)
        user.await_gone("Attention")
        assert user.items("Property", TAGS) == lines[1:]
        assert not user.is_enabled("Property", DELETE)
        assert len(self.names()) == len(self.entries()) == len(lines) - 1
        user.click("Property", DELETE_ALL)
        user.click("Attention", OK)
        user.await_gone("Attention")
        assert user.items("Property", TAGS) == [] and not user.is_enabled("Property", DELETE_ALL)
        assert self.names() == [] and self.entries() == {}
        self.close(panel)

    def language_file_is_read(self):
        shutil.copy(os.path.join(SOURCES, "resources", "languages", "Voxtrel.de.lng"),
                    self.folder("Voxtrel.lng"))
        panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        session.wait_until(lambda: any("Aufn" in control["text"] for window in self.user.windows()
                                       for control in window["controls"]),
                           "The sheet is in German")
        self.user.shoot("windows_german")
        self.user.press("Escape")
        session.wait_until(lambda: panel.poll() is not None, "The control panel has ended")
        os.unlink(self.folder("Voxtrel.lng"))

    def missing_microphone_is_said_and_ends_the_process(self):
        self.server.end()
        panel = self.open()
        self.user.click("Property", RECORD)
        box = self.user.await_window("Zedra Voxtrel")
        assert any(control["text"] == "There are no wave-record devices in you computer."
                   for control in box["controls"]), box
        self.user.shoot("windows_no_microphone")
        self.user.press("Return")
        session.wait_until(lambda: panel.poll() is not None, "The process has ended")


STORIES = [Story.panel_shows_name_and_icon_and_opens_the_sheet,
           Story.ann_is_learned_from_the_microphone,
           Story.play_is_heard,
           Story.second_instance_brings_the_first_one_forward_and_ends,
           Story.another_program_that_has_the_tags_is_reported,
           Story.closing_while_it_records_does_nothing,
           Story.test_lists_both_tags_and_help_opens_its_own_page,
           Story.about_shows_itself_and_its_link_is_pressed,
           Story.changed_mathematics_make_every_template_again,
           Story.same_recording_makes_the_same_bytes_as_on_linux,
           Story.delete_asks_first,
           Story.language_file_is_read,
           Story.missing_microphone_is_said_and_ends_the_process]


def run(story, parts):
    """Lets the user of `story` go through its parts, in their order."""
    try:
        for part in parts:
            begin = time.monotonic()
            part(story)
            print(f"{part.__name__}: {time.monotonic() - begin:.0f} s", flush=True)
    except Exception:
        story.user.shoot("windows_failure")
        raise
    finally:
        story.server.end()


def main(applet, command_line, probe, pictures, *only):
    with session.Session(screen="1024x768") as here:
        story = Story(here, applet, command_line, probe, pictures)
        run(story, [part for part in STORIES if not only or part.__name__ in only])


if __name__ == "__main__":
    if len(sys.argv) < 5:
        sys.exit(__doc__)
    main(*sys.argv[1:])
