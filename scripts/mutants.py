"""Makes small faults in a copy of the library, and says which the tests of its folder find.

Called by scripts/mutants, which has configured the copy: mutants.py --help.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import re
import shlex
import signal
import subprocess
import sys
import time

import mutant_sites
import mutant_switch

ROOT = pathlib.Path(__file__).resolve().parents[1]
VERDICTS = ROOT / "tests/mutants.json"
FOLDERS = ("interface", "property", "compat", "framework", "examples/modbus", "cloud")
WANTED = 0.95  # of those that are not equivalent
# A mutant may allocate without end, or crash.
LIMITED = ["prlimit", "--core=0"]
MEMORY = ":hard_rss_limit_mb=2048"

Test = collections.namedtuple("Test", "name command folder environment")


def key(mutant, line):
    """What names a mutant as long as its line stays as it is."""
    return f"{mutant.file}: {line.strip()} [{mutant.kind}: {mutant.was} -> {mutant.text}]"


def folder_of(mutant):
    """The one that has its tests, which those of the folders in it share."""
    return next(folder for folder in FOLDERS if mutant.file.startswith(folder + "/"))


def say(text):
    print(text, file=sys.stderr, flush=True)


def settled(source, commands):
    """For a process of its own: the source with those of its mutants that stand together, and the others."""
    return source, source.settle(mutant_sites.arguments_of(commands, source.path))


class Bench:
    def __init__(self, copy, build, races, race_runner, race_names):
        self.copy, self.build = pathlib.Path(copy).resolve(), pathlib.Path(build).resolve()
        # Tests of what threads share; a lock that is left out is found by the thread sanitizer in them.
        self.races, self.race_runner, self.race_names = pathlib.Path(races).resolve(), race_runner, race_names
        self.commands = self.build / "compile_commands.json"
        self.reached, self.seconds = {}, {}  # by the test's name
        self.kills = collections.Counter()  # by file and test

    def find(self, folders):
        """The mutants of the folders, their sources and their tests."""
        self.mutants, self.names, self.sources = [], [], []
        for folder in folders:
            for path in sorted((self.copy / folder).rglob("*.cpp")):
                name = path.relative_to(self.copy).as_posix()
                found = mutant_sites.mutants_of(self.copy, name, self.commands)
                numbers = range(len(self.mutants), len(self.mutants) + len(found))
                self.mutants += found
                lines = path.read_text().splitlines()
                self.names += [key(mutant, lines[mutant.line - 1]) for mutant in found]
                self.sources.append(mutant_switch.Source(path, dict(zip(numbers, found))))
        self.tests = {folder: self.tests_of(folder) for folder in folders}
        say(f"{len(self.mutants)} mutants in {len(self.sources)} sources")

    def tests_of(self, folder):
        """The tests of a folder; what drives the whole client is a test of its parts, too."""
        listed = subprocess.run(["ctest", "--test-dir", self.build / "tests", "--show-only=json-v1"],
                                stdout=subprocess.PIPE, check=True, text=True).stdout
        tests = []
        for test in json.loads(listed)["tests"]:
            # There is no command before the program has been built. One of somebody else builds the sources
            # anew, which takes minutes.
            command = test.get("command")
            if command and self.build not in pathlib.Path(command[0]).parents:
                continue
            properties = {each["name"]: each["value"] for each in test["properties"]}
            at = properties.get("WORKING_DIRECTORY", "")
            below = pathlib.Path(at).relative_to(self.build / "tests").as_posix()
            histories = folder in ("cloud", "framework") and below.endswith("histories")
            if f"{below}/".startswith(f"{folder}/") or histories:
                environment = dict(each.split("=", 1) for each in properties.get("ENVIRONMENT", []))
                environment["ASAN_OPTIONS"] = environment.get("ASAN_OPTIONS", "") + MEMORY
                tests.append(Test(test["name"], [*LIMITED, *(command or [])], at, environment))
        if not tests:
            raise ValueError(f"{folder}: there are no tests")
        return tests

    def race_tests(self, folder):
        """The same programs built with the thread sanitizer."""
        return [Test(f"{test.name} with the thread sanitizer",
                     [*self.race_runner, self.races / pathlib.Path(test.command[-1]).relative_to(self.build)],
                     test.folder, test.environment)
                for test in self.tests[folder] if test.name in self.race_names]

    def all_tests(self):
        return {test.name: test for tests in self.tests.values() for test in tests}.values()

    def switch(self):
        """Writes the sources with all their mutants and builds the tests; the numbers of the mutants that
        are a program only alone."""
        alone = []
        with concurrent.futures.ProcessPoolExecutor() as pool:
            calls = [pool.submit(settled, source, self.commands) for source in self.sources]
            for at, call in enumerate(calls):
                self.sources[at], of_source = call.result()
                alone += of_source
                self.sources[at].path.write_bytes(self.sources[at].switched())
                say(f"[{at + 1}/{len(calls)}] {self.sources[at].path.relative_to(self.copy)}")
        while output := self.refused():
            dropped = False
            for source in self.sources:
                where = re.findall(rf"^{re.escape(str(source.path))}:(\d+):(\d+): error", output, re.M)
                standing = set(source.standing)
                if source.drop([(int(line), int(column)) for line, column in where]):
                    dropped = True
                    alone += standing - source.standing
                    source.path.write_bytes(source.switched())
            if not dropped:
                raise ValueError(f"the library with its mutants cannot be built\n{output[-4000:]}")
        self.tests = {folder: self.tests_of(folder) for folder in self.tests}
        return alone

    def refused(self):
        """What the compiler says, when it refuses anything."""
        say("== Building the tests")
        done = subprocess.run(["ninja", "-k", "0", "-C", self.build, *(each.name for each in self.all_tests())],
                              stdout=subprocess.PIPE, text=True, check=False)
        return done.stdout if done.returncode else ""

    def run(self, test, limit, **variables):
        """Whether it passes in so many seconds; none of its processes outlives it."""
        environment = {**os.environ, **test.environment, **variables}
        with subprocess.Popen(test.command, cwd=test.folder, env=environment, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, start_new_session=True) as process:
            try:
                return process.wait(limit) == 0
            except subprocess.TimeoutExpired:
                return None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass

    def build_races(self, folders):
        """Builds what finds a lock that is left out, and looks whether it finds nothing in the sound library."""
        say("== Building tests with the thread sanitizer")
        tests = [test for folder in folders for test in self.race_tests(folder)]
        programs = [test.command[-1].name for test in tests]
        subprocess.run(["ninja", "-C", self.races, "tovik_qt_synchronisation", *programs],
                       stdout=subprocess.DEVNULL, check=True)
        for test in tests:
            self.look(test)

    def look(self, test):
        """Runs it with the sound library, for its duration and the mutants that it reaches."""
        reached = self.build / f"{test.name}.reached"
        reached.write_bytes(bytes(len(self.mutants)))
        began = time.monotonic()
        if not any(self.run(test, 600, TOVIK_MUTANTS_REACHED=str(reached)) for _ in range(2)):
            raise ValueError(f"{test.name} does not pass with the sound library")
        self.seconds[test.name] = time.monotonic() - began
        self.reached[test.name] = reached.read_bytes()
        reached.unlink()

    def fails(self, test, **variables):
        """Whether it fails twice, or once for not ending: a test that failed by chance has found nothing."""
        limit = 15 + 3 * self.seconds[test.name]
        first = self.run(test, limit, **variables)
        return first is None or (not first and not self.run(test, limit, **variables))

    def judge(self, number, is_alone=False):
        """The test that finds it, 'unreached' or 'missed'."""
        mutant = self.mutants[number]
        tests = self.tests[folder_of(mutant)]
        if not is_alone:
            tests = [each for each in tests if self.reached[each.name][number]]
        # A test that has found others of this file will do so soon again.
        for test in sorted(tests, key=lambda each: (-self.kills[mutant.file, each.name],
                                                    self.seconds[each.name])):
            if self.fails(test, TOVIK_MUTANT=str(-1 if is_alone else number)):
                self.kills[mutant.file, test.name] += 1
                return test.name
        if mutant.kind == "lock":
            for test in self.race_tests(folder_of(mutant)):
                if self.reached[test.name][number] and self.fails(test, TOVIK_MUTANT=str(number)):
                    return test.name
        return "missed" if tests else "unreached"

    def judge_alone(self, number):
        """One that is in the program alone."""
        source = next(each for each in self.sources if number in each.mutants)
        source.path.write_bytes(source.single(number))
        try:
            return "no program" if self.refused() else self.judge(number, True)
        finally:
            source.path.write_bytes(source.switched())


class Report:
    def __init__(self, bench, verdicts, output):
        self.bench, self.equivalent, self.output = bench, verdicts, output
        self.results, self.total = [], 0

    def add(self, number, found):
        """None: it has not been tried."""
        if not found:
            return
        verdict = found if found in ("equivalent", "no program") else \
            "survived" if found in ("missed", "unreached") else "killed"
        name, line = self.bench.names[number], self.bench.mutants[number].line
        self.results.append({"key": name, "line": line, "verdict": verdict, "by": found})
        print(f"[{len(self.results)}/{self.total}] {verdict:10} {line:4} {name} ({found})", flush=True)
        if self.output:
            pathlib.Path(self.output).write_text(json.dumps(self.results, indent=1))

    def finish(self):
        """Prints the figures of each folder and of all; the exit code."""
        for each in self.results:
            if each["verdict"] == "equivalent":
                print(f"equivalent: {each['key']}: {self.equivalent[each['key']]}")
        for folder in FOLDERS:
            of_folder = [each for each in self.results if each["key"].startswith(folder + "/")]
            if of_folder:
                self.line(folder, of_folder)
        share = self.line("all", self.results)
        return 0 if share >= WANTED else 1

    @staticmethod
    def line(name, results):
        """Prints it; the share of those that are not equivalent that was killed."""
        counts = collections.Counter(each["verdict"] for each in results)
        counted = counts["killed"] + counts["survived"]
        share = counts["killed"] / counted if counted else 1.0
        print(f"{name + ':':18}" +
              "".join(f"{counts[each]:5} {each}," for each in ("killed", "survived", "equivalent", "no program")) +
              f" {100 * share:.1f} % of those that count")
        return share


def try_them(bench, report, numbers, minutes):
    """Those that stand in one library side by side, since most tests wait longer than they compute; then
    those that need a library of their own, one after the other."""
    alone = set(bench.switch())
    standing = {number for source in bench.sources for number in source.standing}
    known = {number for number in numbers if bench.names[number] in report.equivalent}
    tried = [number for number in numbers if number not in known]
    with concurrent.futures.ThreadPoolExecutor(2 * (os.cpu_count() or 1)) as pool:
        say("== Running the tests with the sound library")
        list(pool.map(bench.look, bench.all_tests()))
    if locks := {folder_of(bench.mutants[each]) for each in tried if bench.mutants[each].kind == "lock"}:
        bench.build_races(sorted(locks))
    say("== Trying the mutants")
    end = time.monotonic() + 60 * (minutes or 1e6)

    def verdict(number):
        if number in known:
            return number, "equivalent"
        if number not in standing:
            return number, None if number in alone else "no program"
        return number, bench.judge(number) if time.monotonic() < end else None

    with concurrent.futures.ThreadPoolExecutor(2 * (os.cpu_count() or 1)) as pool:
        for future in concurrent.futures.as_completed([pool.submit(verdict, each) for each in numbers]):
            report.add(*future.result())
    for number in tried:
        if number in alone and time.monotonic() < end:
            report.add(number, bench.judge_alone(number))
    if len(report.results) < len(numbers):
        print(f"time was up after {len(report.results)} of {len(numbers)}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("copy")
    parser.add_argument("build")
    parser.add_argument("races")
    parser.add_argument("race_runner")
    parser.add_argument("race_tests")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--again")
    parser.add_argument("--minutes", type=float)
    parser.add_argument("--folders", default=",".join(FOLDERS))
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--output")
    options = parser.parse_args()
    bench = Bench(options.copy, options.build, options.races, shlex.split(options.race_runner),
                  options.race_tests.split())
    bench.find(options.folders.split(","))
    verdicts = json.loads(VERDICTS.read_text())
    report = Report(bench, verdicts, options.output)
    numbers = list(range(len(bench.mutants)))
    for name in verdicts:
        if name not in bench.names and name.startswith(tuple(f"{each}/" for each in options.folders.split(","))):
            say(f"{VERDICTS.name} has a reason for what is no mutant any more: {name}")
    if options.again:
        earlier = json.loads(pathlib.Path(options.again).read_text())
        survivors = {each["key"] for each in earlier if each["verdict"] == "survived"}
        numbers = [number for number in numbers if bench.names[number] in survivors]
    if options.sample:
        numbers = random.Random(options.seed).sample(numbers, min(options.sample, len(numbers)))
    if options.list:
        for number in numbers:
            print(bench.names[number])
        return 0
    report.total = len(numbers)
    try_them(bench, report, numbers, options.minutes)
    return report.finish()


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (OSError, KeyError, ValueError, subprocess.CalledProcessError) as error:
        print(error, file=sys.stderr)
        sys.exit(2)
