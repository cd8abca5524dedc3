#!/usr/bin/env python3
"""Draws the plot of a soak from what the program wrote with --output.

Usage: plot.py RUN.jsonl FILE.png. The same run gives the same file.
"""
import json
import pathlib
import sys

import matplotlib

matplotlib.use("Agg")
matplotlib.rcParams.update({"font.size": 9, "axes.grid": True, "grid.alpha": 0.3,
                            "axes.axisbelow": True, "savefig.dpi": 110})
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "scripts"))
from matplotlib import pyplot  # noqa: E402
from small_png import shrink  # noqa: E402

OURS = "#1f6f8b"
PEER = "#c8873a"
OUTAGE = "#b02a2a"
WIDTH = 9.1


def read(path):
    """The samples, and the faults as (begin, end) in minutes."""
    samples, faults = [], []
    for line in path.read_text().splitlines():
        entry = json.loads(line)
        if "fault" in entry:
            # A moment, such as that of expired tokens, shall be seen as well.
            faults.append((entry["t"] / 60, (entry["t"] + max(entry["s"], 0.5)) / 60))
        else:
            samples.append(entry)
    return samples, faults


def curve(axes, samples, factor, colour, label, key):
    axes.plot([sample["t"] / 60 for sample in samples],
              [sample[key] * factor for sample in samples], color=colour, linewidth=0.8,
              label=label)


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    samples, faults = read(pathlib.Path(sys.argv[1]))
    if not samples:
        print(f"plot.py: {sys.argv[1]} holds no sample", file=sys.stderr)
        return 2
    figure, (memory, counts, client) = pyplot.subplots(3, 1, figsize=(WIDTH, 6.6), sharex=True)
    curve(memory, samples, 1 / 1024, OURS, "resident memory", "resident_kib")
    curve(memory, samples, 1 / 1024, PEER, "heap in use", "heap_kib")
    memory.set_ylabel("MiB")
    curve(counts, samples, 1, OURS, "file descriptors", "descriptors")
    curve(counts, samples, 1, PEER, "threads", "threads")
    counts.set_ylabel("number")
    curve(client, samples, 1, OURS, "timers of the client", "timers")
    curve(client, samples, 1, PEER, "reconnects", "reconnects")
    client.set_ylabel("number")
    client.set_xlabel("minutes; shaded: the service goes wrong")
    for axes in (memory, counts, client):
        axes.set_ylim(bottom=0, top=axes.get_ylim()[1] * 1.2)
        axes.set_xlim(0, samples[-1]["t"] / 60)
        for begin, end in faults:
            axes.axvspan(begin, end, color=OUTAGE, alpha=0.15, linewidth=0)
        axes.legend(loc="upper left", ncol=2, fontsize=8)
    figure.tight_layout()
    figure.savefig(sys.argv[2], format="png")
    shrink(sys.argv[2])
    print(f"  {sys.argv[2]}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
