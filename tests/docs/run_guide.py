#!/usr/bin/env python3
"""Does what a guide says: writes its files, runs its commands, compares what they print.

A code block is told by the comment in front of it:

  <!-- file: NAME -->    is (a further part of) the file NAME
  <!-- run -->           shell commands that succeed
  <!-- fails N -->       shell commands that exit with N
  <!-- background -->    a server, started and left to run; the number that ends it is its port
  <!-- output -->        what the last shell commands have printed
  none, in C++           is found, as it stands, in one of the files of --excerpts

Every block of a guide has to be one of these. Ports that servers are given in the guide are replaced
by free ones.
"""
import argparse
import os
import re
import select
import subprocess
import sys
from pathlib import Path

BLOCK = re.compile(
    r"(?:<!-- (?P<mark>[^>]*?) -->\n)?^```(?P<language>\w*)\n(?P<text>.*?)^```$", re.M | re.S
)


class Failure(Exception):
    pass


class Guide:
    def __init__(self, options):
        self.folder = Path(options.folder)
        self.excerpts = [Path(name).read_text() for name in options.excerpts]
        self.environment = dict(os.environ)
        self.environment["PATH"] = os.pathsep.join([*options.path, os.environ["PATH"]])
        for setting in options.set:
            name, value = setting.split("=", 1)
            self.environment[name] = value
        self.ports = {}
        self.servers = []
        self.written = set()
        self.printed = None

    def do(self, mark, language, text):
        if not mark:
            return self.find_excerpt(language, text)
        word, _, rest = mark.partition(" ")
        if word == "file:":
            return self.write(rest, text)
        if word == "run":
            return self.run(text, 0)
        if word == "fails":
            return self.run(text, int(rest))
        if word == "background":
            return self.serve(text)
        if word == "output":
            return self.compare(text)
        raise Failure(f"unknown mark '{mark}'")

    def find_excerpt(self, language, text):
        if language != "cpp":
            raise Failure(f"a block of '{language}' that nobody runs or compiles")
        if not any(text in source for source in self.excerpts):
            raise Failure("is in none of the files that it is said to be from")

    def write(self, name, text):
        with open(self.folder / name, "a" if name in self.written else "w") as file:
            file.write(text)
        self.written.add(name)

    def with_ports(self, text):
        for given, free in self.ports.items():
            text = re.sub(rf"\b{given}\b", free, text)
        return text

    def run(self, text, expected):
        done = subprocess.run(["bash", "-e", "-c", self.with_ports(text)], cwd=self.folder,
                              env=self.environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, timeout=200)
        self.printed = done.stdout
        if done.returncode != expected:
            raise Failure(f"exit code {done.returncode}, not {expected}\n{done.stdout}{done.stderr}")

    def serve(self, text):
        command, given = text.strip().rsplit(" ", 1)
        server = subprocess.Popen(["bash", "-c", f"exec {command} 0"], cwd=self.folder,
                                  env=self.environment, stdout=subprocess.PIPE, text=True)
        self.servers.append(server)
        if not select.select([server.stdout], [], [], 60)[0]:
            raise Failure("says nothing within a minute")
        line = server.stdout.readline()
        port = re.search(r"port (\d+)", line)
        if not port:
            raise Failure(f"does not say its port but '{line}'")
        self.ports[given] = port.group(1)

    def compare(self, text):
        if self.printed != text:
            raise Failure(f"printed is {self.printed!r}, not {text!r}")

    def stop(self):
        for server in self.servers:
            server.terminate()
            server.wait()
            server.stdout.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("guide", help="the Markdown file")
    parser.add_argument("--folder", required=True, help="an empty folder to do it in")
    parser.add_argument("--path", action="append", default=[], help="where programs are looked for")
    parser.add_argument("--set", action="append", default=[], metavar="NAME=VALUE",
                        help="an environment variable for the commands")
    parser.add_argument("--excerpts", nargs="*", default=[], help="files that are quoted")
    options = parser.parse_args()

    text = Path(options.guide).read_text()
    guide = Guide(options)
    count = 0
    try:
        for block in BLOCK.finditer(text):
            line = text.count("\n", 0, block.start("text"))
            print(f"{options.guide}:{line}: {block['mark'] or 'excerpt'}", flush=True)
            try:
                guide.do(block["mark"], block["language"], block["text"])
            except Failure as failure:
                print(f"{options.guide}:{line}: {failure}\n{guide.with_ports(block['text'])}",
                      file=sys.stderr)
                return 1
            count += 1
    finally:
        guide.stop()
    if 2 * count != len(re.findall(r"^```", text, re.M)):
        print(f"{options.guide}: not every block was understood", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
