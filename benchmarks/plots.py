#!/usr/bin/env python3
"""Draws the plots of docs/performance.md from the table that scripts/bench has written.

Usage: plots.py RESULTS.json FOLDER. Writes PNG files; the same results give the same files.
"""
import json
import pathlib
import sys

import matplotlib

matplotlib.use("Agg")
matplotlib.rcParams.update({"font.size": 9, "axes.grid": True, "grid.alpha": 0.3,
                            "axes.axisbelow": True, "savefig.dpi": 110})
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "scripts"))
from matplotlib import pyplot  # noqa: E402
from small_png import shrink  # noqa: E402

OURS = "#1f6f8b"
PEER = "#c8873a"
WIDTH = 7.0


def save(figure, folder, name):
    figure.tight_layout()
    file = folder / f"{name}.png"
    figure.savefig(file)
    shrink(file)
    pyplot.close(figure)
    print(f"  {file}")


def select(rows, group, *parts):
    """The rows of a group that have a size and all of the parts in their names, by size."""
    found = [row for row in rows if row["group"] == group and "size" in row
             and all(part in row["name"] for part in parts)]
    return sorted(found, key=lambda row: row["size"])


def pair_over_size(axes, rows, factor, peer_label):
    sizes = [row["size"] for row in rows]
    for half, colour, label in (("ours", OURS, "ours"), ("peer", PEER, peer_label)):
        axes.plot(sizes, [row[half] * factor for row in rows], "o-", color=colour, label=label)
    axes.set_xscale("log")
    axes.set_yscale("log")
    axes.legend()


def reads(rows, folder):
    figure, axes = pyplot.subplots(figsize=(WIDTH, 3.2))
    pair_over_size(axes, select(rows, "requests", "peer searches"), 1,
                   "signal and std::find_if")
    bare = [row for row in select(rows, "requests", "read of 16Bit-INT") if "," in row["name"]
            and "searches" not in row["name"]]
    axes.plot([row["size"] for row in bare], [row["peer"] for row in bare], "--", color="0.5",
              label="bare signal, fixed answer")
    axes.legend()
    axes.set_xlabel("served items")
    axes.set_ylabel("ns for a read, emit to answer")
    save(figure, folder, "bench-reads")


def lists(rows, folder):
    figure, (left, middle, right) = pyplot.subplots(1, 3, figsize=(WIDTH * 1.3, 3.2))
    pair_over_size(left, select(rows, "catalogue", "groups"), 1e-6, "picojson's parse")
    left.set_xlabel("items in the catalogue")
    left.set_ylabel("ms")
    left.set_title("Catalogue from replies")
    pair_over_size(middle, select(rows, "configuration", "reading"), 1e-6, "plain structures")
    middle.set_xlabel("items")
    middle.set_ylabel("ms")
    middle.set_title("Reading a configuration")
    pair_over_size(right, select(rows, "memory", "configuration"), 1, "its texts")
    right.set_xlabel("items")
    right.set_ylabel("KiB")
    right.set_title("Memory of a configuration")
    save(figure, folder, "bench-lists")


def packing(rows, folder):
    figure, (left, right) = pyplot.subplots(1, 2, figsize=(WIDTH * 1.3, 3.2))
    for axes, work, title in ((left, "pack", "Raw bytes"),
                              (right, "pack characters", "Characters")):
        for size, marker in ((1, "o"), (2, "s"), (4, "^")):
            part = f"elements of {size}, most first"
            for prefix, style in (("", "-"), ("un", "--")):
                chosen = [row for row in select(rows, "packing", part)
                          if row["name"].startswith(f"{prefix}{work},")]
                axes.plot([row["size"] for row in chosen], [row["ratio"] for row in chosen],
                          marker + style, color=OURS if not prefix else PEER,
                          label=f"{prefix}pack, {size} byte{'s' if size > 1 else ''}")
        axes.axhline(1, color="0.3", linewidth=1)
        axes.set_xscale("log")
        axes.set_ylim(bottom=0)
        axes.set_xlabel("bytes")
        axes.set_ylabel("ours / peer")
        axes.set_title(title)
    left.legend(fontsize=7, ncol=2)
    save(figure, folder, "bench-packing")


def network(rows, folder):
    figure, (left, right) = pyplot.subplots(1, 2, figsize=(WIDTH * 1.3, 3.2))
    cycles = select(rows, "cycle", "a monitor cycle")
    pair_over_size(left, cycles, 1, "libcurl")
    left.set_yscale("linear")
    left.set_ylim(bottom=0)
    left.set_xlabel("served items")
    left.set_ylabel("ms for each item of a cycle")
    left.set_title("A cycle, service on the same machine")
    for group, marker, label in (("drivers", "o", "same machine"),
                                 ("drivers-20ms", "s", "20 ms there and back"),
                                 ("drivers-100ms", "^", "100 ms there and back")):
        chosen = select(rows, group, "drivers")
        if chosen:
            right.plot([row["size"] for row in chosen], [row["ours"] for row in chosen],
                       marker + "-", label=label)
    right.set_xscale("log", base=2)
    right.set_yscale("log")
    right.set_xlabel("drivers in one process")
    right.set_ylabel("items a second, together")
    right.set_title("What several drivers carry")
    right.legend(fontsize=7)
    save(figure, folder, "bench-network")


def ratios(rows, folder):
    """Every ratio beside its target, by group: where all lies between 0 and the line, all is met."""
    demanded = [row for row in rows if row["kind"] == "ratio" and "target" in row]
    groups = list(dict.fromkeys(row["group"] for row in demanded))
    figure, axes = pyplot.subplots(figsize=(WIDTH, 0.45 * len(groups) + 1))
    for place, group in enumerate(groups):
        for row in demanded:
            if row["group"] == group:
                axes.plot(row["ratio"] / row["target"], place, "|", markersize=12,
                          color=OURS if row["met"] else "#b02a2a")
    axes.axvline(1, color="0.3", linewidth=1)
    axes.set_yticks(range(len(groups)), groups)
    axes.invert_yaxis()
    axes.set_xlim(left=0)
    axes.set_xlabel("ratio / target: a mark for each comparison, met up to 1")
    save(figure, folder, "bench-ratios")


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    rows = json.loads(pathlib.Path(sys.argv[1]).read_text())
    folder = pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    for draw in (reads, lists, packing, network, ratios):
        draw(rows, folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
