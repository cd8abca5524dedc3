"""Makes small faults in a copy of the library, and says which the tests of its folder find.

Called by scripts/mutants, which has built the copy: mutants.py --help.
"""

import argparse
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import time

import mutant_sites

ROOT = pathlib.Path(__file__).resolve().parents[1]
VERDICTS = ROOT / "tests/mutants.json"
FOLDERS = ("cloud", "compat", "examples/modbus", "framework", "interface", "property")
WANTED = 0.95  # of those that are not equivalent
LIMIT = 600  # seconds for one mutant; it may make a loop endless


def key(mutant, line):
    """What names a mutant as long as its line stays as it is."""
    return f"{mutant.file}: {line.strip()} [{mutant.kind}: {mutant.was} -> {mutant.text}]"


def folder_of(mutant):
    """The one that has its tests, which those of the folders in it share."""
    return next(folder for folder in FOLDERS if mutant.file.startswith(folder + "/"))


class Bench:
    def __init__(self, copy, build):
        self.copy, self.build = pathlib.Path(copy).resolve(), pathlib.Path(build).resolve()
        self.commands = self.build / "compile_commands.json"

    def sources(self, folders):
        return [path.relative_to(self.copy).as_posix() for folder in folders
                for path in sorted((self.copy / folder).rglob("*.cpp"))]

    def tests(self, folder):
        """The tests of a folder; what drives the whole client is a test of its parts, too."""
        listed = subprocess.run(["ctest", "--test-dir", self.build / "tests", "--show-only=json-v1"],
                                stdout=subprocess.PIPE, check=True, text=True).stdout
        names = []
        for test in json.loads(listed)["tests"]:
            at = next((each["value"] for each in test["properties"]
                       if each["name"] == "WORKING_DIRECTORY"), "")
            below = pathlib.Path(at).relative_to(self.build / "tests").as_posix()
            histories = folder in ("cloud", "framework") and below.endswith("histories")
            if below == folder or histories:
                names.append(test["name"])
        if not names:
            raise ValueError(f"{folder}: there are no tests")
        return names

    def judge(self, mutant):
        """'killed', 'survived' or 'no program'."""
        path = self.copy / mutant.file
        sound = path.read_bytes()
        path.write_bytes(sound[:mutant.begin] + mutant.text.encode() + sound[mutant.end:])
        try:
            return self.outcome(folder_of(mutant), LIMIT)
        finally:
            path.write_bytes(sound)

    def outcome(self, folder, limit):
        tests = self.tests(folder)
        if not self.runs(["ninja", "-C", self.build, *tests], limit):
            return "no program"
        names = "^(" + "|".join(tests) + ")$"
        passes = self.runs(["ctest", "--test-dir", self.build / "tests", "--parallel", "2",
                            "--stop-on-failure", "--timeout", "120", "-R", names], limit)
        return "survived" if passes else "killed"

    @staticmethod
    def runs(command, limit):
        """Whether it ends well in time; none of its tests outlives it, such as one that never ends."""
        with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              start_new_session=True) as process:
            try:
                return process.wait(limit) == 0
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                return False


def report(results, equivalent):
    """Prints the figures; the exit code."""
    counts = {verdict: sum(1 for each in results if each["verdict"] == verdict)
              for verdict in ("killed", "survived", "equivalent", "no program")}
    for each in results:
        if each["verdict"] == "survived":
            print(f"survived: {each['key']}")
        if each["verdict"] == "equivalent":
            print(f"equivalent: {each['key']}: {equivalent[each['key']]}")
    counted = counts["killed"] + counts["survived"]
    share = counts["killed"] / counted if counted else 1.0
    print(", ".join(f"{number} {verdict}" for verdict, number in counts.items()) +
          f"; {100 * share:.1f} % of those that count")
    return 0 if share >= WANTED else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("copy")
    parser.add_argument("build")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--minutes", type=float)
    parser.add_argument("--folders", default=",".join(FOLDERS))
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--output")
    options = parser.parse_args()
    bench = Bench(options.copy, options.build)
    sites = [mutant for name in bench.sources(options.folders.split(","))
             for mutant in mutant_sites.mutants_of(bench.copy, name, bench.commands)]
    print(f"{len(sites)} mutants", flush=True)
    if options.sample:
        sites = random.Random(options.seed).sample(sites, min(options.sample, len(sites)))
    verdicts = json.loads(VERDICTS.read_text())
    for folder in [] if options.list else sorted({folder_of(each) for each in sites}):
        if bench.outcome(folder, None) != "survived":
            raise ValueError(f"{folder}: the tests of the sound library do not pass")
    results = []
    began = time.monotonic()
    for mutant in sites:
        if options.minutes and time.monotonic() - began > 60 * options.minutes:
            print(f"time is up after {len(results)} of {len(sites)}")
            break
        lines = (bench.copy / mutant.file).read_text().splitlines()
        name = key(mutant, lines[mutant.line - 1])
        if options.list:
            print(name)
            continue
        verdict = "equivalent" if name in verdicts else bench.judge(mutant)
        results.append({"key": name, "line": mutant.line, "verdict": verdict})
        print(f"{verdict:10} {mutant.line:4} {name}", flush=True)
        if options.output:
            pathlib.Path(options.output).write_text(json.dumps(results, indent=1))
    return 0 if options.list else report(results, verdicts)


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (OSError, KeyError, ValueError) as error:
        print(error, file=sys.stderr)
        sys.exit(2)
