#!/usr/bin/env python3
"""Keeps the translations of our own texts.

  translations.py update          adds the texts of resources/*_strings.h to resources/translations/*.po,
                                  and takes out those that are no longer there
  translations.py check           fails if a text has no translation, or one with other places to fill in
  translations.py tables FILE     writes the tables that resources/translations.cpp includes
"""
import pathlib
import re
import sys

RESOURCES = pathlib.Path(__file__).resolve().parent.parent / "resources"
LANGUAGES = ("de", "es", "fr", "ru", "zh-Hans")  # resources::kLanguages
LITERAL = r'"(?:[^"\\]|\\.)*"'
PLACES = re.compile(r"%(?:\d|d|n)")


def unquoted(literals):
    """Returns the text of adjacent literals of C++ or of a catalogue, which share their escapes."""
    text = "".join(literal[1:-1] for literal in re.findall(LITERAL, literals))
    return re.sub(r"\\(.)", lambda m: {"n": "\n", "t": "\t"}.get(m.group(1), m.group(1)), text)


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def own_texts():
    """Returns {text: names of its constants}, in the order of the headers. Fails if two headers have a
    constant of one name: a program would show one of the texts for both."""
    texts = {}
    headers = {}
    for header in sorted(RESOURCES.glob("*_strings.h")):
        code = re.sub(r"^\s*//.*$", "", header.read_text(encoding="utf-8"), flags=re.M)
        for name, value in re.findall(rf'inline constexpr \S+ (k\w+) =\s*((?:[^;"]|{LITERAL})*);', code):
            if headers.setdefault(name, header.name) != header.name:
                sys.exit(f"{name} is in {headers[name]} and in {header.name}")
            for literals in re.findall(rf'(?:u{LITERAL}\s*)+', value):
                if text := unquoted(literals):
                    texts.setdefault(text, []).append(name)
    return texts


def catalogue(language):
    return RESOURCES / "translations" / f"{language}.po"


def read_entries(path):
    """Returns {text: translation} of a catalogue. Returns nothing if it is not there."""
    if not path.exists():
        return {}
    entries = re.findall(rf"^msgid ((?:{LITERAL}\s*)+)^msgstr ((?:{LITERAL}\s*)+)",
                         path.read_text(encoding="utf-8"), flags=re.M)
    return {unquoted(text): unquoted(translation) for text, translation in entries}


def read_catalogue(language):
    return read_entries(catalogue(language))


def write_entries(path, language, notes):
    """Writes a catalogue of the texts {text: the note above it}, with the translations that it had."""
    known = read_entries(path)
    lines = ['msgid ""', 'msgstr ""', '"MIME-Version: 1.0\\n"', f'"Language: {language.replace("-", "_")}\\n"',
             '"Content-Type: text/plain; charset=UTF-8\\n"', '"Content-Transfer-Encoding: 8bit\\n"']
    for text, note in notes.items():
        lines += ["", f"#: {note}", f"msgid {quoted(text)}", f"msgstr {quoted(known.get(text, ''))}"]
    path.parent.mkdir(exist_ok=True)
    path.write_text("\n".join(lines) + "\n", encoding="utf-8")


def find_faults(path, language, texts, parts, called):
    """Returns a line for each text without a translation, and for each translation that does not have the
    same parts, which are `called` so."""
    known = read_entries(path)
    for text in texts:
        translation = known.get(text, "")
        if not translation:
            yield f"{language}: no translation of {quoted(text)}"
        elif sorted(parts.findall(text)) != sorted(parts.findall(translation)):
            yield f"{language}: other {called}: {quoted(translation)}"


def report(faults):
    for fault in faults:
        print(fault)
    return 1 if faults else 0


def update():
    notes = {text: " ".join(names) for text, names in own_texts().items()}
    for language in LANGUAGES:
        write_entries(catalogue(language), language, notes)
    return 0


def check():
    texts = own_texts()
    return report([fault for language in LANGUAGES
                   for fault in find_faults(catalogue(language), language, texts, PLACES, "places to fill in")])


class Words:
    """The texts of a table one after the other, each once."""

    def __init__(self):
        self.lines = []
        self._places = {}
        self._length = 0

    def place(self, text):
        """Returns where the text stands, and its length, in units of UTF-16."""
        if text not in self._places:
            length = len(text.encode("utf-16-be")) // 2
            self._places[text] = f"{{{self._length}, {length}}}"
            self._length += length
            self.lines.append(f"    u{quoted(text)}")
        return self._places[text]


def write_tables(path):
    texts = own_texts()
    lines = []
    for number, language in enumerate(LANGUAGES):
        known = {text: t for text, t in read_catalogue(language).items() if t and text in texts}
        words = Words()  # All languages together are too long for one literal.
        table = [f"constexpr std::array<Translation, {len(known)}> kTable{number} = {{{{"]
        for text in sorted(known, key=lambda text: text.encode("utf-16-be")):
            table.append(f"    {{{words.place(text)}, {words.place(known[text])}}},")
        table.append("}};")
        lines += [f"constexpr char16_t kWords{number}[] =", *(words.lines or ['    u""']), ";", *table]
    tables = ", ".join(f"Table{{kWords{number}, kTable{number}}}" for number in range(len(LANGUAGES)))
    lines.append(f"constexpr std::array<Table, {len(LANGUAGES)}> kTranslations = {{{tables}}};")
    pathlib.Path(path).write_text("\n".join(lines) + "\n", encoding="utf-8")
    return 0


def run(actions, usage):
    """Does what the command line names. Returns its exit code. `actions` are {name: function}."""
    name, *arguments = sys.argv[1:] or [""]
    action = actions.get(name)
    if action is None or len(arguments) != action.__code__.co_argcount:
        print(usage, file=sys.stderr)
        return 2
    return action(*arguments)


if __name__ == "__main__":
    sys.exit(run({"update": update, "check": check, "tables": write_tables}, __doc__))
