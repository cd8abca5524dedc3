#!/usr/bin/env python3
"""Holds the #include lines of the sources to the table in docs/architecture.md.

A row names a folder, or a file with rights of its own, and whose headers it may include besides its
own. A name is looked up in the row's folder first, then beside it, then at the root. A row knows rows above
it only, so that there are no circles.
"""

import pathlib
import re
import sys

TABLE = re.compile(r"^```rooms\n(.*?)^```$", re.M | re.S)
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
# These may include anything.
FREE = ("tests/", "fuzz/", "benchmarks/")


class Fault(Exception):
    pass


def read_table(text):
    """{row: set of the rows that it may know}, from a document's fenced table."""
    found = TABLE.search(text)
    if not found:
        raise Fault("no table of rooms")
    table = {}
    for line in found.group(1).splitlines():
        if not line.strip():
            continue
        row, *known = line.split()
        beside = row.rstrip("/").rpartition("/")[0] + "/"
        if row in table:
            raise Fault(f"{row} has two rows")
        table[row] = set()
        for name in known:
            full = next((at + name for at in (row, beside, "") if at + name in table), None)
            if full is None:
                raise Fault(f"{row} may not know {name}, which has no row above it")
            table[row].add(full)
    return table


def row_of(path, table):
    """The longest row that the path falls under; None: none does."""
    rows = [row for row in table if path == row or row.endswith("/") and path.startswith(row)]
    return max(rows, key=len, default=None)


def faults(sources, table):
    """What is wrong with the sources, {path: text}, a line each."""
    for path, text in sorted(sources.items()):
        if path.startswith(FREE):
            continue
        row = row_of(path, table)
        if row is None:
            yield f"{path}: its folder has no row"
            continue
        own = row if row.endswith("/") else row.rpartition("/")[0] + "/"
        for target in INCLUDE.findall(text):
            if "/" not in target:
                continue  # beside the source, or generated from it
            known = row_of(target, table)
            if known != own and known not in table[row]:
                yield f"{path}: must not include {target}"


def sources_below(root):
    listed = (path for end in ("h", "cpp") for path in root.glob(f"*/**/*.{end}"))
    named = {path.relative_to(root).as_posix(): path for path in listed}
    return {name: path.read_text() for name, path in named.items() if not name.startswith("build/")}


def main(root):
    table = read_table((root / "docs/architecture.md").read_text())
    sources = sources_below(root)
    found = list(faults(sources, table))
    found += [f"{row}: no source falls under this row" for row in table
              if not any(row_of(path, table) == row for path in sources)]
    print("\n".join(found) or f"{len(sources)} sources include what {len(table)} rows allow")
    return 1 if found else 0


if __name__ == "__main__":
    try:
        sys.exit(main(pathlib.Path(sys.argv[1])))
    except Fault as fault:
        sys.exit(f"docs/architecture.md: {fault}")
