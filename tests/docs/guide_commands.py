"""Checks commands that cannot be run in a test: that what they name exists."""
import json
import re
import shlex
import shutil
import subprocess
from pathlib import Path

from guide_blocks import Failure

_ASSIGNMENT = re.compile(r"[A-Za-z_]\w*=")
_SEPARATORS = {"&&", "||", "|", ";", "&"}


def simple_commands(text):
    """The words of each command; brackets of a synopsis are left out."""
    for line in text.replace("\\\n", " ").splitlines():
        words = []
        lexer = shlex.shlex(re.sub(r"[\[\]]", " ", line), posix=True, punctuation_chars="|&;")
        lexer.whitespace_split = True
        for word in [*lexer, ";"]:
            if word not in _SEPARATORS:
                words.append(word)
                continue
            while words and _ASSIGNMENT.match(words[0]):
                words.pop(0)
            if words:
                yield words
            words = []


class CommandCheck:
    """`source` is the project's folder; `environment` finds its programs."""

    def __init__(self, source, folder, environment):
        self.source = Path(source)
        self.folder = Path(folder)
        self.environment = environment
        self.helps = {}

    def check(self, text):
        found = 0
        for words in simple_commands(text):
            self.check_command(words)
            found += 1
        if found == 0:
            raise Failure("has no commands")

    def check_command(self, words):
        program, arguments = words[0], words[1:]
        if program == "cmake":
            self.check_presets(arguments)
        elif program.startswith(("scripts/", "tovik-")) or "/tovik-" in program:
            self.check_options(program, arguments)
        elif not shutil.which(program, path=self.environment["PATH"]):
            raise Failure(f"there is no program '{program}'")
        for argument in arguments:
            self.check_path(argument)

    def check_presets(self, arguments):
        if "--preset" not in arguments:
            return
        name = arguments[arguments.index("--preset") + 1]
        kind = "buildPresets" if "--build" in arguments else "configurePresets"
        presets = json.loads((self.source / "CMakePresets.json").read_text())[kind]
        if name not in [preset["name"] for preset in presets if not preset.get("hidden")]:
            raise Failure(f"there is no preset '{name}' in {kind}")

    def help_of(self, *words):
        if words not in self.helps:
            done = subprocess.run([*words, "--help"], cwd=self.folder, env=self.environment,
                                  stdin=subprocess.DEVNULL, capture_output=True, text=True,
                                  timeout=60, check=False)
            if done.returncode != 0:
                raise Failure(f"'{' '.join(words)} --help' exits with {done.returncode}: "
                              f"{done.stderr}")
            self.helps[words] = done.stdout
        return self.helps[words]

    def check_options(self, program, arguments):
        if "/" in program and not (self.folder / program).exists():
            raise Failure(f"there is no '{program}'")
        asked = (program,)
        listed = self.help_of(program).partition("Subcommands:\n")[2]
        subcommands = re.findall(r"^  (\w\S*)", listed, re.M)
        if subcommands and arguments and not arguments[0].startswith("-"):
            if arguments[0] not in subcommands:
                raise Failure(f"'{program}' has no subcommand '{arguments[0]}'")
            asked = (program, arguments[0])
        text = self.help_of(*asked)
        for argument in arguments:
            option = argument.partition("=")[0]
            if argument == "--":
                break
            if re.match(r"--?[A-Za-z]", option) and not re.search(
                    rf"(?<![\w-]){re.escape(option)}(?![\w-])", text):
                raise Failure(f"'{' '.join(asked)} --help' does not have '{option}'")

    def check_path(self, argument):
        """Of the project's own folders, what is named has to be there."""
        top = argument.partition("/")[0]
        if "/" in argument and top not in ("", "build") and (self.source / top).is_dir():
            if not (self.folder / argument).exists():
                raise Failure(f"there is no '{argument}'")
