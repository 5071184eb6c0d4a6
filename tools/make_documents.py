#!/usr/bin/env python3
"""Makes manual pages and completions for shells out of what the programs say of themselves.

    tools/make_documents.py --version 3.0.0 FOLDER PROGRAM...

Each program is asked for its help, and for that of each of its commands. So pages and completions
are never out of step with it. FOLDER gets man1/, bash/, zsh/ and fish/.
"""

import argparse
import dataclasses
import gzip
import pathlib
import re
import subprocess

# What an option takes, by which a shell knows that it is a file.
FILES = {"FILE", "PATH", "eds|PATH", "BOOK", "TEXT:PATH(existing)"}
FOLDERS = {"DIR", "FOLDER", "ROOT"}


@dataclasses.dataclass
class Option:
    names: list  # As typed: "-h", "--help".
    value: str   # "DIR"; empty for a flag.
    about: str
    environment: str = ""


@dataclasses.dataclass
class Command:
    words: list  # From the program on: ["voxtrel", "tags", "learn"].
    about: str = ""
    usage: str = ""
    positionals: list = dataclasses.field(default_factory=list)  # (name, about)
    options: list = dataclasses.field(default_factory=list)
    shared: list = dataclasses.field(default_factory=list)       # Options of every command.
    subcommands: list = dataclasses.field(default_factory=list)  # (name, about)
    examples: list = dataclasses.field(default_factory=list)     # (line, meaning)
    rest: list = dataclasses.field(default_factory=list)         # Further paragraphs.
    children: list = dataclasses.field(default_factory=list)

    @property
    def title(self):
        return "-".join(self.words)


def ask(program, words):
    run = subprocess.run([program, *words[1:], "--help"], capture_output=True, text=True, check=True,
                         env={"LC_ALL": "C.UTF-8", "PATH": "/usr/bin:/bin", "HOME": "/"})
    return run.stdout


def entries(lines):
    """(what stands at the left, what is said of it) of a section of the help."""
    found = []
    for line in lines:
        if line.startswith(" " * 20) and found:
            found[-1][1] += " " + line.strip()
        elif line.startswith("  "):
            left, _, right = line.strip().partition("  ")
            found[-1:] = found[-1:] + [[left.strip(), right.strip()]]
    return [(left, right.strip()) for left, right in found]


def to_option(left, about):
    environment = re.search(r"\(Env:(\w+)\)", left)
    left = re.sub(r"\(Env:\w+\)|(?:Excludes|Needs):(?: -\S+)+|REQUIRED|\.\.\.", "", left).split()
    return Option(left[0].split(","), left[1] if len(left) > 1 else "", about,
                  environment.group(1) if environment else "")


def parse(words, text):
    command = Command(words)
    section = []
    sections = [("", section)]
    for line in text.splitlines():
        if re.fullmatch(r"\S.*:", line):
            section = []
            sections.append((line[:-1], section))
        elif line.startswith("Usage: "):
            command.usage = line.removeprefix("Usage: ")
        elif line and not line.startswith(" ") and sections[-1][0]:
            sections.append(("", [line]))  # A paragraph after the sections.
        else:
            section.append(line)
    for name, lines in sections:
        if name == "Options":
            command.options = [to_option(*entry) for entry in entries(lines)]
        elif name == "Options of every command":
            command.shared = [to_option(*entry) for entry in entries(lines)]
        elif name == "Positionals":
            command.positionals = [(re.sub(r" ?(TEXT\S*|REQUIRED|Excludes: \S+|\.\.\.)", "", left), about)
                                   for left, about in entries(lines)]
        elif name == "Subcommands":
            command.subcommands = entries(lines)
        elif name == "Examples":
            command.examples = entries(lines)
        elif name:
            command.rest.append((name, entries(lines)))
        else:
            words_of_text = " ".join(line.strip() for line in lines if line.strip())
            if not command.about:
                command.about = words_of_text
            elif words_of_text:
                command.rest.append((words_of_text, []))
    return command


def read(program, words):
    command = parse(words, ask(program, words))
    command.children = [read(program, words + [name]) for name, _ in command.subcommands]
    return command


def every(command):
    yield command
    for child in command.children:
        yield from every(child)


# Manual pages


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return "\\&" + text if text.startswith((".", "'")) else text


def option_lines(options):
    lines = []
    for option in options:
        value = f" \\fI{roff(option.value)}\\fR" if option.value else ""
        names = ", ".join(f"\\fB{roff(name)}\\fR{value}" for name in option.names)
        about = option.about
        if option.environment:
            about += f". The variable {option.environment} says the same"
        lines += [".TP", names, roff(about) + "."]
    return lines


def synopsis(command):
    return (f"\\fB{roff(' '.join(command.words))}\\fR "
            + roff(command.usage.removeprefix(" ".join(command.words)).strip()))


def manual(command, version, root, twin=None):
    """The page of a command. `twin` is a command of another program that has the same title:
    `voxtrel panel` starts voxtrel-panel."""
    first = command.about[:1].lower() + command.about[1:].rstrip(".")
    lines = [f'.TH "{command.title.upper()}" "1" "" "Voxtrel {version}" "User Commands"',
             ".SH NAME", f"{roff(command.title)} \\- {roff(first)}",
             ".SH SYNOPSIS", synopsis(command), *([".br", synopsis(twin)] if twin else []),
             ".SH DESCRIPTION", roff(command.about.rstrip(".")) + "."]
    if twin:
        lines += [".PP", f"\\fB{roff(' '.join(twin.words))}\\fR: {roff(twin.about.rstrip('.'))}."]
    if command.positionals:
        for name, about in command.positionals:
            lines += [".TP", f"\\fI{roff(name)}\\fR", roff(about) + "."]
    group = twin or command
    if group.subcommands:
        lines.append(".SH COMMANDS")
        for name, about in group.subcommands:
            lines += [".TP", f"\\fB{roff(' '.join(group.words + [name]))}\\fR", roff(about) + ".",
                      f"See \\fB{roff(group.title + '-' + name)}\\fR(1)."]
    if command.options:
        lines += [".SH OPTIONS", *option_lines(command.options)]
    if command.shared:
        lines += [".SS Options of every command", *option_lines(command.shared)]
    for heading, found in command.rest:
        if not found:
            status = heading.startswith("Exit codes: ")
            lines += [".SH EXIT STATUS" if status else ".SH NOTES",
                      roff(heading.removeprefix("Exit codes: "))]
            continue
        lines += [".SH NOTES", roff(heading) + ":"]
        for left, right in found:
            lines += [".TP", f"\\fB{roff(left)}\\fR", roff(right) + "."]
    if command.examples:
        lines.append(".SH EXAMPLES")
        for line, meaning in command.examples:
            lines += [".TP", f"\\fB{roff(line)}\\fR", roff(meaning) + "."]
    others = [each.title for each in root.children] if command is root else [root.title]
    if others:
        lines += [".SH SEE ALSO", ",\n".join(f"\\fB{roff(each)}\\fR(1)" for each in others)]
    return "\n".join(lines) + "\n"


# Completions


def takes(value):
    return "files" if value in FILES else "folders" if value in FOLDERS else "words"


def all_options(command):
    return command.options + command.shared


def path_of(command):
    return " ".join(command.words[1:])


def options_with_values(root):
    return {name: takes(option.value) for command in every(root) for option in all_options(command)
            if option.value for name in option.names}


def case_of_path(root):
    """Lines of a shell function that walk over the words of the line up to the cursor. The variable
    is not called "path", which zsh ties to the search path."""
    known = " | ".join(f"'{path_of(command)}'" for command in every(root) if path_of(command))
    skipped = " | ".join(sorted(options_with_values(root)))
    lines = []
    if skipped:
        lines.append(f"      {skipped}) skip=1 ;;")
    lines.append("      -*) ;;")
    if known:
        lines.append(f'      *) case "${{at:+$at }}$word" in {known}) at="${{at:+$at }}$word" ;; esac ;;')
    return lines


def bash(root):
    name = root.words[0]
    function = "_" + name.replace("-", "_")
    lines = [f"# bash completion for {name}", f"{function}() {{",
             '  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}',
             "  local at= word words= files= skip= i", "  COMPREPLY=()",
             "  for ((i = 1; i < COMP_CWORD; i++)); do", "    word=${COMP_WORDS[i]}",
             "    if [ -n \"$skip\" ]; then skip=; continue; fi", '    case "$word" in',
             *case_of_path(root), "    esac", "  done",
             '  case "$prev" in']
    for kind, flag in (("files", "-f"), ("folders", "-d")):
        names = sorted(each for each, value in options_with_values(root).items() if value == kind)
        if names:
            lines.append(f'    {" | ".join(names)}) mapfile -t COMPREPLY < '
                         f'<(compgen {flag} -- "$cur"); compopt -o filenames 2>/dev/null; return ;;')
    names = sorted(each for each, value in options_with_values(root).items() if value == "words")
    if names:
        lines.append(f'    {" | ".join(names)}) return ;;')
    if lines[-1].endswith("in"):
        lines.append("    *) ;;")
    lines += ["  esac", '  case "$at" in']
    for command in every(root):
        words = [each for each, _ in command.subcommands]
        words += [each for option in all_options(command) for each in option.names]
        files = " files=1" if command.positionals else ""
        lines.append(f"    '{path_of(command)}') words='{' '.join(words)}'{files} ;;")
    lines += ["  esac", '  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")',
              '  if [ -n "$files" ] && [ "${cur#-}" = "$cur" ]; then',
              '    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$cur")',
              "    compopt -o filenames 2>/dev/null", "  fi", "}",
              f"complete -F {function} {name}"]
    return "\n".join(lines) + "\n"


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh(root):
    name = root.words[0]
    lines = [f"#compdef {name}", "", "local at= word skip= files=", "local -a commands options",
             "local -i i", "for ((i = 2; i < CURRENT; i++)); do", "  word=${words[i]}",
             '  if [[ -n $skip ]]; then skip=; continue; fi', "  case $word in",
             *[line[2:] for line in case_of_path(root)],
             "  esac", "done", "case ${words[CURRENT-1]} in"]
    for kind, action in (("files", "_files"), ("folders", "_files -/"), ("words", "_message value")):
        names = sorted(each for each, value in options_with_values(root).items() if value == kind)
        if names:
            lines.append(f"  {'|'.join(names)}) {action}; return ;;")
    lines += ["esac", "case $at in"]
    for command in every(root):
        lines.append(f"  '{path_of(command)}')")
        described = [quoted(f"{each}:{about}") for each, about in command.subcommands]
        lines.append("    commands=(" + " ".join(described) + ")")
        described = [quoted(f"{each}:{option.about}") for option in all_options(command)
                     for each in option.names]
        lines.append("    options=(" + " ".join(described) + ")")
        if command.positionals:
            lines.append("    files=1")
        lines.append("    ;;")
    lines += ["esac", "if [[ $PREFIX == -* ]]; then", "  _describe option options",
              "else", "  (( $#commands )) && _describe command commands",
              "  [[ -n $files ]] && _files", "fi", "return 0"]
    return "\n".join(lines) + "\n"


def fish(root):
    name = root.words[0]
    function = "__" + name.replace("-", "_") + "_path"
    known = " ".join(f"'{path_of(command)}'" for command in every(root) if path_of(command))
    valued = " ".join(sorted(options_with_values(root))) or "''"
    lines = [f"# fish completion for {name}", f"function {function}",
             "    set -l path ''", "    set -l skip ''",
             "    for word in (commandline -opc)[2..-1]", "        if test -n \"$skip\"",
             "            set skip ''", "            continue", "        end",
             f"        if contains -- $word {valued}", "            set skip 1",
             "        else if not string match -q -- '-*' $word",
             "            set -l longer (string trim -- \"$path $word\")",
             f"            contains -- $longer {known or quoted('')}; and set path $longer",
             "        end", "    end", "    echo -- $path", "end", ""]
    for command in every(root):
        here = quoted(f'test "$({function})" = "{path_of(command)}"')
        at = f"complete -c {name} -n {here}"
        if not command.positionals:
            lines.append(f"{at} -f")
        for each, about in command.subcommands:
            lines.append(f"{at} -a {quoted(each)} -d {quoted(about)}")
        for option in all_options(command):
            for each in option.names:
                flag = "-l" if each.startswith("--") else "-s"
                value = {"files": " -r -F", "folders": " -x -a '(__fish_complete_directories)'",
                         "words": " -x"}[takes(option.value)] if option.value else ""
                lines.append(f"{at} {flag} {each.lstrip('-')}{value} -d {quoted(option.about)}")
    return "\n".join(lines) + "\n"


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--version", required=True)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("programs", nargs="+")
    options = parser.parse_args()
    roots = [read(program, [pathlib.Path(program).name]) for program in options.programs]
    programs = {root.title: root for root in roots}
    commands = {command.title: command for root in roots for command in every(root)
                if command is not root}
    for root in roots:
        name = root.title
        for command in every(root):
            if command is not root and command.title in programs:
                continue  # It is on the page of that program.
            twin = commands.get(command.title) if command is root else None
            page = manual(command, options.version, root, twin).encode()
            path = options.folder / "man1" / f"{command.title}.1.gz"
            path.parent.mkdir(parents=True, exist_ok=True)
            with open(path, "wb") as file, gzip.GzipFile("", "wb", 9, file, 0) as packed:
                packed.write(page)
        write(options.folder / "bash" / name, bash(root))
        write(options.folder / "zsh" / f"_{name}", zsh(root))
        write(options.folder / "fish" / f"{name}.fish", fish(root))


if __name__ == "__main__":
    main()
