#!/usr/bin/env python3
"""Runs what was built with Qt 4 and with Qt 5 at the simulated service, and compares what they say.

Usage: compare.py QT4-BUILD QT5-BUILD WORK-FOLDER [--valgrind]

With --valgrind the host of Qt 4 runs a second time, under valgrind's eyes.

A difference that is Qt's own stands in differences.json; any other is an error, and so is one that
stands there and is not found. Exit code: 0 when the transcripts agree, 1 when they do not, or a program
fails, 2 for wrong usage.
"""
import difflib
import json
import pathlib
import re
import subprocess
import sys
import time

FOLDER = pathlib.Path(__file__).parent
PATIENCE = 60  # seconds, until the service is there
LONGEST = 900  # seconds that a program may take
SHOWN = 40  # differing lines


class Service:
    """A tovik-cloud of its own: what one program writes, the other must not find."""

    def __init__(self, program, work):
        self.files = [work / "url", work / "control"]
        for file in self.files:
            file.unlink(missing_ok=True)
        # Qt 4 knows TLS up to 1.2.
        self.process = subprocess.Popen(
            [program, FOLDER / "plant.json", "--tls", "1.2", "--log", work / "service.log",
             "--url-file", self.files[0], "--control-file", self.files[1]],
            stdout=subprocess.DEVNULL)
        end = time.monotonic() + PATIENCE
        while not all(file.exists() for file in self.files):
            if self.process.poll() is not None or time.monotonic() > end:
                sys.exit(f"tovik-cloud does not start; see {work / 'service.log'}")
            time.sleep(0.05)

    def urls(self):
        return [file.read_text().strip() for file in self.files]

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self.process.terminate()
        self.process.wait()


def transcript(command, cloud, work, name):
    """What a program says at a new service; ends the comparison when it fails."""
    with Service(cloud, work) as service:
        result = subprocess.run([*command, *service.urls()], timeout=LONGEST,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8",
                                errors="backslashreplace")
    (work / name).write_text(result.stdout)
    if result.returncode != 0:
        print(f"{' '.join(map(str, command))}: ended with {result.returncode}\n{result.stderr[-4000:]}"
              f"its last lines:\n" + "\n".join(result.stdout.splitlines()[-5:]), file=sys.stderr)
        sys.exit(1)
    return result.stdout.splitlines()


def plain(line, rules, used):
    for rule in rules:
        replaced = re.sub(rule["pattern"], rule["replacement"], line)
        if replaced != line:
            used.add(rule["name"])
            line = replaced
    return line


def differences(old, new, rules):
    """The pairs of lines that differ, and how many lines each rule has explained."""
    explained = {rule["name"]: 0 for rule in rules}
    left, right = [], []
    for lines, found in ((old, left), (new, right)):
        for line in lines:
            used = set()
            found.append((plain(line, rules, used), line, used))
    pairs = []
    if len(left) != len(right):
        matcher = difflib.SequenceMatcher(None, [entry[0] for entry in left],
                                          [entry[0] for entry in right], autojunk=False)
        for kind, a, b, c, d in matcher.get_opcodes():
            if kind != "equal":
                pairs.append(("\n  ".join(entry[1] for entry in left[a:b]),
                              "\n  ".join(entry[1] for entry in right[c:d])))
        return pairs, explained
    for one, other in zip(left, right):
        if one[0] != other[0]:
            pairs.append((one[1], other[1]))
        elif one[1] != other[1]:
            for name in one[2] | other[2]:
                explained[name] += 1
    return pairs, explained


def main():
    if len(sys.argv) not in (4, 5) or sys.argv[4:] not in ([], ["--valgrind"]):
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    qt4, qt5, work = map(pathlib.Path, sys.argv[1:4])
    work.mkdir(parents=True, exist_ok=True)
    rules = json.loads((FOLDER / "differences.json").read_text())
    cloud = qt5 / "tools/service/tovik-cloud"
    old, new = [], []
    for build, name, lines in ((qt4, "qt4", old), (qt5, "qt5", new)):
        lines += transcript([build / "tests/twin/twin"], cloud, work, f"{name}.txt")
        lines += transcript([build / "tests/twin/twin_host", build / "libtovik_iot.so.1"], cloud,
                            work, f"{name}-host.txt")
    pairs, explained = differences(old, new, rules)
    for one, other in pairs[:SHOWN]:
        print(f"Qt 4: {one}\nQt 5: {other}")
    if len(pairs) > SHOWN:
        print(f"... and {len(pairs) - SHOWN} more; the transcripts are in {work}")
    print(f"{len(old)} lines of Qt 4 and {len(new)} of Qt 5 compared, {len(pairs)} differ")
    for name, count in explained.items():
        print(f"  {count} lines: {name}")
    unused = [name for name, count in explained.items() if not count]
    if unused and not pairs:
        print("not found any more, take it out of differences.json: " + "; ".join(unused))
    if sys.argv[4:]:
        lines = transcript(
            # OpenSSL 1.0.2 makes its random numbers of what was in the memory, too.
            ["valgrind", "--quiet", "--error-exitcode=3", "--undef-value-errors=no", qt4 / "tests/twin/twin_host",
             qt4 / "libtovik_iot.so.1"], cloud, work, "valgrind.txt")
        print(f"valgrind has no complaint about {len(lines)} lines of the host with Qt 4")
    sys.exit(1 if pairs or unused else 0)


main()
