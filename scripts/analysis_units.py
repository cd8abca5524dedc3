#!/usr/bin/python3
"""Runs clang-tidy over the sources that a build folder compiles, several at a time in one unit.

Nearly all of clang-tidy's time goes into other people's headers, and each translation unit has them
all over again. So the sources of a folder that are compiled alike are included by a common one, as
long as the names that each keeps to itself allow it; one that cannot live with the others is
analysed by itself.

What was clean is not analysed again: a unit's record holds the digest of all that went into it, its
own and others' headers, flags, checks and clang-tidy's version included.
"""
import argparse
import concurrent.futures
import hashlib
import json
import os
import re
import shlex
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LIBRARY = ("interface", "property", "cloud", "compat", "framework")
PARTS = LIBRARY + ("examples", "tools", "tests", "benchmarks")
UNIT_SIZE = 24
# Flags that only the compiler in use takes, or that make a finding of a mere warning.
DROPPED = re.compile(r"-(c|g\d?|Werror|Winvalid-pch|fuse-ld=.*|fsanitize.*|fno-sanitize.*|"
                     r"-coverage)$")
# A name that a source keeps to itself begins a line, and so do the words in front of it.
OWN_NAME = re.compile(
    r"^(?:(?:class|struct|enum(?: class)?|union|using)[ ]+(\w+)"
    r"|#define[ ]+(\w+)"
    r"|(?:\[\[\w+\]\] )?(?! |namespace|using|extern)[\w:<>,&* ]*?[ &*](\w+)(?:\(|\{|\[| =|;))", re.M)
# Each plug-in has those that the host looks for.
ENTRY_POINT = re.compile(r"^\w.*\b(create_drvlib|drv_version)\(", re.M)
META_TYPE = re.compile(r"^(Q_DECLARE_METATYPE\(.*\))$", re.M)
NAMING = re.compile(r"^  - key: +readability-identifier-naming\.\w+(?:Case|Suffix|IgnoredRegexp)\n"
                    r"    value: +(?!''$).+\n", re.M)
FINDING = re.compile(r"^(/[^:\n]+):\d+:\d+: (warning|error): (.*) \[([\w.,*-]+)\]$", re.M)


class Source:
    """A source, and how the build compiles it."""

    def __init__(self, entry):
        self.path = Path(entry["directory"], entry["file"]).resolve()
        self.name = str(self.path.relative_to(ROOT))
        words = shlex.split(entry["command"]) if "command" in entry else entry["arguments"]
        self.includes, self.defines, self.flags = [], {}, []
        rest = iter(words[next(i for i, w in enumerate(words) if w.startswith("-")):])
        for word in rest:
            if word in ("-o", "-include"):
                next(rest)
            elif word in ("-isystem", "-I"):
                self.includes.append((word, next(rest)))
            elif word.startswith("-I"):
                self.includes.append(("-I", word[2:]))
            elif word.startswith("-D"):
                name, _, value = word[2:].partition("=")
                self.defines[name] = value
            elif word.startswith("-") and not DROPPED.match(word):
                self.flags.append(word)
        text = self.path.read_text(encoding="utf-8")
        own = "\n".join(re.findall(r"^namespace \{$(.*?)^\} // namespace$", text, re.M | re.S))
        own += "\n".join(re.findall(r"^(?:static .*|#define .*)$", text, re.M))
        own += "\n".join(re.findall(r"^class \w+", text, re.M))
        self.own_names = {name for match in OWN_NAME.findall(own) for name in match if name}
        self.own_names.update(ENTRY_POINT.findall(text))
        self.own_names.update(META_TYPE.findall(text))
        self.opened = set(re.findall(r"^using namespace ([\w:]+);$", text, re.M))

    @property
    def area(self):
        """Sources of one area may share a unit."""
        folders = self.name.split("/")
        if folders[0] in LIBRARY:
            return "library"
        return "/".join(folders[:-1][:2])


class Unit:
    """Sources that are analysed together."""

    def __init__(self, first):
        self.area = first.area
        self.sources, self.names = [], set()
        self.includes, self.defines, self.flags = [], {}, first.flags
        self.opened = first.opened
        self.add(first)

    def accepts(self, source, most):
        strict = {name for name in source.defines if name.startswith("QT_NO_")}
        return (len(self.sources) < most and self.area == source.area
                and sorted(set(self.flags)) == sorted(set(source.flags))
                # A namespace that one opens is open in the headers of all that follow.
                and self.opened == source.opened
                and strict == {name for name in self.defines if name.startswith("QT_NO_")}
                and all(self.defines.get(n, v) == v for n, v in source.defines.items())
                and not self.names & source.own_names)

    def add(self, source):
        self.sources.append(source)
        self.names |= source.own_names
        self.defines.update(source.defines)
        self.includes += [each for each in source.includes if each not in self.includes]

    @property
    def identity(self):
        # clang's analyzer follows paths through included sources only where a file is so named.
        names = " ".join(source.name for source in self.sources)
        return f"UnifiedSource-{self.area.replace('/', '-')}-{digest(names)[:10]}"

    def command_line(self):
        return ([f"-D{n}={v}" if v else f"-D{n}" for n, v in self.defines.items()]
                + [word for kind, path in self.includes for word in (kind, path)] + self.flags)

    def text(self):
        """The common source: main() may occur in each of them."""
        lines = ["// NOLINTBEGIN"]
        for source in self.sources:
            lines.append("// NOLINTEND" if source is self.sources[0] else "#undef main")
            lines.append("#define main main_" + digest(source.name)[:10] + " // NOLINT")
            lines.append(f'#include "{source.path}" // NOLINT')
        return "\n".join(lines) + "\n"


def digest(text):
    return hashlib.sha256(text if isinstance(text, bytes) else text.encode()).hexdigest()


def listed_files(rule):
    """The files that a rule of `c++ -M` names after its target."""
    words = re.findall(r"(?:\\[ #]|[^\s])+", rule.replace("\\\n", " "))[1:]
    return [re.sub(r"\\([ #])", r"\1", word).replace("$$", "$") for word in words]


def sources_of(build, wanted):
    found = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        path = Path(entry["directory"], entry["file"]).resolve()
        if path.is_relative_to(ROOT) and path.relative_to(ROOT).parts[0] in wanted \
                and path not in found and path.exists():
            found[path] = Source(entry)
    return sorted(found.values(), key=lambda source: source.name)


def pack(sources, most=UNIT_SIZE):
    units = []
    for source in sources:
        home = next((unit for unit in units if unit.accepts(source, most)), None)
        if home:
            home.add(source)
        else:
            units.append(Unit(source))
    return units


class Analysis:
    def __init__(self, folder, tidy, without_paths):
        self.folder, self.tidy, self.without_paths = folder, tidy, without_paths
        self.version = subprocess.run([tidy, "--version"], check=True, text=True,
                                      stdout=subprocess.PIPE).stdout
        self.checks, self.digests = {}, {}
        self.is_stopped = False
        folder.mkdir(parents=True, exist_ok=True)

    def config(self, source):
        """The checks for a source, as the .clang-tidy files above it add up.

        Of their options only those for names, which ours say: of some defaults of other checks
        clang-tidy does not take what it has said itself.
        """
        place = source.path.parent
        if place not in self.checks:
            dumped = subprocess.run(
                [self.tidy, "--dump-config", str(source.path), "--"], check=True, text=True,
                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
            checks, _, options = dumped.partition("CheckOptions:")
            names = NAMING.findall(options)
            self.checks[place] = checks + "CheckOptions:\n" + "".join(names)
        return self.checks[place]

    def file_digest(self, path):
        if path not in self.digests:
            try:
                self.digests[path] = digest(Path(path).read_bytes())
            except OSError:
                self.digests[path] = "gone"
        return self.digests[path]

    def fewer(self, unit):
        """Following paths costs more than all other checks together where much is templates."""
        left_out = unit.sources[0].name.split("/")[0] in self.without_paths
        return ["--checks=-clang-analyzer-*"] if left_out else []

    def ingredients(self, unit, fewer):
        """What a unit's result depends on, but for the files that it includes."""
        return digest("\0".join([self.version, self.config(unit.sources[0]), unit.text(), *fewer,
                                 self.file_digest(__file__), *unit.command_line()]))

    def is_clean(self, unit):
        try:
            record = json.loads((self.folder / (unit.identity + ".json")).read_text())
        except (OSError, ValueError):
            return False
        # What was clean with all checks is clean with fewer, too.
        return (record["ingredients"] in (self.ingredients(unit, []),
                                          self.ingredients(unit, self.fewer(unit)))
                and all(self.file_digest(path) == was for path, was in record["files"].items()))

    def remember(self, unit, before):
        """Notes that a unit is clean, unless a file of it has changed meanwhile."""
        listed = subprocess.run(["c++", "-M", *unit.command_line(), self.place(unit)], text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        if listed.returncode:
            return
        files = listed_files(listed.stdout)
        if any(os.stat(path).st_mtime >= before for path in files if path != self.place(unit)):
            return
        record = {"ingredients": self.ingredients(unit, self.fewer(unit)),
                  "files": {path: self.file_digest(path) for path in files}}
        (self.folder / (unit.identity + ".json")).write_text(json.dumps(record))

    def place(self, unit):
        return str(self.folder / (unit.identity + ".cpp"))

    def run(self, unit):
        """Returns what clang-tidy finds in a unit, and the names of sources that do not compile."""
        if self.is_stopped:
            return "", set()
        before = time.time()
        Path(self.place(unit)).write_text(unit.text())
        # Headers of other folders are looked at there, with the checks that are theirs.
        folder = unit.sources[0].name.split("/")[0]
        wanted = "|".join(LIBRARY) if folder in LIBRARY else folder
        done = subprocess.run(
            [self.tidy, "--quiet", "--config=" + self.config(unit.sources[0]),
             *self.fewer(unit),
             f"--header-filter=^{re.escape(str(ROOT))}/({wanted})/", self.place(unit), "--",
             *unit.command_line()],
            text=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        if done.returncode == -signal.SIGINT:  # it gets the user's Ctrl-C, too, and maybe first
            self.is_stopped = True
        broken = {path for path, _, _, check in FINDING.findall(done.stdout)
                  if check.startswith("clang-diagnostic-error")}
        twice = self.defined_twice(unit, done.stdout)
        if twice:
            return twice, set()
        if done.returncode == 0:
            self.remember(unit, before)
        elif not FINDING.search(done.stdout):
            return done.stdout + done.stderr, broken
        return (done.stdout if done.returncode else ""), broken

    @staticmethod
    def defined_twice(unit, output):
        """What a program must not have: two definitions of a type that no source keeps to itself."""
        own = {str(source.path): source.own_names for source in unit.sources}
        found = []
        for line in output.splitlines():
            match = FINDING.match(line)
            type_name = match and re.match(r"redefinition of '(?:\w+::)*(\w+)'$", match[3])
            if type_name and type_name[1] not in own.get(match[1], ()):
                found.append(line.replace("clang-diagnostic-error", "defined-twice"))
        return "\n".join(found)


def analyze(analysis, units, report):
    """Analyses units; those that do not compile together come apart, and are analysed again."""
    found, apart = [], []
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        jobs = {pool.submit(analysis.run, unit): unit for unit in units}
        try:
            for job in concurrent.futures.as_completed(jobs):
                unit = jobs[job]
                text, broken = job.result()
                strangers = [s for s in unit.sources if str(s.path) in broken]
                if broken and len(unit.sources) > 1:
                    rest = [s for s in unit.sources if s not in strangers]
                    halves = [rest] if strangers else [rest[::2], rest[1::2]]
                    apart += [each for half in halves for each in pack(half)]
                    apart += [Unit(stranger) for stranger in strangers]
                    report(unit, len(strangers) or len(rest))
                else:
                    report(unit, 0)
                    if text:
                        found.append(text)
                        print(text.replace(str(ROOT) + "/", ""), flush=True)
        except BaseException:  # the user's Ctrl-C, too
            analysis.is_stopped = True
            pool.shutdown(wait=False, cancel_futures=True)
            raise
    return found + (analyze(analysis, apart, report) if apart else [])


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, required=True, help="a configured build folder")
    parser.add_argument("--cache", type=Path, required=True, help="where clean units are recorded")
    parser.add_argument("--tidy", default="clang-tidy", help="the program")
    parser.add_argument("--without-paths", nargs="*", default=[], choices=PARTS, metavar="FOLDER",
                        help="folders whose sources the path-sensitive checks leave out")
    parser.add_argument("--in", dest="parts", required=True, nargs="+", choices=PARTS, metavar="FOLDER")
    options = parser.parse_args()

    started = time.monotonic()
    analysis = Analysis(options.cache, options.tidy, options.without_paths)
    sources = sources_of(options.build, options.parts)
    compiled = {source.name.split("/")[0] for source in sources}
    missing = [part for part in options.parts if part not in compiled]
    if missing:
        print(f"analysis_units.py: {options.build} compiles nothing of {', '.join(missing)}; "
              "configure it with these parts", file=sys.stderr)
        return 2
    units = pack(sources)
    waiting = [unit for unit in units if not analysis.is_clean(unit)]
    print(f"clang-tidy: {len(sources)} sources in {len(units)} units, "
          f"{len(units) - len(waiting)} of them unchanged and clean", flush=True)

    done = []

    def report(unit, apart):
        done.append(unit)
        note = f"; {apart} of them have to be analysed apart" if apart else ""
        print(f"  {time.monotonic() - started:4.0f} s  {unit.area}: "
              f"{len(unit.sources)} sources{note}", flush=True)

    waiting.sort(key=lambda unit: -len(unit.sources))
    found = analyze(analysis, waiting, report)
    if analysis.is_stopped:  # not all has been looked at
        return 130
    findings = set()
    for text in found:
        findings |= set(FINDING.findall(text))
    print(f"clang-tidy: {len(findings)} findings" if found else "clang-tidy: no findings")
    return 1 if found else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
