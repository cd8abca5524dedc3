"""Checks the links of the site, and those of the same pages as they stand in the repository.

Every link inside has to lead to a file that exists, and its anchor to one in it. A link to another
host is an error, too: the site is complete without a network.
"""
import argparse
import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

from site_page import COMMENT, FENCED, anchors

IMAGE_OR_LINK = re.compile(r"\]\(([^()\s]+)\)")
CODE = re.compile(r"`[^`\n]*`")
# The foot of each page, and addresses that are examples, of which Doxygen makes links.
KNOWN_HOSTS = re.compile(r"www\.doxygen\.org|cloud\.example|127\.0\.0\.1(:\d+)?")


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links = set()
        self.anchors = set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)
            elif name in ("href", "src", "data") and value:
                self.links.add(value)


def site_errors(folder):
    pages = {path.resolve(): Page(path) for path in sorted(folder.rglob("*.html"))}
    for path, page in pages.items():
        for link in sorted(page.links):
            parts = urlsplit(link)
            if parts.scheme in ("javascript", "mailto", "data"):
                continue
            where = path.relative_to(folder.resolve())
            if parts.netloc:
                if not KNOWN_HOSTS.fullmatch(parts.netloc):
                    yield f"{where}: leads to another host: {link}"
                continue
            target = (path.parent / unquote(parts.path)).resolve() if parts.path else path
            if not target.is_file():
                yield f"{where}: there is no {link}"
            elif parts.fragment and target in pages:
                if unquote(parts.fragment) not in pages[target].anchors:
                    yield f"{where}: there is no anchor {link}"


def repository_errors(pages):
    for page in pages:
        text = page.read_text(encoding="utf-8")
        for link in IMAGE_OR_LINK.findall(CODE.sub("", FENCED.sub("", COMMENT.sub("", text)))):
            parts = urlsplit(link)
            if parts.netloc:
                continue
            target = page.parent / parts.path if parts.path else page
            if not target.exists():
                yield f"{page}: there is no {link}"
            elif parts.fragment and target.suffix == ".md":
                if parts.fragment not in anchors(target.read_text(encoding="utf-8")):
                    yield f"{page}: there is no heading {link}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--site", type=Path, required=True, help="the folder with the HTML")
    parser.add_argument("--pages", type=Path, nargs="*", default=[], help="Markdown files")
    options = parser.parse_args()
    errors = [*site_errors(options.site), *repository_errors(options.pages)]
    for error in errors:
        print(error, file=sys.stderr)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
