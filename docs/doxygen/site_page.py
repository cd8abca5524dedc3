"""Doxygen's filter for Markdown: prints a page of the plain repository as one of the site.

Headings get labels made of the page's name and the heading, so that links to a heading of another
page work; links between pages become references, which Doxygen checks. Comments, among them the
marks of code blocks, are left out.
"""
import re
import sys
from pathlib import Path

LINK = re.compile(r"(?<!!)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^()\s]+)\)")
COMMENT = re.compile(r"<!--.*?-->\n?", re.S)
FENCED = re.compile(r"^```.*?^```$", re.M | re.S)
# Doxygen does not take code for bold.
BOLD_CODE = re.compile(r"\*\*(`[^`]+`)\*\*")
# Nor an escaped bar in a table's code.
CODE_WITH_BAR = re.compile(r"`([^`\n]*\\\|[^`\n]*)`")
HEADING = re.compile(r"^(#{1,6}) (.+)$", re.M)


def page_name(path):
    """The page's label and the name of its file on the site."""
    return "index" if Path(path).name == "README.md" else Path(path).stem.lower()


def slug(heading):
    """The anchor that repositories give a heading."""
    text = LINK.sub(r"\1", heading)
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-")


def anchors(text):
    """The anchors of all headings in order; a repeated one is counted."""
    found = []
    for match in HEADING.finditer(FENCED.sub("", text)):
        anchor = slug(match[2])
        repeats = sum(1 for one in found if one == anchor or re.fullmatch(anchor + r"-\d+", one))
        found.append(f"{anchor}-{repeats}" if repeats else anchor)
    return found


def site_link(page, target):
    path, _, anchor = target.partition("#")
    if "://" in target:
        return target
    if path and not path.endswith(".md"):
        return Path(path).name  # pictures and the licence lie beside the pages
    label = page_name(path) if path else page
    if anchor:
        return f"@ref {label}-{anchor}"
    return "index.html" if label == "index" else f"@ref {label}"


def converted(path, text):
    page = page_name(path)
    labels = iter(anchors(text))
    pieces = []
    end = 0
    for block in [*FENCED.finditer(text), None]:
        prose = text[end:block.start() if block else len(text)]
        prose = COMMENT.sub("", prose)
        prose = CODE_WITH_BAR.sub(r"<code>\1</code>", prose)
        prose = BOLD_CODE.sub(r"<b>\1</b>", prose)
        prose = LINK.sub(lambda m: f"[{m[1]}]({site_link(page, m[2])})", prose)
        prose = HEADING.sub(lambda m: with_label(page, m, next(labels)), prose)
        pieces.append(prose)
        if block:
            pieces.append(block[0])
            end = block.end()
    return "".join(pieces)


def with_label(page, heading, anchor):
    if heading[1] != "#":
        return f"{heading[0]} {{#{page}-{anchor}}}"
    return heading[0] if page == "index" else f"{heading[0]} {{#{page}}}"


if __name__ == "__main__":
    name = sys.argv[1]
    sys.stdout.reconfigure(encoding="utf-8")
    sys.stdout.write(converted(name, Path(name).read_text(encoding="utf-8")))
