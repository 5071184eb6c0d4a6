#!/usr/bin/env python3
"""Has commands of the real program fail in every way, and looks at what is left.

Every command that changes something is killed before each call that changes a file and in the
middle of each write; each of its calls on files fails, once and from then on, with each error that it
can have; so does each of its calls of wave devices, which can also keep what they were given; each of
its allocations fails; and the power is cut after each change, with what was not synced lost in several
ways. What may be left says what_may_be_left in judge.py. Commands that only
read have failing calls and allocations; they end with the right answer or with a message, and change
nothing.
"""

import argparse
import collections
import multiprocessing
import os
import pathlib
import sys
import tempfile
import time

import judge
from commands import all_commands, make_tree
from machine import Machine
from power import states_after_power_cuts
from windows_machine import WindowsMachine

# What a user does after a failure; each mends what it is for.
NEXT_COMMANDS = [["check", "--repair"], ["reinit"]]
KINDS = ["kill", "power", "call", "sound", "memory"]
# --part tries one point of a kind in so many. The number is odd, so that it meets failures that happen
# once as well as those that stay: they take turns.
PART = {"kill": 17, "power": 9, "call": 121, "sound": 121, "memory": 841}
LATER = 100_000  # Seconds on the clock when a tried command begins.


class Trial:
    """One command on one machine: what it finds, and what it does without a fault."""

    def __init__(self, machine, tree, command):
        self.machine = machine
        self.command = command
        self.before = command.prepare(tree) if command.prepare else tree
        machine.restore(self.before)
        self.run = machine.run(command.arguments, time=LATER, logs=True)
        self.calls = machine.calls()
        self.heard = machine.heard()
        self.done = machine.tree()
        self.verdicts = {}  # Of states that were met before.
        self.problem = ""
        self.answers = set() if command.changes else self._right_answers()
        if self.run.exit != command.exit:
            self.problem = f"exit {self.run.exit} without a fault: {self.run.err}"

    def _right_answers(self):
        """As a user may get them: a locale that cannot be loaded is the plain one, and tags are
        listed without contacts that cannot be read, which is said."""
        plain = self.machine.run(self.command.arguments, time=LATER, locale="C").out
        self.machine.restore({path: content for path, content in self.before.items()
                              if path != "contacts.vcf"})
        self.without_contacts = self.machine.run(self.command.arguments, time=LATER).out
        return {self.run.out, plain}

    def points(self):
        """Every fault, as (kind, what the library or the disk is asked for)."""
        if self.command.changes:
            changes = [call for call in self.calls if call.changes]
            for number, call in enumerate(changes, 1):
                yield "kill", f"kill:{number}"
                if call.kind == "write" and len(call.data) > 1:
                    yield "kill", f"tear:{number}"
        if self.command.changes and "power" in self.machine.kinds:
            for index, _ in enumerate(self._cuts()):
                yield "power", str(index)
        for name, error in self.machine.errors.items():
            for number in range(1, 1 + sum(name in call.errors for call in self.calls)):
                kind = "sound" if name in self.machine.sound_errors else "call"
                yield kind, f"once:{number}:{error}"
                yield kind, f"ever:{number}:{error}"
        for fault in self.machine.faults_of_devices(self.calls):
            yield "sound", fault
        for number in range(1, 1 + self.calls[-1].number if "memory" in self.machine.kinds else 1):
            yield "memory", f"memory-once:{number}"
            yield "memory", f"memory-ever:{number}"

    def _cuts(self):
        if not hasattr(self, "_states"):
            self._states = list(states_after_power_cuts(self.before, self.calls, self.command.name))
        return self._states

    def try_point(self, kind, fault):
        """Returns what is wrong, as sentences."""
        if kind == "power":
            cut, is_last, word, after = self._cuts()[int(fault)]
            wrong = [f"{sentence} (cut {cut}: {word})" if self.explains else sentence
                     for sentence in self._judge(after)]
            if is_last and not judge.is_done(self.command, after, self.done):
                wrong.append("what was reported as done is lost")
            return wrong
        self.machine.restore(self.before)
        run = self.machine.run(self.command.arguments, fault, LATER)
        after = self.machine.tree()
        self.last_run = run
        destroyed = self._destroyed(fault, run)
        wrong = self._of_run(kind, fault, run, after, destroyed)
        return wrong + self._judge(after, destroyed) if self.command.changes else wrong

    explains = False

    def _of_run(self, kind, fault, run, after, destroyed):
        # Threads take turns; a run that does not come to the call is one without a fault.
        if kind == "kill" and run.exit == -9:
            return []
        if run.exit is None:
            return ["does not end"]
        if run.exit < 0:
            return [f"ended by signal {-run.exit}"]
        wrong = []
        if run.exit not in (0, 1):
            wrong.append(f"exit {run.exit}")
        if run.exit != 0 and not run.err.strip():
            wrong.append(f"exit {run.exit} without a message")
        if run.exit == 0 and self.command.plays and self.machine.heard() != self.heard:
            wrong.append("exit 0, but it was not heard")
        if self.command.changes:
            if run.exit == 0 and not judge.is_done(self.command, after, self.done, destroyed):
                wrong.append("exit 0, but it was not done")
            left = [path for path in after if path not in self.before and path not in self.done
                    and not path.startswith("root/")]
            if fault.startswith("ever"):
                # What cannot be deleted either stays, under a name that says so.
                left = [path for path in left if not path.startswith(".voxtrel-")]
            wrong += [f"leaves {os.path.basename(path)[:9]}... outside the root" for path in left]
        else:
            if run.exit == 0 and not self._is_right(run):
                wrong.append("exit 0 with another answer")
            wrong += [f"changed {path}" for path in sorted(after.keys() | self.before.keys())
                      if after.get(path) != self.before.get(path)
                      and not path.endswith("-wal")]
        return wrong

    def _is_right(self, run):
        if run.out in self.answers or (run.err and run.out == self.without_contacts):
            return True
        if self.command.essence and run.err:
            return self.command.essence(run.out) == self.command.essence(self.run.out)
        # Each line is as it was, or says instead of a number what cannot be read.
        wanted = self.run.out.splitlines()
        return self.command.reports and all(line in wanted or not line[-1:].isdigit()
                                            for line in run.out.splitlines())

    def _destroyed(self, fault, run):
        """A full disk empties the trash; if that is not enough, it is said that a deleted tag cannot
        be restored."""
        if not fault.endswith(f":{self.machine.errors['ENOSPC']}"):
            return ()
        said = "The disk is full" in run.err and "restored" in run.err
        return tuple(self.command.trashed) + (tuple(self.command.objects) if said else ())

    def _judge(self, after, destroyed=()):
        key = hash((destroyed, *sorted(after.items(), key=lambda item: item[0])))
        if key not in self.verdicts:
            self.verdicts[key] = self._look_closely(after, destroyed)
        return self.verdicts[key]

    def _look_closely(self, after, destroyed):
        machine = self.machine
        wrong = []
        machine.restore(after)
        listing = machine.run(["tags", "list", "--json"], time=LATER + 10)
        if listing.exit != 0:
            wrong.append(f"tags list fails: {_first(listing)}")
        machine.restore(after)
        for number, arguments in enumerate(NEXT_COMMANDS):
            run = machine.run(arguments, time=LATER + 20 + number)
            if run.exit not in (0, 1):
                wrong.append(f"{' '.join(arguments)} afterwards: exit {run.exit}")
        recovered = machine.tree()
        check = machine.run(["check"], time=LATER + 30)
        # A template that was to be made again may be the old one, which is said.
        findings = [line for line in check.out.splitlines() if not line.startswith("Advice: ")]
        may_be_old = self.command.rewrites and all("[template-stale]" in line for line in findings)
        if check.exit != 0 and not may_be_old:
            wrong.append(f"check afterwards: {_first(check)}")
        restored = {}
        for name in self.command.whole_tags(judge.read_store(self.before)):
            if name in judge.read_store(recovered).tags:
                continue
            machine.restore(recovered)
            machine.run(["tags", "restore", name], time=LATER + 40)
            restored[name] = judge.read_store(machine.tree()).tags.get(name)
        return wrong + judge.what_may_be_left(self.command, self.before, after, self.done,
                                              recovered, restored, destroyed)


def _first(run):
    return ((run.out + run.err).strip().splitlines() or [f"exit {run.exit}"])[0]


class Worker:
    def __init__(self, options, number):
        kind = WindowsMachine if options.wine else Machine
        self.machine = kind(options.program, options.wine or options.library,
                            os.path.join(options.folder, f"machine{number:02}"))
        judge.scratch = str(self.machine.folder)
        self.tree, trashed = make_tree(self.machine, pathlib.Path(options.samples))
        self.commands = {command.name: command for command in all_commands(self.tree, trashed)}
        self.name = None
        self.trial = None

    def trial_of(self, name):
        if self.name != name:
            self.trial = Trial(self.machine, self.tree, self.commands[name])
            self.name = name
        return self.trial


worker = None


def start_worker(options, counter):
    global worker
    with counter.get_lock():
        counter.value += 1
        number = counter.value
    worker = Worker(options, number)


def try_point(point):
    name, kind, fault = point
    return point, worker.trial_of(name).try_point(kind, fault)


def read_options():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", required=True)
    way = parser.add_mutually_exclusive_group(required=True)
    way.add_argument("--library", help="the library that makes calls fail")
    way.add_argument("--wine", help="starts the program, which is the one of Windows with faults")
    parser.add_argument("--samples", required=True)
    parser.add_argument("--part", action="store_true",
                        help="try as many points as half a minute has room for: of each kind each "
                        + ", ".join(f"{step}th {kind}" for kind, step in PART.items()))
    parser.add_argument("--every", type=int, default=1, help="try each N-th point (default: all)")
    parser.add_argument("--only", action="append", help="commands whose name begins so")
    parser.add_argument("--kind", choices=KINDS)
    parser.add_argument("--point", help="this one alone, with all that it leaves")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    options.program = os.path.abspath(options.program)
    options.library = options.library and os.path.abspath(options.library)
    return options


def explain(options):
    """Tries one point and shows everything about it."""
    one = Worker(options, 0)
    trial = one.trial_of(options.only[0])
    trial.explains = True
    error = options.point.split(":")[-1]
    names = {str(number): name for name, number in one.machine.errors.items()}
    calls = [call for call in trial.calls
             if (names.get(error) in call.errors if options.kind in ("call", "sound") else call.changes)]
    for number, call in enumerate(calls, 1):
        print(number, call.kind, call.path, call.other, call.number, len(call.data))
    wrong = trial.try_point(options.kind, options.point)
    if options.kind != "power":
        print(f"exit {trial.last_run.exit} (without the fault {trial.run.exit})")
        print(f"--- output\n{trial.last_run.out}--- without the fault\n{trial.run.out}")
        print(f"--- errors\n{trial.last_run.err}--- wrong")
    print("\n".join(wrong))
    return 1 if wrong else 0


def collect(options):
    start_worker(options, multiprocessing.Value("i"))
    points = []
    problems = []
    for name in worker.commands:
        if name.endswith(worker.machine.lacks) or (
                options.only and not name.startswith(tuple(options.only))):
            continue
        trial = worker.trial_of(name)
        if trial.problem:
            problems.append(f"{name}: {trial.problem}")
        points += [(name, kind, fault) for kind, fault in trial.points()
                   if options.kind in (None, kind)]
    return points, problems


def report(counts, violations, seconds):
    print(f"{'':32}" + "".join(f"{kind:>9}" for kind in KINDS) + f"{'wrong':>9}")
    for name, row in counts.items():
        print(f"{name:32}" + "".join(f"{row[kind]:9}" for kind in KINDS) + f"{row['wrong']:9}")
    total = sum(row[kind] for row in counts.values() for kind in KINDS)
    wrong = sum(row["wrong"] for row in counts.values())
    for (name, sentence), points in violations.items():
        kind, fault = points[0]
        print(f"{name}: {sentence}: {len(points)} times, first --kind {kind} --point {fault}")
    print(f"{total} points in {seconds:.0f} s, {wrong} violations")


def main():
    options = read_options()
    place = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    with tempfile.TemporaryDirectory(prefix="voxtrel-faults-", dir=place) as folder:
        options.folder = folder
        if options.point:
            return explain(options)
        begin = time.monotonic()
        all_points, problems = collect(options)
        points = []
        for kind in KINDS:
            step = PART[kind] if options.part else options.every
            points += [point for point in all_points if point[1] == kind][::step]
        points.sort(key=lambda point: point[0])  # A worker makes ready for one command after another.
        print(f"{len(points)} of {len(all_points)} points: " + ", ".join(
            f"{sum(point[1] == kind for point in points)} of "
            f"{sum(point[1] == kind for point in all_points)} {kind}" for kind in KINDS), flush=True)
        counts = collections.defaultdict(collections.Counter)
        violations = collections.defaultdict(list)
        counter = multiprocessing.Value("i", 0)
        with multiprocessing.Pool(options.jobs, start_worker, (options, counter)) as pool:
            for (name, kind, fault), wrong in pool.imap_unordered(try_point, points, 16):
                counts[name][kind] += 1
                counts[name]["wrong"] += bool(wrong)
                for sentence in dict.fromkeys(wrong):
                    violations[name, sentence].append((kind, fault))
        report(counts, violations, time.monotonic() - begin)
        print("\n".join(problems))
        return 1 if violations or problems else 0


if __name__ == "__main__":
    sys.exit(main())
