#!/usr/bin/env python3
"""Tests of what the campaign rests on: the judge sees each kind of loss, the disk forgets what was
not synced."""

import sqlite3
import struct
import tempfile
import unittest

import judge
from commands import Command
from judge import TAG_KEY, TEMPLATES, TRASH, WAVES, what_may_be_left
from machine import Call
from power import CREAT, TMPFILE, Disk, states_after_power_cuts

WAVE = b"RIFF" + bytes(36) + struct.pack("<I", 4) + b"abcd"
TEMPLATE = struct.pack("<IH5f", 5, 1, 1, 2, 3, 4, 5)


def make_tree(*tags, settings=()):
    with tempfile.NamedTemporaryFile() as file:
        database = sqlite3.connect(file.name)
        database.executescript(
            "CREATE TABLE registry_path (key_id INTEGER, path TEXT);"
            "CREATE TABLE registry_value (key_id INTEGER, name TEXT, type INTEGER, data BLOB);")
        for number, tag in enumerate(tags):
            database.execute("INSERT INTO registry_path VALUES (?, ?)", (number, f"{TAG_KEY}\\{tag}"))
            for name in ("contact", "phone type"):
                database.execute("INSERT INTO registry_value VALUES (?, ?, 1, ?)",
                                 (number, name, tag.encode().ljust(100, b"\0")))
        database.execute("INSERT INTO registry_path VALUES (99, 'Software')")
        for name, data in settings:
            database.execute("INSERT INTO registry_value VALUES (99, ?, 1, ?)", (name, data))
        database.commit()
        database.close()
        tree = {"root/registry.db": file.read()}
    for tag in tags:
        tree[f"{WAVES}{tag}.wav"] = WAVE
        tree[f"{TEMPLATES}{tag}.st"] = TEMPLATE
    return tree


def changed(tree, path, content):
    other = dict(tree)
    other[path] = content
    if content is None:
        del other[path]
    return other


def judged(command, before, after, done, recovered=None, restored=()):
    return what_may_be_left(command, before, after, done, recovered or after, dict(restored))


class AnotherTag(unittest.TestCase):
    command = Command("learn", [])
    before = make_tree("1")
    done = make_tree("1", "2")

    def test_nothing_is_wrong_before_and_after(self):
        for after in (self.before, self.done):
            self.assertEqual(judged(self.command, self.before, after, self.done), [])

    def test_a_lost_entry_is_seen(self):
        after = make_tree("2")
        self.assertIn("the entry of another tag is lost or changed",
                      judged(self.command, self.before, after, self.done))

    def test_one_changed_byte_of_a_recording_or_template_is_seen(self):
        for path in (WAVES + "1.wav", TEMPLATES + "1.st"):
            torn = changed(self.before, path, self.before[path][:-1] + b"\1")
            self.assertIn("another tag's files are lost or changed",
                          judged(self.command, self.before, torn, self.done))

    def test_a_new_entry_without_a_whole_file_is_seen(self):
        for path, content in ((WAVES + "2.wav", None), (WAVES + "2.wav", WAVE[:-1]),
                              (TEMPLATES + "2.st", None), (TEMPLATES + "2.st", TEMPLATE[:-1])):
            after = changed(self.done, path, content)
            self.assertIn("a new entry is there without its files",
                          judged(self.command, self.before, after, self.done))

    def test_a_file_without_an_entry_may_be_left_until_the_next_command(self):
        after = changed(self.before, WAVES + "2.wav", WAVE)
        self.assertEqual(judged(self.command, self.before, after, self.done, self.before), [])
        self.assertEqual(judged(self.command, self.before, after, self.done, after),
                         ["a file without an entry stays: wav"])

    def test_a_passing_name_may_be_left_until_the_next_command(self):
        for name in (WAVES + ".voxtrel-1", "root/a.part", TRASH + "1.deleting"):
            after = changed(self.before, name, b"")
            self.assertEqual(len(judged(self.command, self.before, after, self.done, self.before)), 0)
            self.assertGreater(len(judged(self.command, self.before, after, self.done, after)), 0)

    def test_settings_that_cannot_be_read_are_seen(self):
        after = changed(self.before, "root/registry.db", self.before["root/registry.db"][:5000])
        self.assertRegex(judged(self.command, self.before, after, self.done)[0], "cannot be read")


class Deletion(unittest.TestCase):
    command = Command("delete", [], objects=["2"])
    before = make_tree("1", "2")
    done = changed(make_tree("1"), TRASH + "1.tar", b"")
    tag = judge.read_store(before).tags["2"]

    def test_a_tag_is_whole_or_restored_whole(self):
        self.assertEqual(judged(self.command, self.before, self.before, self.done), [])
        self.assertEqual(judged(self.command, self.before, self.done, self.done,
                                restored={"2": self.tag}), [])

    def test_a_tag_that_is_neither_is_seen(self):
        self.assertEqual(judged(self.command, self.before, self.done, self.done),
                         ["a deleted tag is not in the trash as it was"])
        other = (self.tag[0], WAVE + b"x", TEMPLATE)
        self.assertEqual(judged(self.command, self.before, self.done, self.done,
                                restored={"2": other}),
                         ["a deleted tag is not in the trash as it was"])

    def test_half_a_tag_may_be_left_until_the_next_command(self):
        half = changed(self.before, WAVES + "2.wav", None)
        self.assertEqual(judged(self.command, self.before, half, self.done, self.before), [])
        self.assertIn("a tag came out of a deletion or of the trash incomplete",
                      judged(self.command, self.before, half, self.done, half))

    def test_it_is_done_when_the_store_is_as_after_a_run_without_a_fault(self):
        self.assertTrue(judge.is_done(self.command, self.done, self.done))
        self.assertFalse(judge.is_done(self.command, self.before, self.done))
        self.assertFalse(judge.is_done(self.command, make_tree("1"), self.done))


class Settings(unittest.TestCase):
    before = make_tree(settings=[("a", b"1"), ("b", b"1")])
    half = make_tree(settings=[("a", b"2"), ("b", b"1")])
    done = make_tree(settings=[("a", b"2"), ("b", b"2")])
    other = make_tree(settings=[("a", b"3"), ("b", b"1")])

    def test_a_group_that_is_stored_in_part_is_seen(self):
        self.assertEqual(judged(Command("set", []), self.before, self.half, self.done), [])
        self.assertIn("settings that belong together were stored in part",
                      judged(Command("set", [], groups=True), self.before, self.half, self.done))

    def test_a_value_that_nobody_wrote_is_seen(self):
        self.assertIn("the setting a is neither the old nor the new one",
                      judged(Command("set", []), self.before, self.other, self.done))


class Target(unittest.TestCase):
    def test_a_torn_file_is_seen(self):
        before, done = {"a": b"old"}, {"a": b"new"}
        command = Command("export", [], targets=["a"])
        for after in (before, done):
            self.assertEqual(judged(command, before, after, done), [])
        for content in (b"", b"ne", None):
            self.assertEqual(judged(command, before, changed(before, "a", content), done),
                             ["a is neither the old nor the new one"])


def call(kind, path="", descriptor=-1, number=0, other="", data=b""):
    return Call(kind, True, [], True, descriptor, number, path, other, data)


class PowerCut(unittest.TestCase):
    def states(self, *calls, tree=()):
        disk = Disk(dict(tree))
        for one in calls:
            disk.do(one)
        return [state for _, state in disk.states("seed")]

    write = [call("open", "a", 3, CREAT), call("write", "a", 3, 0, data=b"bytes")]

    def test_what_was_not_synced_can_be_lost_in_several_ways(self):
        states = self.states(*self.write)
        for state in ({}, {"a": b""}, {"a": b"bytes"}, {"a": bytes(5)}):
            self.assertIn(state, states)

    def test_a_synced_file_can_still_lose_its_name(self):
        states = self.states(*self.write, call("sync", "a", 3))
        self.assertIn({}, states)
        self.assertNotIn({"a": b""}, states)

    def test_what_was_synced_with_its_folder_stays(self):
        states = self.states(*self.write, call("sync", "a", 3), call("open", "", 4),
                             call("sync", "", 4))
        self.assertEqual([state for state in states if state != {"a": b"bytes"}], [])

    def test_a_renaming_of_unsynced_bytes_can_empty_the_target(self):
        states = self.states(*self.write, call("rename", "a", other="b"), tree={"b": b"old"})
        for state in ({"b": b"old"}, {"b": b""}, {"b": b"bytes"}):
            self.assertIn(state, states)

    def test_a_nameless_file_has_a_name_after_its_link_alone(self):
        states = self.states(call("open", "", 3, TMPFILE), call("write", "", 3, 0, data=b"bytes"),
                             call("sync", "", 3))
        self.assertEqual([state for state in states if state != {}], [])
        states = self.states(call("open", "", 3, TMPFILE), call("write", "", 3, 0, data=b"bytes"),
                             call("sync", "", 3), call("link", "", 3, other="a"))
        self.assertIn({"a": b"bytes"}, states)
        self.assertIn({}, states)
        self.assertNotIn({"a": b""}, states)

    def test_a_removal_that_was_not_synced_can_come_back(self):
        states = self.states(call("unlink", "a"), tree={"a": b"old"})
        self.assertIn({"a": b"old"}, states)
        self.assertIn({}, states)

    def test_what_lies_in_a_folder_whose_name_was_lost_is_lost(self):
        states = self.states(call("folder", "f"), call("open", "f/a", 3, CREAT), call("sync", "f/a", 3),
                             call("open", "f", 4), call("sync", "f", 4))
        self.assertIn({}, states)

    def test_each_cut_gives_states_and_the_last_one_is_marked(self):
        states = list(states_after_power_cuts({}, self.write, "seed"))
        self.assertIn((1, False, "everything", {"a": b""}), states)
        self.assertIn((2, True, "everything", {"a": b"bytes"}), states)


if __name__ == "__main__":
    unittest.main()
