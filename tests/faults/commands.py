"""The commands that the campaign tries, and the machine that they find."""

import dataclasses
import json

from judge import TEMPLATES, WAVES, read_store

CONTACTS = """BEGIN:VCARD\r
VERSION:3.0\r
UID:anna\r
N:Berg;Anna;;;\r
TEL;TYPE=CELL:2025550101\r
END:VCARD\r
BEGIN:VCARD\r
VERSION:3.0\r
UID:bob\r
N:Bee;Bob;;;\r
TEL;TYPE=HOME:2025550102\r
TEL;TYPE=CELL:2025550103\r
END:VCARD\r
"""
REGISTRY_FILE = """Windows Registry Editor Version 5.00\r
\r
[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Dialer]\r
"Volume"=dword:00000007\r
"Greeting"="Hello"\r
\r
[HKEY_LOCAL_MACHINE\\Software\\Zedra\\Dialer\\More]\r
"Bytes"=hex:01,02,03\r
"""
SPOKEN = ["--contacts", "@/contacts.vcf", "--speaker", "@/heard.wav", "--microphone"]

WITH_DEVICES = " with devices"  # Commands that only a machine with a microphone and a loudspeaker has.


@dataclasses.dataclass
class Command:
    name: str
    arguments: list
    changes: bool = True
    objects: list = dataclasses.field(default_factory=list)  # Tags that it deletes.
    trashed: dict = dataclasses.field(default_factory=dict)  # What lies in the trash before.
    targets: list = dataclasses.field(default_factory=list)  # Files outside the root.
    sides: list = dataclasses.field(default_factory=list)    # More of them, of less weight.
    rewrites: bool = False  # Whether it makes recordings and templates again.
    groups: bool = False    # Whether its settings are stored as one.
    empties: bool = False   # Whether it empties the trash.
    replaces: bool = False  # Whether other tags come in the place of its objects.
    prepare: object = None  # A function that changes the tree before the command.
    reports: bool = False   # Whether what it cannot read is an answer, too.
    essence: object = None  # A function of the output: what stays so although something is warned of.
    plays: bool = False     # Whether a sound of its is heard to the end if it succeeds.
    exit: int = 0           # Without a fault.

    def whole_tags(self, store):
        """What it deletes, and what was deleted before."""
        return self.trashed | {name: store.tags[name] for name in self.objects}


def make_tree(machine, samples):
    """Three tags, one more in the trash, and files for the other commands. Returns the tree, and
    what is in the trash."""
    home = machine.home
    (home / "contacts.vcf").write_bytes(CONTACTS.encode())
    (home / "change.reg").write_bytes(REGISTRY_FILE.encode("utf-16"))
    for name, sample in (("microphone.wav", "anna_1"), ("take.wav", "sophie_1"),
                         ("other.wav", "oliver_1"), ("old.wav", "robert_2")):
        (home / name).write_bytes((samples / (sample + ".wav")).read_bytes())
    for number, (contact, kind, sample) in enumerate((
            ("Anna Berg", "Mobile", "anna_1"), ("Bob Bee", "Home", "robert_1"),
            ("Bob Bee", "Mobile", "robert_2"), ("Anna Berg", "Mobile", "anna_2"))):
        (home / "said.wav").write_bytes((samples / (sample + ".wav")).read_bytes())
        _need(machine, SPOKEN + ["@/said.wav", "tags", "learn", "--contact", contact,
                                 "--number", kind], 1000 * number)
    name, tag = sorted(read_store(machine.tree()).tags.items())[-1]
    for arguments in (["connection", "set", "baud-rate=4800"],
                      ["backup", "@/all.tar"],
                      ["backup", "@/old.tar"],
                      ["--yes", "tags", "delete", name],
                      ["connection", "set", "baud-rate=19200"],
                      ["template", "learn", "@/old.wav", "@/old.st"],
                      ["registry", "export", "@/old.reg"]):
        _need(machine, arguments, 5000)
    return machine.tree(), {name: tag}


def _need(machine, arguments, time):
    run = machine.run(arguments, time=time)
    if run.exit != 0:
        raise RuntimeError(f"{' '.join(arguments)} failed: {run.err}")


def _take_templates(tree):
    """One template is missing, another torn."""
    changed = dict(tree)
    templates = sorted(path for path in tree if path.startswith(TEMPLATES))
    del changed[templates[0]]
    changed[templates[1]] = tree[templates[1]][:100]
    return changed


def _say_another_name(tree):
    """The second tag sounds like the first: the backup has it as it was."""
    changed = dict(tree)
    first, second = sorted(read_store(tree).tags)[:2]
    for folder, end in ((WAVES, ".wav"), (TEMPLATES, ".st")):
        changed[folder + second + end] = tree[folder + first + end]
    return changed


def all_commands(tree, trashed):
    names = sorted(read_store(tree).tags)
    one = names[1]
    gone = list(trashed)[0]
    commands = [
        Command("tags learn", SPOKEN + ["@/microphone.wav", "tags", "learn", "--contact",
                                        "Anna Berg"], sides=["heard.wav"]),
        Command("tags delete", ["--yes", "tags", "delete", one], objects=[one]),
        Command("tags delete-all", ["--yes", "tags", "delete-all"], objects=names),
        Command("tags restore", ["tags", "restore", gone]),
        Command("tags trash --empty", ["--yes", "tags", "trash", "--empty"], empties=True),
        Command("check --repair", ["check", "--repair"], rewrites=True, prepare=_take_templates),
        Command("reinit --force", ["reinit", "--force"], rewrites=True),
        Command("backup", ["backup", "@/old.tar"], targets=["old.tar"]),
        Command("restore", ["restore", "@/all.tar"], prepare=_say_another_name, exit=1),
        Command("restore --yes", ["--yes", "restore", "@/all.tar"], objects=[one], groups=True,
                replaces=True, prepare=_say_another_name),
        Command("registry import", ["registry", "import", "@/change.reg"], groups=True),
        Command("registry export FILE", ["registry", "export", "@/old.reg"], targets=["old.reg"]),
        Command("connection set", ["connection", "set", "baud-rate=9600", "data-bits=7"],
                groups=True),
        Command("wave record", ["--microphone", "@/microphone.wav", "wave", "record", "@/old.wav"],
                targets=["old.wav"]),
        Command("template learn", ["template", "learn", "@/take.wav", "@/old.st"],
                targets=["take.wav", "old.st"]),
        Command("template process", ["template", "process", "@/other.wav", "@/old.st"],
                targets=["old.st"]),
        Command("language template", ["language", "template", "@/new.lng"], targets=["new.lng"]),
    ]
    for name, *arguments in (
            ("tags learn", "--contacts", "@/contacts.vcf", "tags", "learn", "--contact", "Anna Berg"),
            ("wave record", "wave", "record", "@/old.wav")):
        commands.append(Command(name + WITH_DEVICES, arguments,
                                targets=["old.wav"] if "@/old.wav" in arguments else []))
    for command in commands:
        command.trashed = trashed
    for arguments in (["tags", "list", "--json"], ["tags", "trash", "--json"], ["contacts", "list", "--json"],
                      ["tags", "test", "--json"], ["status"], ["check", "--json"],
                      ["registry", "export"], ["template", "show", "@/old.st"],
                      ["wave", "check", "@/take.wav"]):
        commands.append(Command(" ".join(arguments).replace("@/", ""), arguments, changes=False,
                                reports=arguments == ["status"]))
    for arguments in (["wave", "play", "@/take.wav"], ["tags", "play", one]):
        commands.append(Command(" ".join(arguments[:2]) + WITH_DEVICES, arguments, changes=False, plays=True))
    # A voice tag or a cue that cannot be used is warned of. Whoever is called stays the same.
    commands.append(Command("dial", SPOKEN + ["@/microphone.wav", "--yes", "--json", "dial", "--way",
                                              "print"], changes=False, essence=_who_is_called))
    return commands


def _who_is_called(output):
    steps = [json.loads(line) for line in output.splitlines()]
    return [step["candidates"][0]["contact"] for step in steps if step.get("step") == "called"]
