#!/usr/bin/python3
"""Prints gcovr's summary by file and folder, and holds what is uncovered against a ceiling."""
import json
import sys
from collections import defaultdict
from pathlib import Path

KINDS = ("line", "branch")


def read_ceiling(path):
    """{folder: [lines, branches]}: how many may be uncovered."""
    ceiling = {}
    for number, line in enumerate(path.read_text().splitlines(), 1):
        words = line.partition("#")[0].split()
        if not words:
            continue
        if len(words) != 3 or not all(word.isdigit() for word in words[1:]):
            sys.exit(f"{path}:{number}: say FOLDER LINES BRANCHES, not '{line}'")
        ceiling[words[0]] = [int(word) for word in words[1:]]
    return ceiling


def row(name, counts):
    text = f"{name:<44}"
    for total, covered in counts:
        share = f"{100 * covered / total:6.1f} %" if total else "       -"
        text += f"{total:9}{total - covered:8}{share}"
    return text


def main():
    if len(sys.argv) != 3:
        sys.exit(f"Usage: {sys.argv[0]} SUMMARY.json CEILING")
    files = json.loads(Path(sys.argv[1]).read_text())["files"]
    ceiling = read_ceiling(Path(sys.argv[2]))
    folders = defaultdict(list)
    for each in files:
        folders[each["filename"].split("/")[0]].append(each)
    if set(folders) != set(ceiling):
        sys.exit(f"{sys.argv[2]} names {' '.join(sorted(ceiling))}; there is something to count in "
                 f"{' '.join(sorted(folders))}")

    print(f"{'':<44}{'lines':>9}{'missed':>8}{'':8}{'branches':>9}{'missed':>8}")
    exceeded, lower = [], []
    for folder, members in sorted(folders.items()):
        for each in sorted(members, key=lambda each: each["filename"]):
            print(row("  " + each["filename"],
                      [(each[kind + "_total"], each[kind + "_covered"]) for kind in KINDS]))
        sums = [tuple(sum(each[f"{kind}_{what}"] for each in members)
                      for what in ("total", "covered")) for kind in KINDS]
        print(row(folder, sums))
        for (total, covered), allowed, kind in zip(sums, ceiling[folder], ("lines", "branches")):
            missed = total - covered
            if missed > allowed:
                exceeded.append(f"{folder}: {missed} {kind} are uncovered, {allowed} may be")
            elif missed < allowed:
                lower.append(f"{folder}: {kind} {missed} instead of {allowed}")
    whole = [(sum(each[kind + "_total"] for each in files),
              sum(each[kind + "_covered"] for each in files)) for kind in KINDS]
    print(row("all", whole))
    if lower:
        print(f"The ceiling in {sys.argv[2]} can be lowered: " + "; ".join(lower))
    if exceeded:
        print("Too much is uncovered: " + "; ".join(exceeded) +
              ". Add the tests that are missing.", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
