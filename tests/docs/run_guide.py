#!/usr/bin/python3
"""Does what a document says: writes its files, runs its commands, compares what they print.

Every code block has a mark, an HTML comment in the line before it:

  <!-- file: NAME -->            is (a further part of) the file NAME
  <!-- part: NAME of FILE -->    stands for the comment "@NAME@" in FILE, which the test
                                 has
  <!-- run -->                   shell commands that succeed
  <!-- fails N -->               shell commands that exit with N
  <!-- until: TEXT -->           shell commands that succeed, the last of which goes on until it has
                                 printed TEXT and is then interrupted
  <!-- where: PATH -->           shell commands that succeed; not run where PATH is not there
  <!-- background -->            a server, started and left to run; if a number ends the command, it
                                 is its port. After "$ command" lines of output may follow
  <!-- output -->                what the last shell commands have printed
  <!-- session -->               commands after "$ ", and what each prints
  <!-- printed by: COMMAND -->   lines that COMMAND prints, in this order, among others. It succeeds;
                                 with "! " in front of the last command, that one fails by itself
  <!-- watched by: COMMAND -->   the same; COMMAND goes on until all lines but the last one have
                                 come, and is then interrupted
  <!-- excerpt: FILE -->         stands as it is in FILE
  <!-- diagram -->               names in it are names of the sources
  <!-- check: REASON -->         commands that a test cannot run: what they name exists

"output numbers vary" (and so on, before a colon) lets numbers differ. <!-- do: COMMAND --> runs a
command that the reader does not see. Ports that servers are given are replaced by free ones; an
ellipsis stands for any text.
"""
import argparse
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

from guide_blocks import Failure, blocks_of
from guide_commands import CommandCheck
from guide_output import InOrder, compare
from guide_stage import PATIENCE, Processes, Stage

END_OF_OUTPUT = "=====end=of=output====="
FAILING = re.compile(r"(^|&& )! (?!.*&& )")
URL_PORT = re.compile(r"(?<=://127\.0\.0\.1:)\d+")


class Guide:
    def __init__(self, stage):
        self.stage = stage
        self.checker = CommandCheck(stage.source, stage.folder, stage.environment)
        self.written = set()
        self.printed = ""
        self.numbers_vary = False
        self.servers = 0

    def do(self, block):
        self.numbers_vary = block.numbers_vary
        action = {"file": self.write, "part": self.fill_in, "run": self.run, "do": self.run,
                  "fails": self.run, "where": self.run_where, "until": self.run_until, "background": self.serve,
                  "output": self.compare, "session": self.session,
                  "printed by": self.printed_by, "watched by": self.watched_by,
                  "excerpt": self.excerpt, "diagram": self.diagram, "check": self.check}.get(block.word)
        if not action:
            raise Failure(f"unknown mark '{block.word}'")
        action(block.text, block.rest)

    def write(self, text, name):
        path = self.stage.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.resolve().is_relative_to(self.stage.folder):
            raise Failure(f"'{name}' would be written into the project")
        with open(path, "a" if name in self.written else "w", encoding="utf-8") as file:
            file.write(self.stage.local(text))
        self.written.add(name)

    def fill_in(self, text, rest):
        part, name = rest.split(" of ")
        path = self.stage.folder / name
        frame = path.read_text(encoding="utf-8")
        pieces = re.split(rf"^[ \t]*(?://|#) @{part}@\n", frame, flags=re.M)
        if len(pieces) != 2:
            raise Failure(f"{name} does not have one comment @{part}@")
        path.write_text(self.stage.local(text).join(pieces), encoding="utf-8")

    def shell(self, text):
        return subprocess.run(["bash", "-e", "-c", self.stage.local(text)],
                              cwd=self.stage.folder, env=self.stage.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=2 * PATIENCE, check=False)

    def run(self, text, expected):
        done = self.shell(text)
        self.printed = done.stdout
        if done.returncode != int(expected or 0):
            raise Failure(f"exit code {done.returncode}, not {expected or 0}\n"
                          f"{done.stdout}{done.stderr}")

    def run_where(self, text, path):
        if Path(path).exists():
            self.run(text, 0)
        else:
            print(f"NOT RUN: there is no {path}", flush=True)

    def start(self, text, errors=subprocess.STDOUT):
        return self.stage.processes.start(["bash", "-e", "-c", self.stage.local(text)],
                                          cwd=self.stage.folder, env=self.stage.environment,
                                          stderr=errors)

    def run_until(self, text, wanted):
        if not wanted:
            raise Failure("until: what?")
        # What the commands before the last one print does not count.
        before, last = re.fullmatch(r"((?:.*\n)*?)((?:.*\\\n)*.*\n)", text).groups()
        self.watch(f"{before}echo {END_OF_OUTPUT}\n{last}",
                   lambda printed: wanted in printed.partition(END_OF_OUTPUT)[2])

    def watch(self, command, is_enough):
        """Runs a command until it has printed enough, interrupts it, and returns all of it."""
        process = self.start(command)
        self.printed = ""
        latest = time.monotonic() + PATIENCE
        while not is_enough(self.printed):
            line = self.stage.processes.line_of(process)
            if not line or time.monotonic() > latest:
                raise Failure(f"{'goes on' if line else 'has ended'} after\n{self.printed}")
            self.printed += line
        code = self.stage.processes.end(process, signal.SIGINT)
        while line := self.stage.processes.line_of(process):
            self.printed += line
        if code != 0:
            raise Failure(f"exit code {code} after an interrupt\n{self.printed}")

    def serve(self, text, _):
        command, _, shown = text.removeprefix("$ ").partition("\n")
        words, _, given = command.rpartition(" ")
        has_port = re.fullmatch(r"\d+", given)
        # What it says on the way can be looked up in a file: server-1.log and so on.
        self.servers += 1
        log = self.stage.folder / f"server-{self.servers}.log"
        with open(log, "w", encoding="utf-8") as errors:
            server = self.start(f"exec {words} 0" if has_port else f"exec {command}", errors)
        for line in shown.splitlines() or [""]:
            said = self.stage.processes.line_of(server)
            if not said:
                raise Failure(f"has ended: {log.read_text(encoding='utf-8')}")
            if has_port:
                port = re.search(r"port (\d+)", said)
                if not port:
                    raise Failure(f"does not say its port but '{said}'")
                self.stage.ports[given] = port.group(1)
            elif line:
                compare(line, said)
                self.stage.ports.update(zip(URL_PORT.findall(line), URL_PORT.findall(said)))

    def compare(self, text, _):
        compare(self.stage.with_places(text), self.printed, self.numbers_vary)

    def session(self, text, _):
        steps = re.split(r"^\$ ", text, flags=re.M)
        if steps[0] or len(steps) == 1:
            raise Failure("a session begins with '$ '")
        commands, outputs = [], []
        for step in steps[1:]:
            whole = re.match(r"(?:.*\\\n)*.*\n", step)[0]
            commands.append(f"{whole}echo\necho {END_OF_OUTPUT}\n")
            outputs.append(step[len(whole):])
        done = self.shell("".join(commands))
        printed = done.stdout.split(f"\n{END_OF_OUTPUT}\n")
        if done.returncode != 0:
            raise Failure(f"exit code {done.returncode}\n{done.stdout}{done.stderr}")
        for shown, said in zip(outputs, printed):
            compare(self.stage.with_places(shown), said, self.numbers_vary)

    def printed_by(self, text, command):
        # The shell's own "!" would take a missing program and a crash for the failure, too.
        wanted = FAILING.sub(r"\1", command)
        done = self.shell(wanted)
        if (not 1 <= done.returncode <= 125) if wanted != command else done.returncode != 0:
            raise Failure(f"exit code {done.returncode}\n{done.stdout}{done.stderr}")
        lines = InOrder(self.stage.with_places(text), self.numbers_vary)
        for line in (done.stdout + done.stderr).splitlines(keepends=True):
            lines.take(line)
        lines.finish()

    def watched_by(self, text, command):
        lines = InOrder(self.stage.with_places(text), self.numbers_vary)

        def is_enough(printed):
            new = printed[len(lines.printed):]
            if new:
                lines.take(new)
            return len(lines.left) <= 1

        self.watch(command, is_enough)
        for line in self.printed[len(lines.printed):].splitlines(keepends=True):
            lines.take(line)
        lines.finish()

    def excerpt(self, text, name):
        if text not in (self.stage.source / name).read_text(encoding="utf-8"):
            raise Failure(f"does not stand so in {name}")

    def diagram(self, text, _):
        """Names with capitals inside, underscores or colons must occur in the sources."""
        sources = "".join(path.read_text(encoding="utf-8")
                          for folder in ["interface", "property", "cloud", "framework", "compat"]
                          for path in sorted((self.stage.source / folder).glob("*.[ch]*")))
        names = set(re.findall(r"\w*[a-z0-9][A-Z_]\w*|\b[A-Z][a-z]+[A-Z]\w*|\w+(?=::)", text))
        missing = sorted(name for name in names
                         if not re.search(rf"\b{re.escape(name)}\b", sources))
        if missing or not names:
            raise Failure(f"the sources have no {', '.join(missing) or 'name of it'}")

    def check(self, text, reason):
        if not reason:
            raise Failure("why can a test not run this?")
        self.checker.check(text)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("document", help="the Markdown file")
    parser.add_argument("--folder", help="where it is done; emptied before. Without one nothing is run: "
                        "only the marks are looked at")
    parser.add_argument("--source", required=True, help="the project's folder")
    parser.add_argument("--build", required=True, help="the build whose programs are used")
    parser.add_argument("--set", action="append", default=[], metavar="NAME=VALUE",
                        help="an environment variable for the commands")
    parser.add_argument("--replace", action="append", default=[], metavar="TEXT=TEXT",
                        help="what the document's text stands for")
    parser.add_argument("--fixtures", action="append", default=[], metavar="FOLDER",
                        help="a folder that is copied into the work folder")
    parser.add_argument("--prefix", help="install the library, in place of this prefix")
    parser.add_argument("--modbus-tcp", metavar="PLACE", help="a device in place of PLACE")
    parser.add_argument("--modbus-rtu", metavar="PLACE", help="the same on a serial line")
    parser.add_argument("--service", action="append", default=[], metavar="URL=ARGUMENTS",
                        help="a tovik-cloud with these arguments, in place of URL")
    return parser.parse_args()


def run_document(options):
    blocks = blocks_of(Path(options.document).read_text(encoding="utf-8"))
    if not blocks or not options.folder:
        return 0
    processes = Processes()
    try:
        guide = Guide(Stage(options, processes))
        for block in blocks:
            print(f"{options.document}:{block.line}: {block.word} {block.rest}", flush=True)
            try:
                guide.do(block)
            except (Failure, OSError, subprocess.TimeoutExpired) as failure:
                raise Failure(f"line {block.line}: {block.word}: {failure}\n"
                              f"{guide.stage.with_places(block.text)}") from failure
    finally:
        processes.end_all()
    return 0


def main():
    options = arguments()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # by way of "finally"
    try:
        return run_document(options)
    except Failure as failure:
        print(f"{options.document}: {failure}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
