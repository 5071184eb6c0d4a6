#!/usr/bin/env python3
"""Makes the help page in the other languages.

  help_pages.py update        adds the paragraphs of the English page to resources/translations/help/*.po,
                              and takes out those that are no longer there
  help_pages.py check         fails if a paragraph has no translation, or one with other elements
  help_pages.py write FOLDER  writes the pages, each in a folder of FOLDER named by its language

The English page is the only one that is written by hand. A paragraph without a translation stays
English. What a window shows is looked up in the window's own translations.
"""
import pathlib
import re
import sys

from translations import (LANGUAGES, RESOURCES, find_faults, own_texts, read_catalogue, read_entries, report,
                          run, write_entries)

PAGE = RESOURCES / "help" / "ZedraVoxtrelPE_help.htm"
# The innermost elements that hold text, and the attributes that are read aloud.
BLOCK = re.compile(r"<(title|p|li|th|td|dt|dd|h1|h2|h3|figcaption)\b([^>]*)>(.*?)</\1>", re.S)
SPOKEN = re.compile(r'\b(alt|aria-label)="([^"]*)"')
TAG = re.compile(r"<[^>]*>")
# Of the languages' folders, as the desktop's shell looks for them.
FOLDERS = {"zh-Hans": "zh_CN"}


def one_line(text):
    return " ".join(text.split())


def paragraphs():
    """Returns {paragraph: the element that it is first found in}, in the page's order."""
    page = PAGE.read_text(encoding="utf-8")
    found = {}
    for match in re.finditer(f"{BLOCK.pattern}|{SPOKEN.pattern}", page, re.S):
        text = one_line(match.group(3) or match.group(5) or "")
        if re.search("[A-Za-z]", TAG.sub("", text)):
            found.setdefault(text, match.group(1) or "attribute")
    return found


def catalogue(language):
    return RESOURCES / "translations" / "help" / f"{language}.po"


def read_language_file(suffix):
    """Returns {key: text}. Blanks that do not break a line are blanks here."""
    text = (RESOURCES / "languages" / f"Voxtrel{suffix}.lng").read_text(encoding="utf-16")
    rows = [line.split(None, 1) for line in text.splitlines() if line.startswith("ID_")]
    return {key: one_line(text) for key, text in rows}


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


class Shown:
    """What the windows show in a language. A text that has places to fill in is found filled in, too."""

    def __init__(self, language):
        english, other = read_language_file(""), read_language_file(f".{language}")
        self.of_language_file = {escaped(text): escaped(other[key]) for key, text in english.items()}
        known = read_catalogue(language)
        self.patterns = []
        for text in own_texts():
            plain = one_line(escaped(text.replace("&", "")))
            pattern = re.sub(r"%\\?[1-4d]", "(…|Zedra Voxtrel)", re.escape(plain)).replace(r"\ ", " ")
            translation = re.sub(r"\(&\w\)|&", "", known.get(text, ""))
            letters = re.findall("[A-Za-z]", re.sub("%[1-4d]", "", plain))
            if translation and len(letters) > 4:
                self.patterns.append((re.compile(pattern), text, one_line(escaped(translation))))

    def find(self, text):
        """Returns the text as an own text of ours is shown. Returns None if it is no such text."""
        for pattern, english, translation in self.patterns:
            if match := pattern.fullmatch(text):
                places = re.findall("%[1-4d]", english)
                if len(set(places)) < len(places):
                    return re.sub("%1", lambda _, m=match: m.group(1), translation)
                values = dict(zip(places, match.groups()))
                return re.sub("%[1-4d]", lambda m: values[m.group(0)], translation)
        return None


def translate(page, language):
    known = read_entries(catalogue(language))
    shown = Shown(language)

    def of_block(match):
        element, attributes, text = match.group(1), match.group(2), one_line(match.group(3))
        opening, closing = f"<{element}{attributes}>", f"</{element}>"
        if element == "dt" and text in shown.of_language_file:
            # Without a language file the window shows the English.
            return (f"{opening}{shown.of_language_file[text]}{closing}\n  "
                    f'<dt lang="en">{match.group(3)}</dt>')
        if element == "dt" and (found := shown.find(text)):
            return opening + found + closing
        translation = known.get(text)
        return opening + (translation or match.group(3)) + closing

    page = BLOCK.sub(of_block, page)
    page = SPOKEN.sub(lambda m: f'{m.group(1)}="{known.get(one_line(m.group(2))) or m.group(2)}"', page)
    page = page.replace('src="images/', 'src="../images/')
    return page.replace('<html lang="en">', f'<html lang="{language}">')


def is_looked_up(text, element, shown):
    return element == "dt" and (text in shown.of_language_file or shown.find(text) is not None)


def own_paragraphs(language):
    """Returns those of paragraphs() that have a translation of their own."""
    shown = Shown(language)
    return {text: element for text, element in paragraphs().items() if not is_looked_up(text, element, shown)}


def update():
    for language in LANGUAGES:
        write_entries(catalogue(language), language, own_paragraphs(language))
    return 0


def check():
    return report([fault for language in LANGUAGES
                   for fault in find_faults(catalogue(language), language, own_paragraphs(language), TAG,
                                            "elements")])


def write(folder):
    page = PAGE.read_text(encoding="utf-8")
    for language in LANGUAGES:
        target = pathlib.Path(folder) / FOLDERS.get(language, language) / PAGE.name
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(translate(page, language), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(run({"update": update, "check": check, "write": write}, __doc__))
