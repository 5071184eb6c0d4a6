"""What may be left of a store after a fault."""

import contextlib
import re
import sqlite3
import struct
import tempfile
import typing

DATA = "root/Program Files/Zedra Tech./Zedra Voxtrel/"
WAVES = DATA + "Voxtrel_wav/"
TEMPLATES = DATA + "Voxtrel_stor/"
TAG_KEY = "Software\\Zedra\\Zedra Voxtrel"
# The serial ports of the machine, which every look at the connection settings lists again.
PORTS = "Drivers\\"
VERSION = ("Software\\Zedra\\VoxtrelPEIni", "Version_Math")
TRASH = "root/Voxtrel Trash/"
STATE_KEY = "Registry\\"
UNDONE = "Undo"  # Stands for a group of changes that is neither made nor undone.
# Names that a kill can leave, which the next command that changes something takes away.
PASSING = re.compile(r"root/(.*/)?(\.voxtrel-[^/]*|[^/]*\.(part|deleting|restoring))")


class Store(typing.NamedTuple):
    """A tree as the companion sees it."""
    tags: dict       # name -> (entry, recording, template); a part that is not there is None.
    orphans: list    # Files in the documented folders that belong to no entry.
    settings: dict   # (key, value) -> (type, bytes), without tags and ports.
    trashed: int     # How many things the trash holds.
    unreadable: str  # Why the settings cannot be read; empty if they can.
    isHalf: bool     # Whether a group of changes is to be undone.


def _read_registry(tree):
    """(key, value) -> (type, data), with (key, None) for the key itself."""
    if "root/state" in tree:
        return _read_state(tree["root/state"].decode())
    if "root/registry.db" not in tree:
        return {}
    with tempfile.TemporaryDirectory(dir=scratch) as folder:
        for name in ("registry.db", "registry.db-wal"):
            if tree.get("root/" + name) is not None:
                with open(f"{folder}/{name}", "wb") as file:
                    file.write(tree["root/" + name])
        with contextlib.closing(sqlite3.connect(f"{folder}/registry.db")) as database:
            if database.execute("PRAGMA integrity_check").fetchone() != ("ok",):
                raise sqlite3.DatabaseError("the database is damaged")
            found = {}
            if not database.execute(
                    "SELECT 1 FROM sqlite_master WHERE name = 'registry_path'").fetchone():
                return found
            for path, name, kind, data in database.execute(
                    "SELECT path, value.name, type, data FROM registry_path AS path "
                    "LEFT JOIN registry_value AS value ON value.key_id = path.key_id"):
                found[path, None] = None
                if name is not None:
                    found[path, name] = (kind, data)
            return found


def _read_state(state):
    """The registry of Windows, as windows_registry.cpp keeps it."""
    found = {}
    for line in state.splitlines():
        kind, path, *value = line.split(" ")
        path = _text(path)
        if not path.startswith(STATE_KEY):
            if path.startswith("Undo\\"):
                found[UNDONE, None] = None
            continue
        found[path.removeprefix(STATE_KEY), None] = None
        if kind == "V":
            found[path.removeprefix(STATE_KEY), _text(value[0])] = (
                int(value[1]), bytes.fromhex(value[2][:-1]))
    return found


def _text(digits):
    return bytes.fromhex(digits[:-1]).decode("utf-16-le", "surrogatepass")


scratch = None  # Folder for what is looked at; the system's if it is not set.
_registries = {}  # A store is read once, however many trees it is part of.


def read_store(tree):
    key = hash(tuple(map(tree.get, ("root/registry.db", "root/registry.db-wal", "root/state"))))
    if key not in _registries:
        try:
            _registries[key] = (_read_registry(tree), "")
        except sqlite3.Error as error:
            _registries[key] = ({}, str(error))
    registry, unreadable = _registries[key]
    entries = {}
    settings = {}
    for (path, name), value in registry.items():
        if path.startswith(TAG_KEY + "\\"):
            entry = entries.setdefault(path.removeprefix(TAG_KEY + "\\"), {})
            if name is not None:
                entry[name] = value
        elif name is not None and not path.startswith(PORTS):
            settings[path, name] = value
    tags = {name: (entry, tree.get(f"{WAVES}{name}.wav"),
                   _without_rest(tree.get(f"{TEMPLATES}{name}.st")))
            for name, entry in entries.items()}
    orphans = [path for path in tree if path.startswith((WAVES, TEMPLATES))
               and path.rpartition("/")[2].rpartition(".")[0] not in entries]
    trashed = sum(path.startswith(TRASH) and path.endswith(".tar") for path in tree)
    return Store(tags, orphans, settings, trashed, unreadable, (UNDONE, None) in registry)


def _without_rest(template):
    """What follows the values of a template is no part of it."""
    if template is None or len(template) < 6:
        return template
    return template[:6 + 4 * struct.unpack_from("<I", template)[0]]


def is_whole(tag):
    entry, wave, template = tag
    return (len(entry) == 2 and all(len(data) == 100 for _, data in entry.values())
            and is_whole_wave(wave) and is_whole_template(template))


def is_whole_wave(wave):
    return (wave is not None and len(wave) >= 44 and wave[:4] == b"RIFF"
            and struct.unpack_from("<I", wave, 40)[0] + 44 == len(wave))


def is_whole_template(template):
    if template is None or len(template) < 6:
        return False
    count, frames = struct.unpack_from("<IH", template)
    return count == frames * 5 > 0 and len(template) == 6 + 4 * count


def _lies_in_trash(tag, tree):
    """Whether an archive holds the tag's recording and its template."""
    return any(path.startswith(TRASH) and path.endswith(".tar")
               and all(part is None or part in content for part in tag[1:])
               for path, content in tree.items())


def what_may_be_left(command, before, after, done, recovered, restored, destroyed=()):
    """Returns what may not be left, as sentences.

    command    what it changes (commands.py)
    before     the tree before the command
    after      the tree after the fault
    done       the tree after the same command without a fault
    recovered  the tree after the next command that changes something; None if it failed
    restored   name of a tag -> that tag after `tags restore NAME`, for what was or is deleted
    destroyed  tags that may be gone for good, since the disk was full
    """
    wrong = []
    was, now, will = read_store(before), read_store(after), read_store(done)
    end = read_store(recovered) if recovered is not None else None
    for word, store in (("", now), (" after the next command", end)):
        if store is None:
            continue
        if store.unreadable:
            wrong.append(f"the settings cannot be read{word}: {store.unreadable}")
            continue
        # Tags that the command is not about stay as they are.
        for name in was.tags.keys() - set(command.objects):
            tag, old, new = store.tags.get(name), was.tags[name], will.tags.get(name)
            if tag is None or tag[0] != old[0]:
                wrong.append(f"the entry of another tag is lost or changed{word}")
            elif command.rewrites:
                # A template goes and comes again; what is missing or torn is made again later.
                if tag[1] not in (old[1], new[1]):
                    wrong.append(f"a recording is neither the old nor the new one{word}")
                if store is end and not is_whole_template(tag[2]):
                    wrong.append("a template was not made again")
            elif tag != old:
                wrong.append(f"another tag's files are lost or changed{word}")
        # New tags are whole, or are none; but a registry without transactions has half a group until
        # the next command.
        for name in store.tags.keys() - was.tags.keys() - set(command.trashed):
            if not store.isHalf and not is_whole(store.tags[name]):
                wrong.append(f"a new entry is there without its files{word}")
        # Each setting is the old one or the new one; a group of them changes as one.
        for key in store.settings.keys() | was.settings.keys() if not store.isHalf else ():
            if command.rewrites and key == VERSION:
                continue  # Says that templates are to be made again until they were.
            if store.settings.get(key) not in (was.settings.get(key), will.settings.get(key)):
                wrong.append(f"the setting {key[1]} is neither the old nor the new one{word}")
        changed = {key for key in will.settings.keys() | was.settings.keys()
                   if will.settings.get(key) != was.settings.get(key)}
        if command.groups and not store.isHalf and len({store.settings.get(key) == will.settings.get(key)
                                   for key in changed}) > 1:
            wrong.append(f"settings that belong together were stored in part{word}")
    # An object of a deletion, and what lies in the trash: whole here, or whole there.
    for name, tag in command.whole_tags(was).items():
        if end is not None and name in end.tags:
            if command.replaces and end.tags[name] == will.tags.get(name) != tag:
                if not _lies_in_trash(tag, recovered):
                    wrong.append("a replaced tag is not in the trash")
            elif end.tags[name] != tag:
                wrong.append("a tag came out of a deletion or of the trash incomplete")
        elif restored.get(name) != tag and name not in destroyed:
            if not command.empties or restored.get(name) is not None:
                wrong.append("a deleted tag is not in the trash as it was")
    if end is not None and not end.unreadable:
        if end.isHalf:
            wrong.append("a group of changes is neither made nor undone")
        for path in end.orphans:
            wrong.append("a file without an entry stays: " + path.rpartition(".")[2])
        wrong += [f"a passing name stays: {path}" for path in recovered if PASSING.fullmatch(path)]
    # Files outside the root: the old one or the new one.
    for path in command.targets + command.sides:
        if after.get(path) not in (before.get(path), done.get(path)):
            wrong.append(f"{path} is neither the old nor the new one")
    return wrong


def is_done(command, after, done, destroyed=()):
    """Whether the command did what it was asked for."""
    now, will = read_store(after), read_store(done)
    return (now.settings == will.settings
            and sorted(map(repr, now.tags.values())) == sorted(map(repr, will.tags.values()))
            and now.orphans == will.orphans
            # One copy more does no harm.
            and (now.trashed == 0 if command.empties
                 else now.trashed >= will.trashed - len(destroyed))
            and all(after.get(path) == done.get(path) for path in command.targets))
