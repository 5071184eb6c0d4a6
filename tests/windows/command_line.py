#!/usr/bin/env python3
"""Runs the same commands with the program of Linux and with that of Windows, and compares the bytes.

usage: command_line.py --linux PROGRAM --windows PROGRAM.exe --wine WINE --samples FOLDER

Each program works in a folder of its own. What must differ is replaced before the comparison: the
folder's name, the slashes of paths, and the names of tags, which are tick counts.
"""

import argparse
import io
import json
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zlib
from pathlib import Path

ARGUMENTS = None


class Machine:
    """One program with its folder."""

    def __init__(self, name, command, folder, environment):
        self.name = name
        self.command = command
        self.folder = Path(folder) / name
        self.folder.mkdir()
        self.environment = environment
        self.tags = []

    def run(self, *arguments, root="root", given=b""):
        """Returns exit code, standard output and standard error."""
        place = ["--root", root] if root else []
        done = subprocess.run(
            self.command + place + list(arguments), cwd=self.folder, env=self.environment,
            input=given, capture_output=True, timeout=300, check=False)
        # What Wine says of programs of its own. If it ended ours, that has no exit code of ours.
        said = b"".join(line for line in done.stderr.splitlines(True)
                        if not line.startswith(b"wine: "))
        return done.returncode, done.stdout, said

    def note_tags(self):
        code, out, _ = self.run("--json", "tags", "list")
        self.tags = [tag["name"] for tag in json.loads(out)] if code == 0 else []

    def neutral(self, text):
        """Replaces what must differ from the other machine's."""
        text = text.replace(b"\\\\", b"/").replace(b"\\", b"/").replace(b"Z:/", b"/")
        text = text.replace(str(self.folder).encode(), b"<folder>")
        for number, tag in enumerate(self.tags):
            text = text.replace(tag.encode(), b"<tag %d>" % number)
        # The number of a contact depends on the path of its address book. Only Linux lists ports.
        text = re.sub(rb'("oid"|"contact"):-?\d+', rb"\1:0", text)
        return re.sub(rb'"ports":\[.*?\]', b'"ports":[]', text)

    def files(self, pattern):
        """Returns the content of files by their neutral names."""
        return {self.neutral(str(path.relative_to(self.folder)).encode()): path.read_bytes()
                for path in sorted(self.folder.glob(pattern)) if path.is_file()}


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory(prefix="voxtrel-windows-")
        folder = os.path.realpath(self.home.name)
        common = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "HOME": folder,
                  "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent",
                  "PULSE_SERVER": "unix:/nonexistent"}
        self.linux = Machine("linux", [ARGUMENTS.linux], folder, common)
        self.windows = Machine("windows", [ARGUMENTS.wine, ARGUMENTS.windows], folder, {
            **common, "WINEDEBUG": "-all",
            "WINEPREFIX": os.environ.get("WINEPREFIX", folder + "/prefix")})
        for machine in (self.linux, self.windows):
            for sample in Path(ARGUMENTS.samples).iterdir():
                shutil.copy(sample, machine.folder)

    def tearDown(self):
        self.home.cleanup()

    def both(self, *arguments, code=0, given=b"", root="root"):
        """Runs a command on both machines. What it says and answers must be the same."""
        results = []
        for machine in (self.linux, self.windows):
            answer, out, err = machine.run(*arguments, given=given, root=root)
            results.append((answer, machine.neutral(out), machine.neutral(err)))
        self.assertEqual(results[0], results[1], arguments)
        self.assertEqual(results[0][0], code, (arguments, results[0]))
        return results[0][1]

    def assert_same_files(self, pattern):
        files = self.linux.files(pattern)
        self.assertEqual(files, self.windows.files(pattern))
        self.assertTrue(files, pattern)

    def learn(self, contact, sample, number="Mobile"):
        self.both("--contacts", "contacts.vcf", "--microphone", sample, "--speaker", "heard.wav",
                  "--json", "tags", "learn", "--contact", contact, "--number", number)

    def note_tags(self):
        for machine in (self.linux, self.windows):
            machine.note_tags()

    def test_templates_and_waves_have_the_same_bytes(self):
        for sample in ("anna_1", "timothy_2", "hernandez_3"):
            wave, template = sample + ".wav", sample + ".st"
            self.both("wave", "check", wave)
            self.both("--json", "wave", "check", wave)
            self.both("template", "learn", wave, template)
            self.both("template", "show", template)
            self.both("--json", "template", "show", template)
        self.both("template", "process", "anna_2.wav", "anna_2.st")
        self.both("template", "compare", "anna_1.st", "anna_2.st")
        self.both("--json", "template", "compare", "anna_1.st", "timothy_2.st")
        self.both("--microphone", "robert_1.wav", "wave", "record", "recorded.wav")
        self.both("--speaker", "played.wav", "wave", "play", "robert_1.wav")
        self.assert_same_files("*.st")
        self.assert_same_files("*.wav")

    def test_streams_carry_bytes_and_no_text(self):
        wave = (self.linux.folder / "anna_1.wav").read_bytes()
        template = self.both("template", "process", "-", "-", given=wave)
        self.assertEqual(self.both("template", "process", "anna_1.wav", "-"), template)

    def test_failures_and_wrong_usage_are_said_alike(self):
        self.both("nonsense", code=2)
        self.both("tags", "learn", code=2)
        self.both("--json", "template", "show", "missing.st", code=1)
        self.both("template", "show", "anna_1.wav", code=1)
        self.both("wave", "check", "contacts.vcf", code=1)
        self.both("restore", "anna_1.wav", code=1)
        self.both("--json", "registry", "import", "contacts.vcf", code=1)
        self.both("tags", "list", code=1, root="anna_1.wav/below")
        self.both("--help")
        self.both("tags", "--help")
        self.both("--version")

    def test_a_path_that_begins_with_a_slash_is_a_file_and_no_option(self):
        for machine in (self.linux, self.windows):
            code, out, err = machine.run("wave", "check", str(machine.folder / "anna_1.wav"))
            self.assertEqual((code, err), (0, b""), (machine.name, out))

    def test_languages_are_the_same(self):
        self.both("language", "template", "own.lng")
        self.both("language", "check", "own.lng")
        self.both("language", "show", "own.lng")
        self.assert_same_files("own.lng")

    def test_tags_are_learned_listed_tested_and_deleted_alike(self):
        self.both("--contacts", "contacts.vcf", "contacts", "list")
        self.both("--contacts", "contacts.vcf", "--json", "contacts", "list")
        self.both("tags", "list")
        self.tags_of_three()
        self.both("tags", "list")
        self.both("--json", "tags", "list")
        self.both("tags", "test")
        self.both("--json", "tags", "test")
        self.both("check")
        self.both("reinit")
        self.assert_same_files("root/Program Files/**/*.*")
        for command in (["--speaker", "heard.wav", "--json", "tags", "play"],
                        ["--yes", "--json", "tags", "delete"]):
            results = [machine.run(*command, machine.tags[1])
                       for machine in (self.linux, self.windows)]
            self.assertEqual(results[0][0], 0, results)
            self.assertEqual(*(machine.neutral(result[1]) for machine, result in
                               zip((self.linux, self.windows), results)))
        self.both("tags", "list")
        self.both("--json", "tags", "restore", "--last")
        self.both("tags", "list")
        self.both("tags", "delete-all", "--yes")
        self.both("tags", "list")

    def tags_of_three(self):
        for contact, sample in (("Sophie", "sophie_1.wav"), ("Anna", "anna_1.wav"),
                                ("Robert", "robert_1.wav")):
            # The name of a tag is not known before.
            for machine in (self.linux, self.windows):
                code, _, err = machine.run(
                    "--contacts", "contacts.vcf", "--microphone", sample, "--speaker", "heard.wav",
                    "tags", "learn", "--contact", contact, "--number", "Mobile")
                self.assertEqual((code, err), (0, b""), machine.name)
        self.note_tags()
        self.assertEqual(len(self.linux.tags), 3)

    def test_a_backup_of_one_is_restored_by_the_other(self):
        self.tags_of_three()
        self.both("backup", "kept.tar")
        for source, target in ((self.linux, self.windows), (self.windows, self.linux)):
            shutil.copy(source.folder / "kept.tar", target.folder / "foreign.tar")
            code, out, err = target.run("--contacts", "contacts.vcf", "restore", "foreign.tar",
                                        root="restored")
            self.assertEqual(code, 0, (target.name, out, err))
            shown = [machine.neutral(machine.run("--contacts", "contacts.vcf", "tags", "list",
                                                 root=root)[1])
                     for machine, root in ((source, "root"), (target, "restored"))]
            names = [re.sub(rb"^ +(<tag )?\d+>?", b"", text, flags=re.M) for text in shown]
            self.assertEqual(names[0], names[1], target.name)

    def test_connection_settings_are_kept_alike(self):
        self.both("--json", "connection", "set", "port=COM7:", "baud-rate=115200",
                  "flow-control=hardware", "bt-headset=yes")
        self.both("registry", "export", "all.reg")
        # Only Linux lists ports, and each system has an order of values of its own.
        exported = [(machine.folder / "all.reg").read_bytes().decode("utf-16")
                    for machine in (self.linux, self.windows)]
        settings = [re.search(r"\[HKEY_LOCAL_MACHINE.Software.Zedra.Zedra Dialer\]\r\n(.*?)\r\n\r\n",
                              text + "\r\n", flags=re.S)[1] for text in exported]
        self.assertEqual(*(sorted(text.splitlines()) for text in settings))

    def test_what_needs_linux_says_so(self):
        for command, program in ((["home"], b"voxtrel-home"), (["dial"], b"voxtrel-dial"),
                                 (["dial", "--to", "Anna", "--way", "print"], b"voxtrel-dial")):
            code, out, err = self.windows.run(*command)
            self.assertEqual((code, out, err), (1, b"", b"voxtrel: " + program + b" needs Linux\n"))

    def test_a_backup_comes_through_a_pipe_and_any_tool_unpacks_it(self):
        self.tags_of_three()
        for machine in (self.linux, self.windows):
            code, backup, err = machine.run("backup", "-")
            self.assertEqual((code, err), (0, b""), machine.name)
            with tarfile.open(fileobj=io.BytesIO(backup)) as archive:
                content = {member.name: archive.extractfile(member).read() for member in archive}
            files = {name.rsplit(b"/", 1)[1]: data
                     for name, data in machine.files("root/Program Files/**/*.wav").items()}
            recordings = [data for name, data in content.items() if name.endswith("recording.wav")]
            self.assertEqual(sorted(recordings), sorted(files.values()), machine.name)
            for line in content["checksums.sfv"].decode().splitlines():
                if line and not line.startswith(";"):
                    name, checksum = line.rsplit(" ", 1)
                    self.assertEqual(int(checksum, 16), zlib.crc32(content[name]), name)
            code, out, err = machine.run("--contacts", "contacts.vcf", "--json", "restore", "-",
                                         root="piped", given=backup)
            self.assertEqual((code, len(json.loads(out)["restored"])), (0, 3), (machine.name, err))

    def test_a_backup_is_kept_out_of_the_root_folder_in_any_letter_case(self):
        self.tags_of_three()
        for machine, name in ((self.linux, "root/letter"), (self.windows, "ROOT\\LETTER")):
            (machine.folder / "root" / "letter").write_bytes(b"Dear Ann")
            code, _, err = machine.run("--yes", "backup", name)
            self.assertEqual(code, 1, machine.name)
            self.assertIn(b"in the folder of the voice tags", err)
            self.assertEqual((machine.folder / "root" / "letter").read_bytes(), b"Dear Ann")

    def test_streams_that_end_early_or_hold_something_else_are_said_alike(self):
        wave = (self.linux.folder / "anna_1.wav").read_bytes()
        for given in (b"", wave[:30], wave[:5000], b"no wave file" * 10):
            self.both("wave", "check", "-", given=given, code=1)
            self.both("--json", "wave", "check", "-", given=given, code=1)
            self.both("template", "process", "-", "-", given=given, code=1)
        self.both("--json", "template", "process", "anna_1.wav", "-", code=2)
        self.both("template", "compare", "-", "-", code=2)

    def test_folders_with_blanks_and_letters_of_every_script_are_folders(self):
        for machine in (self.linux, self.windows):
            (machine.folder / "Größe und 山田").mkdir()
            shutil.copy(machine.folder / "anna_1.wav", machine.folder / "Größe und 山田/Имя 1.wav")
        root = "Größe und 山田/мой root"
        self.both("wave", "check", "Größe und 山田/Имя 1.wav", root=root)
        self.both("template", "learn", "Größe und 山田/Имя 1.wav", "Größe und 山田/Ωλκή.st", root=root)
        self.both("wave", "check", "Größe und 山田/fehlt.wav", root=root, code=1)
        self.both("--json", "connection", "set", "baud-rate=300", root=root)
        self.both("--json", "connection", "show", root=root)
        self.both("registry", "export", "Größe und 山田/все.reg", root=root)
        self.assert_same_files("Größe*/*.st")

    def test_letters_of_every_script_reach_the_program(self):
        card = ("BEGIN:VCARD\nVERSION:3.0\nFN:Ærø Ωλκή 山田\nN:山田;Ærø Ωλκή\nTEL;TYPE=CELL:1\n"
                "END:VCARD\n")
        for machine in (self.linux, self.windows):
            (machine.folder / "gruß.vcf").write_text(card, encoding="utf-8")
        self.both("--contacts", "gruß.vcf", "contacts", "list")
        self.both("--json", "--contacts", "fehlt-gruß.vcf", "contacts", "list", code=1)

    def test_a_registry_file_of_linux_gives_the_same_tags_to_windows_and_back(self):
        self.tags_of_three()
        (self.linux.folder / "more.reg").write_bytes(many_settings().encode("utf-16"))
        self.assertEqual(self.linux.run("registry", "import", "more.reg")[0], 0)
        code, out, err = self.linux.run("registry", "export", "linux.reg")
        self.assertEqual(code, 0, (out, err))
        shutil.copy(self.linux.folder / "linux.reg", self.windows.folder)
        own = self.machine_of_its_own()
        self.import_by_the_system(own, "linux.reg")
        status = json.loads(own.run("--json", "status", root=None)[1])
        self.assertEqual(status["settings"], "HKEY_LOCAL_MACHINE")
        data = next((self.windows.folder / "own prefix/drive_c/users").glob("*/AppData/Local"))
        shutil.copytree(self.linux.folder / "root/Program Files", data / "Voxtrel/Program Files")
        tags = self.tags_of(self.linux, "root")
        self.assertEqual(len(tags), 100)
        self.assertEqual(self.tags_of(own, None), tags, "They are in the same order, too.")
        code, out, err = own.run("registry", "export", "windows.reg", root=None)
        self.assertEqual(code, 0, (out, err))
        text = (own.folder / "windows.reg").read_bytes().decode("utf-16")
        for line in text.splitlines():
            if line.startswith("["):
                self.assertRegex(line, r"^\[HKEY_LOCAL_MACHINE\\Software(\\Zedra.*)?\]$")
        mine = settings_in((self.linux.folder / "linux.reg").read_bytes().decode("utf-16"))
        self.assertEqual(sorted(mine.items() ^ settings_in(text).items()), [])
        shutil.copy(own.folder / "windows.reg", self.linux.folder)
        self.assertEqual(self.linux.run("registry", "import", "windows.reg", root="back")[0], 0)
        shutil.copytree(self.linux.folder / "root/Program Files",
                        self.linux.folder / "back/Program Files")
        self.assertEqual(self.tags_of(self.linux, "back"), tags)

    def test_tags_are_in_the_order_in_which_they_were_made_on_both(self):
        orders = []
        self.tags_of_three()
        for machine in (self.linux, self.windows):
            data = machine.folder / "root/Program Files/Zedra Tech./Zedra Voxtrel"
            people = json.loads(machine.run("--contacts", "contacts.vcf", "--json", "contacts",
                                            "list")[1])
            def put(number, contact):
                text = "Windows Registry Editor Version 5.00\r\n\r\n" + entry_of(number, contact)
                (machine.folder / "one.reg").write_bytes(text.encode("utf-16"))
                self.assertEqual(machine.run("registry", "import", "one.reg")[0], 0)
                for folder, end in (("Voxtrel_wav", ".wav"), ("Voxtrel_stor", ".st")):
                    shutil.copy(data / folder / (machine.tags[0] + end), data / folder / (number + end))
            for number in ("2147483640", "-2147483600", "7", "-9", "3"):
                put(number, people[0]["oid"])
            # One is written again, and one goes and comes back.
            put("7", people[1]["oid"])
            for command in (["--yes", "tags", "delete"], ["tags", "restore"]):
                code, out, err = machine.run("--contacts", "contacts.vcf", *command, "2147483640")
                self.assertEqual(code, 0, (machine.name, command, out, err))
            orders.append([tag[0] for tag in self.tags_of(machine, "root")
                           if tag[0] not in machine.tags])
        self.assertEqual(orders[0], ["-2147483600", "7", "-9", "3", "2147483640"])
        self.assertEqual(orders[1], orders[0])

    def test_the_registry_of_a_user_who_may_not_write_to_the_machine_is_the_users(self):
        own = self.machine_of_its_own()
        decision = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Voxtrel]\r\n" \
            '"Hive"="HKEY_CURRENT_USER"\r\n'
        (own.folder / "decision.reg").write_bytes(decision.encode("utf-16"))
        status = json.loads(own.run("--json", "status", root=None)[1])
        self.assertEqual(status["settings"], "HKEY_LOCAL_MACHINE")
        self.import_by_the_system(own, "decision.reg")
        status = json.loads(own.run("--json", "status", root=None)[1])
        self.assertEqual(status["settings"], "HKEY_CURRENT_USER")
        code, out, err = own.run("connection", "set", "baud-rate=4800", root=None)
        self.assertEqual((code, err), (0, b""), out)
        for hive, code in (("HKCU", 0), ("HKLM", 1)):
            found = subprocess.run(
                [ARGUMENTS.wine, "reg", "query", hive + "\\Software\\Zedra\\Zedra Dialer", "/v",
                 "Bound_rate"], env=own.environment, capture_output=True, timeout=300, check=False)
            self.assertEqual(found.returncode, code, (hive, found))
            self.assertEqual(b"4800" in found.stdout, code == 0)

    def test_cards_of_every_character_set_are_read_alike(self):
        cards = [b"FN;CHARSET=WINDOWS-1252:J\xf6rg Stra\xdfe\x80",
                 b"FN;CHARSET=windows-1250:\xa3\xf3d\x9f",
                 b"FN;CHARSET=WINDOWS-1251:\xc8\xe2\xe0\xed",
                 b"FN;CHARSET=KOI8-R:\xe9\xd7\xc1\xce",
                 b"FN;CHARSET=ISO-8859-7:\xd9\xeb\xea\xde",
                 b"FN;CHARSET=SHIFT_JIS:\x8e\x52\x93\x63",
                 b"FN;CHARSET=EUC-JP:\xbb\xb3\xc5\xc4",
                 b"FN;CHARSET=ISO-2022-JP:\x1b$B;3ED\x1b(B",
                 b"FN;CHARSET=GB2312:\xc9\xbd\xcc\xef",
                 b"FN;CHARSET=BIG5:\xa4\x73\xa5\xd0",
                 b"FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:J=C3=B6rg=20=\r\n=E5=B1=B1",
                 b"FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:broken =C3=28 =ZZ",
                 b"FN;CHARSET=NO-SUCH-SET:plain \xe4",
                 b"FN:\xff\xfe broken UTF-8 \xc3"]
        text = b"".join(b"BEGIN:VCARD\r\nVERSION:2.1\r\n" + card + b"\r\nTEL;CELL:%d\r\nEND:VCARD\r\n"
                        % number for number, card in enumerate(cards))
        for machine in (self.linux, self.windows):
            (machine.folder / "sets.vcf").write_bytes(text)
        listed = self.both("--contacts", "sets.vcf", "--json", "contacts", "list")
        self.assertEqual(len(json.loads(listed)), len(cards))
        self.assertIn("山田", listed.decode())

    def test_a_file_under_another_spelling_is_the_same_file_in_every_script(self):
        self.tags_of_three()
        for machine in (self.linux, self.windows):
            folder = machine.folder / "root/Program Files/Zedra Tech./Zedra Voxtrel"
            tag = machine.tags[0]
            (folder / "Voxtrel_wav" / (tag + ".wav")).rename(
                folder / "Voxtrel_wav" / (tag + ".WAV"))
            for name in ("ςΣσ", "Größe", "ИМЯ", "ǅ"):
                (folder / "Voxtrel_wav" / (name + ".wav")).write_bytes(b"RIFF")
                (folder / "Voxtrel_stor" / (name.swapcase() + ".ST")).write_bytes(b"x")
        found = []
        for machine in (self.linux, self.windows):
            code, out, err = machine.run("check")
            self.assertEqual((code, err), (1, b"voxtrel: there are 8 problems\n"))
            # Each file system has an order of its own.
            found.append(sorted(machine.neutral(out).splitlines()))
        self.assertEqual(found[0], found[1])

    def machine_of_its_own(self):
        """The program of Windows with a registry and a user of its own."""
        environment = {**self.windows.environment,
                       "WINEPREFIX": str(self.windows.folder / "own prefix")}
        own = Machine("own", [ARGUMENTS.wine, ARGUMENTS.windows], self.home.name, environment)
        own.folder = self.windows.folder
        return own

    def import_by_the_system(self, machine, name):
        imported = subprocess.run([ARGUMENTS.wine, "reg", "import", name], cwd=machine.folder,
                                  env=machine.environment, capture_output=True, timeout=300,
                                  check=False)
        self.assertEqual(imported.returncode, 0, imported)

    def tags_of(self, machine, root):
        code, out, err = machine.run("--json", "tags", "list", root=root)
        self.assertEqual(code, 0, err)
        return [(tag["name"], tag["contact"], tag["phoneType"]) for tag in json.loads(out)]


def entry_of(tag, contact):
    """A tag's entry as the lines of a registry file."""
    lines = [f"[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Zedra Voxtrel\\{tag}]"]
    for name, text in (("contact", str(contact)), ("phone type", "Mobile")):
        value = text.encode("utf-16-le").ljust(100, b"\0")
        lines.append(f'"{name}"=hex(1):' + ",".join("%02x" % byte for byte in value))
    return "\r\n".join(lines) + "\r\n\r\n"


def many_settings():
    """97 tags whose tick counts begin again among them, and names in other scripts."""
    tags = [(2**31 - 50 + 7 * number + 2**31) % 2**32 - 2**31 for number in range(97)]
    return ("Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Größe ΣΑΣ\\Имя 山田]\r\n"
            '"ключ \U0001F600"="значение 山田"\r\n'
            '@="unnamed"\r\n'
            '"bytes"=hex:00,01,ff\r\n"number"=dword:ffffffff\r\n\r\n'
            + "".join(entry_of(tag, number) for number, tag in enumerate(tags)))


def settings_in(text):
    """Returns the values of a registry file by key and name. Each system has its own order of
    them, and what Linux knows of its ports is not another machine's."""
    settings = {}
    key = ""
    for line in text.replace("\\\r\n  ", "").splitlines():
        if line.startswith("["):
            key = line
        elif "=" in line and "\\Drivers\\" not in key:
            name, value = re.fullmatch(r'(@|"(?:[^"\\]|\\.)*")=(.*)', line).groups()
            settings[key, name] = value
    return settings


def main():
    global ARGUMENTS
    parser = argparse.ArgumentParser()
    for name in ("linux", "windows", "wine", "samples"):
        parser.add_argument("--" + name, required=True)
    ARGUMENTS, rest = parser.parse_known_args()
    for name in ("linux", "windows", "samples"):  # The programs run in folders of their own.
        setattr(ARGUMENTS, name, os.path.abspath(getattr(ARGUMENTS, name)))
    unittest.main(argv=[sys.argv[0]] + rest)


if __name__ == "__main__":
    main()
