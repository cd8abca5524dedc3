#!/usr/bin/python3
"""tovik-host as the documents' commands call it, on a machine that may be slow: what bounds a wait
becomes longer, and what only shows values for a while becomes shorter. The program itself is named
by the variable TOVIK_HOST."""
import os
import sys

LONGER = {"--timeout": "100", "--confirm": "100", "--response-timeout": "30000"}
SHORTER = {"--seconds": 3}


def patient(arguments):
    result = list(arguments)
    for i in range(1, len(result)):
        option = result[i - 1]
        if option in LONGER:
            result[i] = LONGER[option]
        elif option in SHORTER:
            result[i] = str(min(float(result[i]), SHORTER[option]))
    # Of a service or of a device; other commands keep to what they were given.
    command = result[0] if result else ""
    added = []
    if "--library" in result and "--response-timeout" not in result:
        added = ["--response-timeout", LONGER["--response-timeout"]]
    if command in ("read", "write") and "--timeout" not in result and "--help" not in result:
        added += ["--timeout", LONGER["--timeout"]]
    # After "--" nothing is an option.
    return [command, *added, *result[1:]] if added else result


if __name__ == "__main__":
    program = os.environ["TOVIK_HOST"]
    os.execv(program, [program, *patient(sys.argv[1:])])
