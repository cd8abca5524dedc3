"""Compares what a document shows with what was printed, but for what differs from run to run."""
import re

from guide_blocks import Failure

# Times of day, addresses of servers here, and the durations of the service's records.
_VARYING = [
    (re.compile(r"\d{4}-\d\d-\d\d[T ]\d\d:\d\d:\d\d\.\d{3}"), "<time>"),
    (re.compile(r"(?<=127\.0\.0\.1:)\d+"), "<port>"),
    (re.compile(r'"(?:uptime|duration_ms|time)":[\d.e-]+'), "<duration>"),
]
_BYTES = re.compile(r"\[[0-9a-f]{2}(?: [0-9a-f]{2})*\]")
_NUMBER = re.compile(r"(?<![\w.])-?\d+(?:\.\d+)?(?![\w.]*\w)")


def _without_varying(text, numbers_vary):
    for pattern, name in _VARYING:
        text = pattern.sub(name, text)
    if numbers_vary:
        text = _NUMBER.sub("<number>", _BYTES.sub("[<bytes>]", text))
    return text


def is_same_line(shown, printed, numbers_vary=False):
    """Whether the printed line is the shown one; an ellipsis stands for any text."""
    parts = re.split(r"\.\.\.|…", _without_varying(shown.rstrip("\n"), numbers_vary))
    pattern = ".*".join(re.escape(part) for part in parts)
    whole = _without_varying(printed.rstrip("\n"), numbers_vary)
    return shown == printed or re.fullmatch(pattern, whole) is not None


def compare(shown, printed, numbers_vary=False):
    """All lines, and no others."""
    wanted, got = shown.splitlines(), printed.splitlines()
    same = len(wanted) == len(got) and all(
        is_same_line(one, other, numbers_vary) for one, other in zip(wanted, got)
    )
    if not same:
        raise Failure(f"printed is\n{printed}")


class InOrder:
    """The shown lines among others, in their order."""

    def __init__(self, shown, numbers_vary=False):
        self.left = shown.splitlines()
        self.numbers_vary = numbers_vary
        self.printed = ""

    def take(self, line):
        self.printed += line
        if self.left and is_same_line(self.left[0], line, self.numbers_vary):
            self.left.pop(0)

    def finish(self):
        if self.left:
            raise Failure(f"not printed is\n{self.left[0]}\nprinted is\n{self.printed}")
