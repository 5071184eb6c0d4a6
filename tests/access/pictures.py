"""pictures.py FOLDER: pictures of the programs as a new user with the samples sees them."""

import os
import subprocess
import sys

import desktop

desktop.enter()

import reader  # noqa: E402
from reader import Role, find, press, type_text, wait_for  # noqa: E402

SAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "samples")
FOLDER = os.path.abspath(sys.argv[1])


def shoot(title, name):
    """Keeps a picture of the window as it is after all that it still has to paint."""
    reader.wait_for(lambda: True, "events")
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", f"^{title}$"],
                   check=True, stdout=subprocess.DEVNULL)
    window = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"],
                            check=True, capture_output=True, text=True).stdout.split()[-1]
    file = os.path.join(FOLDER, name + ".png")
    before = None
    # Two that are alike: nothing moves any more.
    while True:
        # With a palette, as no file should be larger than a text.
        picture = subprocess.run(["import", "-window", window, "-strip", "-colors", "200", "png8:-"],
                                 check=True, capture_output=True).stdout
        if picture == before:
            break
        before = picture
    with open(file, "wb") as out:
        out.write(picture)


def learn(desk, *names):
    for name in names:
        desk.run("voxtrel", "--microphone", os.path.join(SAMPLES, f"{name}_1.wav"), "tags", "learn",
                 "--contact", name)


def teach(window):
    """The pages of one lesson."""
    press("ctrl+n")
    wait_for(lambda: find(window, Role.TEXT, "Search name, company or number"), "the people")
    shoot("Voice tags", "people")
    type_text("timothy")
    wait_for(lambda: find(window, Role.LIST).get_child_count() == 1, "one line")
    press("Return")
    record = wait_for(lambda: find(window, Role.PUSH_BUTTON, "Record"), "the button")
    reader.do(record, "Press")
    wait_for(lambda: find(window, Role.PUSH_BUTTON, "Keep"), "the take")
    shoot("Voice tags", "teaching")


def main():
    os.makedirs(FOLDER, exist_ok=True)
    desk = desktop.Programs("pictures", SAMPLES)
    try:
        learn(desk, "anna", "elizabeth", "hernandez", "jackson", "oliver", "robert", "sophie")
        desk.environment["VOXTREL_MICROPHONE"] = os.path.join(SAMPLES, "timothy_1.wav")
        desk.start("voxtrel-home")
        window = reader.window("Voice tags")
        wait_for(lambda: "Good" in reader.tree(window), "the verdicts")
        reader.resize("Voice tags", "1000", "560")
        shoot("Voice tags", "voice-tags")
        reader.resize("Voice tags", "360", "640")
        wait_for(lambda: find(window, Role.PUSH_BUTTON, "Sort by"), "the cards")
        shoot("Voice tags", "phone")
        reader.resize("Voice tags", "900", "600")
        teach(window)
        desk.close()
        desk.start("voxtrel-panel", "voxtrel.cpl")
        panel = reader.window("Control Panel")
        wait_for(lambda: find(panel, Role.LIST_ITEM, "Zedra Voxtrel"), "the applet")
        shoot("Control Panel", "panel")
        press("Return")
        reader.window("Property")
        shoot("Property", "learning")
    finally:
        desk.close()


main()
