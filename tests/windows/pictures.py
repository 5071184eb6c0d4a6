#!/usr/bin/env python3
"""Pictures of the applet's windows in Wine at one scale of the screen, for people to look at next to
those of the desktop.

    pictures.py APPLET COMMAND_LINE PROBE FOLDER PERCENT
"""
import glob
import os
import shutil
import subprocess
import sys

import applet_story
import session

CONFIRM = "Attention"


class Photographer(applet_story.Story):
    """Goes through the windows in the states in which the pictures of the desktop show them."""

    def __init__(self, here, applet, command_line, probe, folder, percent):
        super().__init__(here, applet, command_line, probe, folder)
        self._folder = folder
        self._percent = percent

    def take(self, title, name):
        """Keeps a picture of the window when nothing in it moves any more."""
        left, top, right, bottom = self.user.await_window(title)["place"]
        before = None
        while True:
            picture = subprocess.run(
                ["import", "-window", "root", "-strip", "-crop",
                 f"{right - left}x{bottom - top}+{left}+{top}", "+repage", "png:-"],
                env=self.here.environment(), check=True, capture_output=True).stdout
            if picture == before:
                break
            before = picture
        with open(os.path.join(self._folder, name + ".png"), "wb") as file:
            file.write(picture)

    def sheet(self):
        user = self.user
        panel = self.open()
        self.take("Property", "empty")
        self.learn(applet_story.speak(self.here.folder, "Anna"))
        user.click("Property", applet_story.CONTACTS)
        user.press("Down", "Return")
        self.learn(applet_story.speak(self.here.folder, "Bob"),
                   lambda: self.take("Property", "recording"))
        place = user.control("Property", applet_story.TAGS)["place"]
        user.click_at(place[0] + 20, place[1] + 8)
        self.take("Property", "learning")
        user.click("Property", applet_story.DELETE)
        self.take(CONFIRM, "confirm")
        user.click(CONFIRM, applet_story.CANCEL)
        user.await_gone(CONFIRM)
        user.click("Property", applet_story.TEST)
        self.take("Test", "test")
        user.press("alt+F4")
        user.await_gone("Test")
        left, top = next(control for control in user.find("Property")["controls"]
                         if control["class"] == "SysTabControl32")["place"][:2]
        user.click_at(left + 80 * self._percent // 100, top + 10)
        session.wait_until(lambda: any(control["text"] == "About" and control["class"] == "#32770"
                                       for control in user.find("Property")["controls"]),
                           "The page is shown")
        self.take("Property", "about")
        self.close(panel)

    def reinitialization(self):
        self.here.wine("reg", "add", applet_story.VERSION_KEY, "/v", "Version_Math", "/d", "2", "/f")
        panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
        self.take("Reinitialization", "reinitialization")
        self.user.await_gone("Reinitialization")
        self.close(panel)

    def languages(self):
        """The sheet in each language that has a file for it."""
        for file in sorted(glob.glob(os.path.join(applet_story.SOURCES, "resources", "languages",
                                                  "Voxtrel.*.lng"))):
            shutil.copy(file, self.folder("Voxtrel.lng"))
            panel = self.here.start("control.exe", r"C:\Voxtrel\voxtrel.cpl")
            title = session.wait_until(self.find_sheet, "The sheet is shown")["text"]
            self.take(title, "learning_" + os.path.basename(file).split(".")[1])
            self.close(panel, title)

    def find_sheet(self):
        return next((window for window in self.user.windows()
                     if any(control["class"] == "SysTabControl32" for control in window["controls"])),
                    None)


def main(applet, command_line, probe, folder, percent):
    os.makedirs(folder, exist_ok=True)
    with session.Session(screen="2048x1536", percent=int(percent)) as here:
        photographer = Photographer(here, applet, command_line, probe, folder, int(percent))
        try:
            photographer.sheet()
            photographer.reinitialization()
            photographer.languages()
        finally:
            photographer.server.end()


if __name__ == "__main__":
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    main(*sys.argv[1:])
