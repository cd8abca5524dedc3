#!/usr/bin/env python3
"""Makes PNG pictures of the documents small: 256 colours, and nothing but the picture.

Usage: small_png.py FILE.png... Takes Debian's python3-pil.
"""
import sys

from PIL import Image


def shrink(file):
    """Replaces the picture; the same picture gives the same file."""
    picture = Image.open(file).convert("RGB")
    picture.quantize(256, kmeans=1, dither=Image.Dither.NONE).save(file, optimize=True)


if __name__ == "__main__":
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__)
        sys.exit(0 if sys.argv[1:] in (["-h"], ["--help"]) else 2)
    for name in sys.argv[1:]:
        shrink(name)
