#!/usr/bin/env python3
"""Puts the measurements of all programs into one table; scripts/bench calls it.

Reads FILE... named GROUP.RUN.json, each what a program printed: Google Benchmark's JSON, or a list
of rows as README.md describes them. Prints the table and writes it as JSON. Exit code: 0 when every
target is met, 1 when not, 2 when a measurement cannot be read.
"""
import argparse
import json
import pathlib
import statistics
import sys


def rows_of_google(report):
    """Pairs NAME/ours and NAME/peer: the median of the repetitions' processor time each."""
    times = {}
    traits = {}
    for run in sorted(report["benchmarks"], key=lambda run: run["family_index"]):
        if run["run_type"] != "iteration":
            continue
        name, half = run["name"].rsplit("/", 1)
        times.setdefault(name, {}).setdefault(half, []).append(run["cpu_time"])
        traits[name] = {key: run[key] for key in ("target", "size") if key in run}
    for name, halves in times.items():
        row = {half: statistics.median(values) for half, values in halves.items()}
        yield {"name": name, "unit": "ns", **row, **traits[name]}


def rows_of(path):
    report = json.loads(path.read_text())
    return list(rows_of_google(report)) if isinstance(report, dict) else report


def compared(row):
    """What is held against the target."""
    kind = row.get("kind", "ratio")
    if kind == "value":
        return row["ours"]
    if kind == "difference":
        return row["ours"] - row["peer"]
    return row["ours"] / row["peer"]


def merged(group, runs):
    """One row from the same row of several runs: the medians of all, that of the ratios too."""
    row = dict(runs[0], group=group)
    for key in ("ours", "peer"):
        if key in row:
            row[key] = statistics.median(run[key] for run in runs)
    row["kind"] = row.get("kind", "ratio")
    row["compared"] = statistics.median(compared(run) for run in runs)
    if row["kind"] == "ratio":
        row["ratio"] = row["compared"]
    if "target" in row:
        row["met"] = row["compared"] <= row["target"]
    return row


def table_of(paths):
    groups = {}
    for path in paths:
        rows = groups.setdefault(path.name.split(".")[0], {})
        for row in rows_of(path):
            rows.setdefault(row["name"], []).append(row)
    return [merged(group, runs) for group, rows in groups.items() for runs in rows.values()]


def scaled(value, unit):
    if value is None:
        return "-"
    if unit == "ns" and value >= 1e6:
        return f"{value / 1e6:.2f} ms"
    if unit == "ns" and value >= 1e4:
        return f"{value / 1e3:.1f} us"
    return f"{value:.{1 if value >= 10 else 2}f} {unit}"


def compared_text(row):
    if row["kind"] == "ratio":
        return f"{row['compared']:.2f}x"
    if row["kind"] == "difference":
        return f"{row['compared']:+.2f} {row['unit']}"
    return "-"


def target_text(row):
    if "target" not in row:
        return "-"
    unit = "x" if row["kind"] == "ratio" else " " + row["unit"]
    return f"{'+' if row['kind'] == 'difference' else ''}{row['target']:g}{unit}"


def print_table(rows):
    width = max(len(row["name"]) for row in rows)
    line = "{:<%d}  {:>11}  {:>11}  {:>9}  {:>8}  {}" % width
    group = None
    for row in rows:
        if row["group"] != group:
            group = row["group"]
            print(f"\n{group}")
            print(line.format("name", "ours", "peer", "ratio", "target", "met"))
        met = {True: "yes", False: "NO", None: ""}[row.get("met")]
        print(line.format(row["name"], scaled(row["ours"], row["unit"]),
                          scaled(row.get("peer"), row["unit"]), compared_text(row),
                          target_text(row), met))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("files", nargs="+", type=pathlib.Path, metavar="FILE")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="the table as JSON")
    options = parser.parse_args()
    try:
        rows = table_of(options.files)
    except (KeyError, ValueError, ZeroDivisionError) as error:
        print(f"table.py: a measurement cannot be read: {error!r}", file=sys.stderr)
        return 2
    options.output.write_text(json.dumps(rows, indent=1) + "\n")
    print_table(rows)
    demanded = [row for row in rows if "target" in row]
    missed = [row for row in demanded if not row["met"]]
    print(f"\n{len(demanded) - len(missed)} of {len(demanded)} targets are met.")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
