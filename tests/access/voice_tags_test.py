"""Screen readers before the Voice tags window, over a real accessibility bus."""

import os
import unittest

import desktop

desktop.enter()

import reader  # noqa: E402
from modem import Modem  # noqa: E402
from reader import Role, State, find, is_, press, type_text, wait_for, walk, window  # noqa: E402

SAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "samples")
PHONE = ("360", "640")


class VoiceTags(unittest.TestCase):
    def setUp(self):
        self.desk = desktop.Programs(self.id().split(".")[-1], SAMPLES)
        self.addCleanup(self.desk.close)
        reader.forget_heard()

    def open(self, *arguments, tags=()):
        for name in tags:
            self.desk.run("voxtrel", "--microphone", os.path.join(SAMPLES, f"{name}_1.wav"),
                          "tags", "learn", "--contact", name)
        self.desk.start("voxtrel-home", *arguments)
        self.window = window("Voice tags")
        return self.window

    def hears(self, text):
        wait_for(lambda: reader.has_heard(text), f"{text!r} among {reader.heard()}")

    def awaits(self, role, name=None):
        return wait_for(lambda: find(self.window, role, name), f"{name} in the window")

    def awaits_focus(self, role, name=None):
        def has_focus():
            node = find(self.window, role, name)
            return node if node is not None and is_(node, State.FOCUSED) else None
        return wait_for(has_focus, f"the focus on {name}")

    def rows(self):
        """The texts of the first column."""
        return [node.get_name() for node in walk(self.window)
                if node.get_role() == Role.TABLE_CELL and node.get_description()]

    def awaits_rows(self, *names):
        wait_for(lambda: self.rows() == list(names), f"the rows {names}")

    def check(self):
        """What can have the focus has a role and a name that a user understands."""
        self.assertEqual(reader.faults(self.window), [], reader.tree(self.window))

    def test_a_name_is_taught_played_deleted_and_brought_back_by_the_keyboard_alone(self):
        self.open(tags=("sophie",))
        self.awaits_focus(Role.TREE, "Voice tags")
        press("ctrl+n")
        self.awaits_focus(Role.TEXT, "Search name, company or number")
        type_text("berg")
        wait_for(lambda: find(self.window, Role.LIST).get_child_count() == 2, "her numbers")
        self.awaits(Role.PUSH_BUTTON, "Show everybody")
        press("Return")
        self.awaits_focus(Role.PUSH_BUTTON, "Record")
        self.check()
        press("space")
        self.hears("Speak now")
        self.hears("The recording is good.")
        self.awaits_focus(Role.PUSH_BUTTON, "Keep")
        self.check()
        press("space")
        self.hears("Learned Anna Berg.")
        press("Escape")
        self.awaits_focus(Role.TREE, "Voice tags")
        self.awaits_rows("Anna Berg", "Sophie Martin")
        self.check()

        heard = self.desk.environment["VOXTREL_SPEAKER"]
        if os.path.exists(heard):
            os.remove(heard)
        press("Return")
        wait_for(lambda: os.path.exists(heard), "the sound of the tag")
        press("Delete")
        self.hears("Voice tag deleted: Anna Berg")
        self.awaits_rows("Sophie Martin")
        self.check()
        press("ctrl+z")
        self.hears("The voice tag is back.")
        self.awaits_rows("Anna Berg", "Sophie Martin")

    def test_a_name_is_taught_deleted_and_brought_back_by_the_actions_of_a_screen_reader(self):
        self.open()
        reader.do(self.awaits(Role.PUSH_BUTTON, "Teach a name"), "Press")
        reader.fill(self.awaits(Role.TEXT, "Search name, company or number"), "0101")
        wait_for(lambda: find(self.window, Role.LIST).get_child_count() == 1, "her number")
        reader.do(self.awaits(Role.LIST_ITEM, "Anna Berg, Mobile, \u200e202 555 0101\u200e"),
                  "Toggle")
        # Qt offers a screen reader no other action on a line of a list.
        press("Return")
        reader.do(self.awaits(Role.PUSH_BUTTON, "Record"), "Press")
        self.hears("Speak now")
        reader.do(self.awaits(Role.PUSH_BUTTON, "Keep"), "Press")
        self.hears("Learned Anna Berg.")
        reader.do(self.awaits(Role.PUSH_BUTTON, "Back"), "Press")
        self.awaits_rows("Anna Berg")
        reader.do(self.awaits(Role.PUSH_BUTTON, "Delete"), "Press")
        self.hears("Voice tag deleted: Anna Berg")
        self.check()
        reader.do(self.awaits(Role.PUSH_BUTTON, "Undo"), "Press")
        self.awaits_rows("Anna Berg")

    def test_a_row_says_all_of_its_tag_once(self):
        self.open(tags=("anna",))
        wait_for(self.rows, "the row")
        cells = [node for node in walk(self.window) if node.get_role() == Role.TABLE_CELL]
        names = [node.get_name().strip("\u200e") for node in cells]
        self.assertEqual(names[:3], ["Anna Berg", "202 555 0101", "Mobile"])
        self.assertEqual(names[5], "Good")
        lines = cells[0].get_description().splitlines()
        self.assertEqual(lines[:2], ["Anna Berg", "\u200e202 555 0101\u200e · Mobile"])
        self.assertIn("The recording is good.", lines)
        # Said once, and not again in each column.
        self.assertEqual([cell.get_description() for cell in cells[1:]], [""] * 6)

    def test_the_list_of_cards_of_a_phone_says_the_same(self):
        self.open(tags=("anna",))
        wait_for(self.rows, "the row")
        reader.resize("Voice tags", *PHONE)
        self.awaits(Role.PUSH_BUTTON, "Sort by")
        self.check()
        self.awaits_rows("Anna Berg")

    def test_every_page_names_what_can_have_the_focus(self):
        self.open(tags=("anna", "sophie"))
        wait_for(self.rows, "the rows")
        self.check()
        for item, first in (("Say a name", "Say a name"),
                            ("Teach a name", "Search name, company or number"),
                            ("Likeness of names", "Play both"),
                            ("Deleted tags", "No deleted voice tags"), ("Set-up", "Back")):
            with self.subTest(item):
                self.choose(item)
                self.awaits(None, first)
                self.check()
                reader.resize("Voice tags", *PHONE)
                self.check()
                reader.resize("Voice tags", "900", "600")
        self.choose("Likeness of names")
        pictures = wait_for(lambda: [node.get_description() for node in walk(self.window)
                                     if node.get_role() == Role.IMAGE], "the picture")
        self.assertTrue(any(pictures), reader.tree(self.window))

    def test_tab_reaches_every_control_of_every_page(self):
        self.open(tags=("anna", "sophie"))
        wait_for(self.rows, "the rows")
        self.check_tab("the list")
        for item, first in (("Teach a name", "Search name, company or number"),
                            ("Likeness of names", "Play both"), ("Set-up", "Back up…")):
            with self.subTest(item):
                self.choose(item)
                self.awaits(None, first)
                self.check_tab(item)

    def check_tab(self, page):
        """Goes round with Tab, until it has been everywhere."""
        stops = (Role.CHECK_BOX, Role.COMBO_BOX, Role.LIST, Role.PUSH_BUTTON, Role.TEXT, Role.TREE)
        missing = {node.get_name() for node in walk(self.window) if node.get_role() in stops and
                   is_(node, State.FOCUSABLE) and is_(node, State.SENSITIVE)}
        self.assertGreater(len(missing), 3, page)
        for _ in range(3 * len(missing)):
            before = reader.focused()
            missing.discard(before)
            if not missing:
                return
            press("Tab")
            wait_for(lambda: reader.focused() != before, f"the next stop after {before!r}")
        self.fail(f"Tab does not reach {missing} on {page}:\n{reader.tree(self.window)}")

    def choose(self, item):
        """Chooses an item of the menu by the keyboard."""
        press("F10")
        wait_for(lambda: reader.focused() == "Say a name", "the first item")
        for _ in range(20):
            if reader.focused() == item:
                break
            before = reader.focused()
            press("Down")
            wait_for(lambda: reader.focused() != before, "another item")
        press("Return")

    def test_a_menu_opens_by_the_action_of_a_screen_reader(self):
        self.open(tags=("anna",))
        wait_for(self.rows, "the row")
        reader.do(self.awaits(Role.PUSH_BUTTON, "Menu"), "ShowMenu")
        wait_for(lambda: reader.focused() == "Say a name", "the first item")
        press("Escape")
        self.awaits_focus(Role.TREE, "Voice tags")
        reader.resize("Voice tags", *PHONE)
        reader.do(self.awaits(Role.PUSH_BUTTON, "Sort by"), "ShowMenu")
        wait_for(lambda: reader.focused() in ("Name", "Number"), "the first column")
        press("Escape")

    def test_a_name_is_said_and_the_call_is_announced_and_stopped(self):
        self.open(tags=("anna", "sophie", "robert"))
        wait_for(self.rows, "the rows")
        self.choose("Say a name")
        self.awaits_focus(Role.PUSH_BUTTON, "Say a name")
        press("space")
        self.hears("Anna Berg, Mobile. Calling in two seconds.")
        self.check()
        press("Escape")
        self.hears("Nobody was called")

    def test_a_modem_dials_and_hangs_up_by_the_keyboard_alone(self):
        modem = Modem()
        settings = os.path.join(desktop.folder(), "port.reg")
        with open(settings, "w", encoding="ascii") as out:
            out.write("REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Drivers\\Active\\77]\n"
                      f'"Name"="COM77:"\n"Device"="{modem.device}"\n\n'
                      "[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Dialer]\n"
                      '"Com_port"="COM77:"\n')
        self.desk.run("voxtrel", "registry", "import", settings)
        self.open(tags=("anna", "sophie", "robert"))
        wait_for(self.rows, "the rows")
        self.choose("Say a name")
        self.awaits_focus(Role.PUSH_BUTTON, "Say a name")
        press("space")
        self.hears("Anna Berg. The number was dialled.")
        self.awaits_focus(Role.PUSH_BUTTON, "Hang up")
        self.awaits(Role.PUSH_BUTTON, "Say a name")
        self.check()
        press("space")
        self.hears("Anna Berg. The call was ended.")
        self.awaits_focus(Role.PUSH_BUTTON, "Say a name")
        self.assertEqual(modem.lines, ["ATD2025550101;", "ATH"])

    def test_a_window_without_tags_says_what_to_do(self):
        self.open()
        self.awaits(Role.PUSH_BUTTON, "Teach a name")
        self.check()
        names = [node.get_name() for node in walk(self.window) if node.get_role() == Role.LABEL]
        self.assertIn("No voice tags yet", names, reader.tree(self.window))

    def test_about_is_a_message_that_is_read_and_closed_by_the_keyboard(self):
        self.open()
        self.awaits(Role.PUSH_BUTTON, "Menu")
        self.choose("About")
        box = wait_for(lambda: next((w for w in reader.windows()
                                     if find(w, Role.PUSH_BUTTON, "OK")), None), "the box")
        self.assertEqual(reader.faults(box), [], reader.tree(box))
        self.assertTrue(any("Voxtrel" in node.get_name() for node in walk(box)
                            if node.get_role() == Role.LABEL), reader.tree(box))
        press("Escape")


if __name__ == "__main__":
    unittest.main()
