#!/usr/bin/python3
"""Judges a labelled set of takes and prints the table of docs/quality.md.

    measure.py JUDGE_TAKES FOLDER    FOLDER: what make_takes.py made
"""

import collections
import subprocess
import sys

LIMITS = {"good": 1.5, "bad": 97.0, "kind": 85.0, "right": 90.0}  # Per cent.


class Count:
    def __init__(self):
        self.takes = self.named = self.right = 0

    def add(self, kind, verdicts):
        self.takes += 1
        self.named += bool(verdicts)
        self.right += kind in verdicts

    def share(self, count):
        return 100 * count / max(self.takes, 1)


def judge(program, folder):
    rows = [line.rstrip("\n").split("\t") for line in open(f"{folder}/takes.tsv")]
    paths = "".join(f"{folder}/{row[0]}\n" for row in rows)
    lines = subprocess.run([program], input=paths, text=True, check=True,
                           stdout=subprocess.PIPE).stdout.splitlines()
    for (_, kind, half, _), line in zip(rows, lines, strict=True):
        whole, kept = (column.split(",") if column else [] for column in line.split("\t"))
        yield kind, half, whole, kept


def print_half(name, counts):
    """Returns whether the half is within the limits."""
    print(f"\n| {name} | takes | named | the right verdict among them |\n| --- | --- | --- | --- |")
    bad = Count()
    least = 100.0
    for kind, count in counts.items():
        right = "" if kind == "good" else f"{count.share(count.right):.1f} %"
        print(f"| {kind} | {count.takes} | {count.share(count.named):.1f} % | {right} |")
        if kind != "good":
            bad.takes += count.takes
            bad.named += count.named
            bad.right += count.right
            least = min(least, count.share(count.named))
    print(f"| all bad ones | {bad.takes} | {bad.share(bad.named):.1f} % | {bad.share(bad.right):.1f} % |")
    good = counts["good"]
    return (good.share(good.named) <= LIMITS["good"] and bad.share(bad.named) >= LIMITS["bad"]
            and least >= LIMITS["kind"] and bad.share(bad.right) >= LIMITS["right"])


def main():
    program, folder = sys.argv[1:]
    whole = collections.defaultdict(lambda: collections.defaultdict(Count))
    kept = collections.defaultdict(lambda: collections.defaultdict(Count))
    for kind, half, verdicts, verdicts_kept in judge(program, folder):
        whole[half][kind].add(kind, verdicts)
        kept[half][kind].add(kind, verdicts_kept)
    is_within = all([print_half(f"{half}, whole takes", counts) for half, counts in whole.items()])
    for half, counts in kept.items():
        print_half(f"{half}, cut to the speech", counts)
    sys.exit(0 if is_within else 1)


if __name__ == "__main__":
    main()
