"""Sources with all their mutants in them, of which one is chosen when a program of them runs."""

import bisect
import re

from clang import cindex

import mutant_sites

HEADER = b'#include "tests/support/mutant_switch.h"\n'


class Source:
    """One file; mutants that cannot stand beside the others are dropped from it."""

    def __init__(self, path, mutants):
        self.path, self.mutants = path, mutants  # by number
        self.sound = path.read_bytes()
        self.standing = {number for number, mutant in mutants.items() if mutant.sites}

    def single(self, number):
        mutant = self.mutants[number]
        return self.sound[:mutant.begin] + mutant.text.encode() + self.sound[mutant.end:]

    def switched(self):
        self.sites = sorted((begin, -end, number, pieces) for number in self.standing
                            for begin, end, pieces in self.mutants[number].sites)
        self.out, self.spans = bytearray(HEADER), []
        self.copy(0, len(self.sound), frozenset())
        return bytes(self.out)

    def copy(self, begin, end, around):
        """A range with the sites in it but for those of mutants whose alternatives it is part of."""
        at = begin
        for first, last, number, pieces in self.sites:
            if first < at or -last > end or number in around:
                continue
            self.out += self.sound[at:first]
            start = len(self.out)
            for piece in pieces:
                if isinstance(piece, str):
                    chosen = f"mutants::isChosen({number})"
                    self.out += piece.replace(mutant_sites.MARK, chosen).encode()
                else:
                    self.copy(*piece, around | {number})
            self.spans.append((len(self.out) - start, start, number))
            at = -last
        self.out += self.sound[at:end]

    def drop(self, places):
        """Drops what the compiler refused at places, offsets or (line, column); whether that was any."""
        before = len(self.standing)
        lines = [0] + [each.end() for each in re.finditer(b"\n", self.out)]
        for place in places:
            offset = place if isinstance(place, int) else lines[place[0] - 1] + place[1] - 1
            around = [each for each in self.spans if each[1] <= offset <= each[1] + each[0]]
            if around:
                self.standing.discard(min(around)[2])
            else:
                self.standing -= self.suspects(lines, offset)
        return len(self.standing) < before

    def suspects(self, lines, offset):
        """Those in the line of what is wrong, such as no constant for a null pointer; else the last before it,
        such as a size that is no constant."""
        line = bisect.bisect_right(lines, offset)
        here = {number for _, start, number in self.spans if bisect.bisect_right(lines, start) == line}
        before = [(start, number) for _, start, number in self.spans if start < offset]
        return here or {number for _, number in sorted(before)[-1:]}

    def settle(self, arguments):
        """Drops what is no program with the others; the numbers of those that are one alone."""
        path = str(self.path)
        unit = cindex.Index.create().parse(
            path, args=[*arguments, "-ferror-limit=0", "-Wno-c++11-narrowing"],
            unsaved_files=[(path, self.switched().decode())],
            options=cindex.TranslationUnit.PARSE_PRECOMPILED_PREAMBLE)
        while errors := errors_of(unit):
            if not self.drop([place for each in errors for place in places_of(each, path)]):
                raise ValueError(f"{self.path}: {errors[0]}")
            unit.reparse([(path, self.switched().decode())])
        alone = []
        for number in sorted(set(self.mutants) - self.standing):
            unit.reparse([(path, self.single(number).decode())])
            if not errors_of(unit):
                alone.append(number)
        return alone


def errors_of(unit):
    return [each for each in unit.diagnostics if each.severity >= cindex.Diagnostic.Error]


def places_of(diagnostic, path):
    """Where it is in the file, or where one of its notes is."""
    at = diagnostic.location
    if at.file and at.file.name == path:
        yield at.offset
    else:
        for note in diagnostic.children:
            yield from places_of(note, path)
