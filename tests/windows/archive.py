#!/usr/bin/env python3
"""A user unpacks the archive for Windows on a new machine, does what its readme says, and removes it all.

    archive.py ARCHIVE PROBE PICTURES
"""
import glob
import json
import os
import shutil
import subprocess
import sys
import zipfile

import applet_story
import session

# What the readme says to delete, and a word that is in every key and file of the program.
KEYS = [hive + r"\Software" + "\\" + name for hive in ("HKLM", "HKCU") for name in ("Zedra", "Voxtrel")]
WORDS = ("zedra", "voxtrel")


class Newcomer(applet_story.Story):
    """Someone who has the archive and a microphone, and nothing else of the program."""

    def __init__(self, here, archive, probe, pictures):
        super().__init__(here, None, None, probe, pictures)
        self.folder_of_programs = os.path.join(here.wine_folder, "drive_c", "Programs")
        with zipfile.ZipFile(archive) as file:
            file.extractall(self.folder_of_programs)
        [self.place] = glob.glob(os.path.join(self.folder_of_programs, "*"))
        self.windows_place = "C:\\Programs\\" + os.path.basename(self.place)

    def install_home(self, home):
        """Nothing: the archive has it all."""

    def run(self, *arguments):
        return self.here.wine(self.windows_place + r"\voxtrel.exe", *arguments)

    def left_overs(self):
        """Returns the keys of the registry and the files of the user that still have to do with the
        program."""
        left = []
        for hive in ("HKLM", "HKCU"):
            keys = self.here.wine("reg", "query", hive + r"\Software").lower().split()
            left += [key for key in keys if any(word in key for word in WORDS)]
        for folder in glob.glob(os.path.join(self.here.wine_folder, "drive_c", "users", "*")):
            for path, _, files in os.walk(folder):
                left += [os.path.join(path, name) for name in [os.path.basename(path), *files]
                         if any(word in name.lower() for word in WORDS)]
        return left

    def readme_says_what_it_is_and_has_lines_for_windows(self):
        with open(os.path.join(self.place, "readme.txt"), "rb") as file:
            text = file.read()
        assert text.count(b"\n") == text.count(b"\r\n") > 20
        for named in (b"control.exe", b"voxtrel.cpl", b"voxtrel.exe status", b"Remove it"):
            assert named in text, named

    def newcomer_reads_where_contacts_belong(self):
        del self.here.variables["VOXTREL_CONTACTS"]
        panel = self.here.start("control.exe", self.windows_place + r"\voxtrel.cpl")
        box = self.user.await_window("Zedra Voxtrel")
        assert any("No contacts were found" in control["text"] and "\\Contacts." in control["text"]
                   for control in box["controls"]), box
        self.user.press("Return")
        self.user.await_window("Property")
        self.close(panel)

    def applet_opens_and_learns(self):
        user = self.user
        self.here.variables["VOXTREL_CONTACTS"] = self.windows_place + r"\data\samples\contacts.vcf"
        panel = self.here.start("control.exe", self.windows_place + r"\voxtrel.cpl")
        user.await_window("Property")
        self.learn(applet_story.speak(self.here.folder, "Anna"))
        user.shoot("windows_archive")
        user.press("F1")
        session.wait_until(lambda: os.path.exists(self.asked), "The help is asked for")
        with open(self.asked) as file:
            asked = file.read().strip()
        assert asked.endswith("data/help/ZedraVoxtrelPE_help.htm"), asked
        self.close(panel)

    def command_line_sees_the_same_tag(self):
        [tag] = json.loads(self.run("--json", "tags", "list"))
        assert tag["name"] == self.names()[0], tag
        self.run("check")
        assert "de" in self.run("language", "list").split()

    def removal_leaves_nothing(self):
        assert self.left_overs()  # Otherwise nothing would be looked for.
        shutil.rmtree(self.place)
        shutil.rmtree(self.root())
        for key in KEYS:
            subprocess.run([session.find_wine(), "reg", "delete", key, "/f"], check=False,
                           env=self.here.environment(), stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL)
        left = self.left_overs()
        assert not left, left


STORIES = [Newcomer.readme_says_what_it_is_and_has_lines_for_windows,
           Newcomer.newcomer_reads_where_contacts_belong,
          Newcomer.applet_opens_and_learns,
           Newcomer.command_line_sees_the_same_tag,
           Newcomer.removal_leaves_nothing]


def main(archive, probe, pictures):
    with session.Session(screen="1024x768") as here:
        newcomer = Newcomer(here, archive, probe, pictures)
        applet_story.run(newcomer, STORIES)


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
