#!/usr/bin/env python3
"""Prints the table of scripts/write-bursts.

Usage: bursts_table.py ROWS TABLE.json. ROWS holds what write_bursts printed, an object in each line;
TABLE.json gets them as a list. Exit code: 0 when every write arrived once and in order, with
status 0, 1 when not, 2 when there is nothing to read.
"""
import json
import os
import pathlib
import sys

HEADINGS = ("writes", "ms each", "arrived", "repeated", "out of order", "seconds", "descriptors",
            "threads", "more KiB", "longest read", "closing")


def is_good(row):
    return ("died" not in row and row["arrived"] == row["writes"] == row["done"]
            and row["repeated"] == 0 and row["out_of_order"] == 0
            and row["statuses"] == ["0x00000000"])


def cells(row):
    if "died" in row:
        return [row["writes"], row["delay_ms"], f"the host has ended with code {row['died']}"]
    return [row["writes"], row["delay_ms"], row["arrived"], row["repeated"], row["out_of_order"],
            f"{row['seconds']:.1f}", row["descriptors"], row["threads"], row["more_kib"],
            f"{row['longest_read_ms']:.2f} ms", f"{row['close_ms']:.0f} ms"]


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    rows = [json.loads(line) for line in pathlib.Path(sys.argv[1]).read_text().splitlines()]
    if not rows:
        print("bursts_table.py: nothing has been measured", file=sys.stderr)
        return 2
    print("| " + " | ".join(HEADINGS) + " |")
    print("|" + "---:|" * len(HEADINGS))
    for row in rows:
        print("| " + " | ".join(str(cell) for cell in cells(row)) + " |")
    table = pathlib.Path(sys.argv[2])
    fresh = table.with_suffix(".new")
    fresh.write_text(json.dumps(rows, indent=1) + "\n")
    os.replace(fresh, table)
    return 0 if all(is_good(row) for row in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
