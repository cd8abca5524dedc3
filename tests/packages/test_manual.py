#!/usr/bin/python3
"""Compares the manual pages with what the programs say with --help, and has their text checked.

A command's section ("Ss") under COMMANDS has the command's own options and refers ("Sx") to the
sections of those that it shares with others. tovik-cloud has no commands: the options are those of
its section OPTIONS. The members of files and of JSON are those that the guides' tables have.
"""
import argparse
import re
import subprocess
import sys
from pathlib import Path

OPTION = re.compile(r"^  (?:-[a-zA-Z],)?(--[a-z0-9-]+)", re.MULTILINE)


def printed(*command):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          timeout=120, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} exits with {done.returncode}: {done.stderr}")
    return done.stdout


class Page:
    """The options, faults and references of each section of an mdoc page."""

    def __init__(self, path):
        self.options, self.references, self.terms, self.chapters = {}, {}, {}, {}
        self.words = {}
        chapter = section = ""
        for line in path.read_text(encoding="utf-8").splitlines():
            if line.startswith(".Sh "):
                chapter = section = line[4:]
            elif line.startswith(".Ss "):
                section = line[4:]
            self.chapters.setdefault(chapter, set()).add(section)
            self.words.setdefault(chapter, set()).update(re.findall(r"[a-z_]+", line))
            if line.startswith(".It Fl "):
                found = {"-" + name for name in re.findall(r"Fl (-[a-z0-9-]+)", line)}
                self.options.setdefault(section, set()).update(found)
            elif line.startswith(".It Cm "):
                self.terms.setdefault(section, set()).add(line[7:])
            elif line.startswith(".Sx "):
                self.references.setdefault(section, set()).add(line[4:].rstrip(" ,."))

    def options_of(self, section):
        shared = [self.options.get(name, set()) for name in self.references.get(section, ())]
        return self.options.get(section, set()).union(*shared)


def tables(guide, heading):
    """The rows of all tables below a heading of a guide; a table's first row is its head."""
    text = guide.read_text(encoding="utf-8")
    section = re.search(rf"^#+ {re.escape(heading)}$(.*?)(?=^#|\Z)", text, re.DOTALL | re.MULTILINE)
    if not section:
        sys.exit(f"{guide.name} has no section \"{heading}\"")
    lines = section.group(1).splitlines()
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines
            if line.startswith("|") and not re.match(r"\|[-|]+$", line)]


def file_members(guide, *headings):
    """What stands in the first columns: "a.b"; a name without a point belongs to the one before."""
    members, of = set(), ""
    for row in (row for heading in headings for row in tables(guide, heading)):
        if row[0] in ("Account", "Group", "Item"):
            of = f"{row[0].lower()}s[]."
        for name in re.findall(r"`([^`]+)`", row[0]):
            if "." in name:
                of = name[:name.rindex(".") + 1]
            members.add(of + name[len(of) if name.startswith(of) else 0:])
    return members


class Comparison:
    def __init__(self):
        self.problems = []

    def same(self, what, program, page):
        for name in sorted(program - page):
            self.problems.append(f"{what}: the manual page does not have {name}")
        for name in sorted(page - program):
            self.problems.append(f"{what}: the manual page has {name}, which the program does not")


def compare_host(program, page, comparison):
    text = printed(program, "--help")
    commands = set(re.findall(r"^  ([a-z][a-z-]*) ", text.split("Subcommands:")[1], re.MULTILINE))
    comparison.same("tovik-host", set(OPTION.findall(text)), page.options_of("DESCRIPTION"))
    comparison.same("tovik-host's commands", commands, page.chapters["COMMANDS"] - {"COMMANDS"})
    for command in sorted(commands):
        options = set(OPTION.findall(printed(program, command, "--help"))) - {"--help"}
        comparison.same(f"tovik-host {command}", options, page.options_of(command))


def compare_cloud(program, page, comparison):
    options = set(OPTION.findall(printed(program, "--help")))
    described = set().union(*(page.options_of(name) for name in page.chapters["OPTIONS"]))
    comparison.same("tovik-cloud", options, described)
    faults, keys = printed(program, "--list-faults").split("Keys:")
    names = re.findall(r"^  ([a-z0-9-]+) ", faults, re.MULTILINE)
    names += re.findall(r"^  ([a-z]+)=", keys, re.MULTILINE)
    comparison.same("tovik-cloud's faults", set(names), page.terms["FAULTS"])


def compare_files(guides, host, cloud, comparison):
    comparison.same("configurations",
                    file_members(guides / "host-tool.md", "Configuration", "Items in a file"),
                    host.terms["CONFIGURATION"])
    comparison.same("project files", file_members(guides / "simulated-service.md", "Project file"),
                    cloud.terms["PROJECT FILE"])
    cells = [cell for row in tables(guides / "host-tool.md", "JSON lines") for cell in row]
    cells += [row[1] for row in tables(guides / "host-tool.md", "check") if row[0] == "`--json`"]
    named = set(re.findall(r"`([a-z_]+)`", " ".join(cells)))
    if len(named) < 40:
        sys.exit(f"the guide's tables of JSON members are not where they were: {sorted(named)}")
    comparison.same("JSON", named - host.words["JSON"], set())


def check_text(path, comparison):
    """Neither of the two programs that show manual pages finds fault with one."""
    for command in (["mandoc", "-T", "lint", "-W", "warning"],
                    ["man", "--warnings", "--encoding=UTF-8", "--local-file"]):
        done = subprocess.run([*command, path], stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=120, check=False)
        complaints = done.stderr if command[0] == "man" else done.stdout
        if complaints or done.returncode != 0:
            comparison.problems.append(f"{path.name}: {' '.join(command)}: {complaints.strip()}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    for name in ("host", "cloud", "pages", "guides"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    arguments = parser.parse_args()
    comparison = Comparison()
    host = Page(arguments.pages / "tovik-host.1")
    cloud = Page(arguments.pages / "tovik-cloud.1")
    compare_host(arguments.host, host, comparison)
    compare_cloud(arguments.cloud, cloud, comparison)
    compare_files(arguments.guides, host, cloud, comparison)
    for path in sorted(arguments.pages.iterdir()):
        check_text(path, comparison)
    sys.exit("\n".join(comparison.problems) if comparison.problems else 0)


if __name__ == "__main__":
    main()
