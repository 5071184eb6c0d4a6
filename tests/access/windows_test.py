"""Screen readers before the windows of the control panel, over a real accessibility bus."""

import os
import unittest

import desktop

desktop.enter()

import reader  # noqa: E402
from reader import Role, State, find, is_, press, wait_for, walk, window  # noqa: E402

SAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "samples")


class Windows(unittest.TestCase):
    def setUp(self):
        self.desk = desktop.Programs(self.id().split(".")[-1], SAMPLES)
        self.addCleanup(self.desk.close)

    def check(self, window):
        """What can have the focus has a role and a name that a user understands."""
        self.assertEqual(reader.faults(window), [], reader.tree(window))

    @staticmethod
    def names(window, role):
        """The names of all controls of that role."""
        return [node.get_name() for node in walk(window) if node.get_role() == role]

    def learn(self, *names):
        for name in names:
            self.desk.run("voxtrel", "--microphone", os.path.join(SAMPLES, f"{name}_1.wav"),
                          "tags", "learn", "--contact", name)

    def open_sheet(self):
        self.desk.start("voxtrel-panel", "--open", "voxtrel.cpl")
        return window("Property")

    def test_the_control_panel_reads_its_applets_menus_and_what_is_missing(self):
        self.desk.environment["VOXTREL_CONTACTS"] = os.path.join(desktop.folder(), "none.vcf")
        self.desk.start("voxtrel-panel", "voxtrel.cpl")
        panel = window("Control Panel")
        wait_for(lambda: find(panel, Role.LIST_ITEM, "Zedra Voxtrel"), "the applet by its name")
        self.assertTrue(find(panel, Role.LIST, "Applets"))
        self.assertTrue(find(panel, Role.MENU_ITEM, "Applet"))
        wait_for(lambda: find(panel, Role.PUSH_BUTTON, "Hide"), "the bar")
        self.assertTrue(any("none.vcf" in name or "address book" in name
                            for name in self.names(panel, Role.LABEL)), reader.tree(panel))
        self.check(panel)

    def test_the_learning_page_reads_every_control_and_the_tags_in_order(self):
        self.learn("sophie", "anna")
        sheet = self.open_sheet()
        self.check(sheet)
        contacts = wait_for(lambda: find(sheet, Role.COMBO_BOX, "Berg Anna"), "the contacts")
        self.assertEqual(reader.label_of(contacts), "Contacts")
        self.assertEqual(self.names(sheet, Role.LIST_ITEM),
                         ["Sophie Martin 202 555 0151 M", "Anna Berg 202 555 0101 M"])
        for name in ("Record", "Play", "Delete", "Delete All", "Test", "OK"):
            self.assertTrue(find(sheet, Role.PUSH_BUTTON, name), name)
        press("ctrl+Tab")
        about = wait_for(lambda: next((node for node in walk(sheet) if "Zedra Tech." in
                                        node.get_description()), None), "the About page")
        self.assertEqual(about.get_name(), "About")
        self.check(sheet)

    def test_a_message_box_reads_its_text_and_is_answered_by_the_keyboard(self):
        self.learn("anna")
        sheet = self.open_sheet()
        self.reach(sheet, Role.LIST)
        press("Home", "space")
        self.reach(sheet, Role.PUSH_BUTTON, "Delete All")
        press("space")
        box = wait_for(lambda: next((w for w in reader.windows()
                                     if find(w, Role.PUSH_BUTTON, "Cancel")), None), "the question")
        self.check(box)
        self.assertEqual(box.get_description(), "All voice tags will be deleted!")
        self.assertEqual(reader.text_of(find(box, Role.TEXT)), box.get_description())
        self.assertTrue(is_(find(box, Role.PUSH_BUTTON, "OK"), State.FOCUSED))
        press("Escape")
        wait_for(lambda: box.get_name() not in [w.get_name() for w in reader.windows()],
                 "the end of the question")
        self.assertEqual(self.names(sheet, Role.LIST_ITEM), ["Anna Berg 202 555 0101 M"])

    def test_the_test_dialog_reads_its_pairs(self):
        self.learn("anna", "sophie", "oliver")
        sheet = self.open_sheet()
        reader.do(find(sheet, Role.PUSH_BUTTON, "Test"), "Press")
        test = window("Test")
        self.check(test)
        rows = wait_for(lambda: self.names(test, Role.LIST_ITEM), "the pairs")
        self.assertTrue(any("Anna Berg 202 555 0101 M;  Sophie Martin 202 555 0151 M" in row
                            for row in rows), rows)
        self.assertTrue(is_(find(test, Role.LIST), State.FOCUSED))

    def test_the_reinitialization_says_what_it_does(self):
        self.learn("anna", "elizabeth", "hernandez", "jackson", "oliver", "robert", "sophie",
                   "timothy")
        self.desk.run("sqlite3", os.path.join(self.desk.root, "registry.db"),
                      "UPDATE registry_value SET data = x'32000000' WHERE name = 'Version_Math'")
        self.desk.start("voxtrel-panel", "--open", "voxtrel.cpl")
        # It is soon gone, and at first not all of it may be there.
        wait_for(lambda: {("Reinitialization", "Base reinitialization..."),
                          ("Please wait a few", ""), ("Reinitialization", "")} <=
                 {(node.get_name(), node.get_description())
                  for node in walk(window("Reinitialization"))}, "its texts and its bar")

    def test_the_connection_window_reads_each_choice_with_its_label(self):
        self.desk.start("voxtrel-connection", self.desk.root)
        sheet = window("Property")
        self.check(sheet)
        boxes = [node for node in walk(sheet) if node.get_role() == Role.COMBO_BOX]
        self.assertEqual([reader.label_of(box) for box in boxes],
                         ["Connection settings", "Baud rate:", "Data bits:", "Stop bits:",
                          "Flow control:"])
        self.assertEqual([box.get_name() for box in boxes][1:], ["9600", "8", "1", "none"])

    def reach(self, window, role, name=None):
        """Presses Tab until the control has the focus, as a user of the keyboard does."""
        for _ in range(60):
            node = find(window, role, name)
            if node is not None and is_(node, State.FOCUSED):
                return node
            press("Tab")
            reader.let_events_in()
        raise AssertionError(f"Tab does not reach {name}:\n{reader.tree(window)}")


if __name__ == "__main__":
    unittest.main()
