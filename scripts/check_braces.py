#!/usr/bin/python3
"""Finds (or with --fix takes away) braces around a single statement that fits a line.

Reads what clang-format has laid out: a statement that begins a line, and its brace at the end of that
line. The branches of an `if` keep their braces when one of them needs them.
"""
import re
import sys

BEGIN = re.compile(r"( *)((?:if|for|while) .*|else(?: if .*)?) \{\n")
NEXT = re.compile(r"\} (else(?: if .*)?) \{\n")


def chain(lines, at):
    """The lines without braces of the statement that begins at a line, and where it ends."""
    begin = BEGIN.fullmatch(lines[at])
    if not begin:
        return None
    indent, head = begin.groups()
    bare = []
    while at + 2 < len(lines):
        body, end = lines[at + 1], lines[at + 2]
        if not re.fullmatch(indent + r"    \S.*;\n", body) or re.match(r" *//", body):
            return None
        bare += [indent + head + "\n", body]
        if end == indent + "}\n":
            return bare, at + 3
        following = NEXT.fullmatch(end[len(indent):]) if end.startswith(indent) else None
        if not following:
            return None
        head, at = following.group(1), at + 2
    return None


def superfluous(lines):
    """Takes away the braces, and gives the numbers of the lines that had them."""
    found = []
    for at, _ in enumerate(list(lines)):
        bare = chain(lines, at) if at < len(lines) else None
        if bare:
            # A line for each that goes, so that the numbers of those below stay: dropped at the end.
            found.append(at + 1)
            lines[at:bare[1]] = bare[0] + [""] * (bare[1] - at - len(bare[0]))
    lines[:] = [line for line in lines if line]
    return found


def main(arguments):
    fix = arguments[:1] == ["--fix"]
    complaints = 0
    for name in arguments[fix:]:
        with open(name, encoding="utf-8") as file:
            lines = file.readlines()
        found = superfluous(lines)
        if fix and found:
            with open(name, "w", encoding="utf-8") as file:
                file.writelines(lines)
        for line in [] if fix else found:
            print(f"{name}:{line}: braces around a single statement that fits a line")
            complaints += 1
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
