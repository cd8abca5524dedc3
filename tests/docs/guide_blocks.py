"""The code blocks of a Markdown document, each with the mark in front of it."""
import re
from dataclasses import dataclass

# A comment that stands directly in front of a block is its mark. One that begins with "do:" is a
# command of its own, which no reader sees.
_PIECE = re.compile(
    r"^<!-- do: (?P<hidden>.*?) -->$"
    r"|(?:^<!-- (?P<mark>(?:(?!-->).)*?) -->\n)?^```(?P<language>\S*)\n(?P<text>.*?)^```$",
    re.M | re.S,
)
# What else a reader sees as code, or would be a mark if it were written rightly. Only what stands
# between the pieces is searched, without `code` within a line.
_OTHERS = [
    (re.compile(r"^(?: {0,3}>[ \t]?)*(?: {4}| {0,3}\t)[ \t]*\S", re.M),
     "an indented line, which may be a block that nothing tests"),
    (re.compile(r"^[ \t>]*(?:[-*+]|\d+[.)])(?: {5}| *\t)[ \t]*\S", re.M),
     "an indented block in a list, which nothing tests"),
    (re.compile(r"<(?:pre|listing|xmp)\b", re.I), "a block in HTML, which nothing tests"),
    (re.compile(r"<!--|-->"), "a comment that is no mark directly in front of a block, or is not "
                              "written as CONTRIBUTING.md says"),
]
_FENCE = re.compile(r"^[ \t>]*(?:```|~~~)", re.M)


class Failure(Exception):
    """What a block says is not what is."""


@dataclass
class Block:
    line: int
    word: str
    rest: str
    text: str
    numbers_vary: bool = False


def marked_block(line, mark, text):
    """'file: NAME' is the word 'file' with 'NAME', 'fails 2' is 'fails' with '2'."""
    mark = " ".join(mark.split())
    head, colon, rest = mark.partition(": ")
    numbers_vary = head.endswith(" numbers vary")
    head = head.removesuffix(" numbers vary")
    if not colon:
        head, _, rest = head.partition(" ")
    return Block(line, head, rest, text, numbers_vary)


def reject_others(text):
    """What is between the pieces, in its lines, has nothing that looks like code or a mark."""
    between = _PIECE.sub(lambda piece: "\n" * piece[0].count("\n"), text)
    between = re.sub(r"(`+)(?!`)[^\n]*?(?<!`)\1(?!`)", "", between)
    for pattern, problem in _OTHERS:
        found = pattern.search(between)
        if found:
            line = between.count("\n", 0, found.start()) + 1
            raise Failure(f"line {line}: {problem}")


def blocks_of(text):
    """All blocks of a document in order; a block without a mark is a Failure."""
    blocks = []
    fences = 0
    for piece in _PIECE.finditer(text):
        line = text.count("\n", 0, piece.start()) + 1
        if "<!--" in (piece["hidden"] or piece["mark"] or ""):
            raise Failure(f"line {line}: a comment that does not end")
        if piece["hidden"]:
            blocks.append(Block(line, "do", "", piece["hidden"]))
            continue
        fences += 2
        line = text.count("\n", 0, piece.start("text"))
        if not piece["mark"]:
            raise Failure(f"line {line}: a block without a mark, which nothing tests; "
                          "CONTRIBUTING.md lists the marks")
        blocks.append(marked_block(line, piece["mark"], piece["text"]))
    if len(_FENCE.findall(text)) != fences:
        raise Failure("a block that is not understood: blocks begin and end with three backticks "
                      "at the beginning of a line")
    reject_others(text)
    return blocks
