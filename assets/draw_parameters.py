#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws the pictures of docs/parameters.md into docs/images/parameters.

Usage: assets/draw_parameters.py UMBRANT [PATH...]      (default: all parameters that have pictures)

UMBRANT is the built program. Needs only Python.
"""

import pathlib
import subprocess
import sys
import tempfile

from draw_gallery import GROUND, ROOT, command_words
from parameter_strips import STRIPS
from png_rows import on_ground, read_png, write_png

PICTURES = ROOT / "docs/images/parameters"
GAP = 6
PAGE = (255, 255, 255)


def drawn(program, folder, options):
    """The rows of an image over the gallery's background."""
    words = command_words("picture", options)
    words[3] = str(folder / "picture.png")
    subprocess.run([program, *words], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    _, _, step, rows = read_png(folder / "picture.png")
    return [on_ground(row, step, GROUND) for row in rows]


def draw(program, strip):
    with tempfile.TemporaryDirectory() as folder:
        pictures = [drawn(program, pathlib.Path(folder), strip.command_options(value)) for value in strip.values]
    gap = bytes(PAGE) * GAP
    rows = [gap.join(bytes(row) for row in rows) for rows in zip(*pictures)]
    write_png(PICTURES / f"{strip.name}.png", len(rows[0]) // 3, rows)


def main():
    paths = {strip.path for strip in STRIPS}
    if len(sys.argv) < 2 or not paths.issuperset(sys.argv[2:]):
        sys.exit(f"{__doc__}\nPaths: {', '.join(sorted(paths))}")
    program = str(pathlib.Path(sys.argv[1]).resolve())
    PICTURES.mkdir(parents=True, exist_ok=True)
    for strip in STRIPS:
        if not sys.argv[2:] or strip.path in sys.argv[2:]:
            draw(program, strip)
            print(f"docs/images/parameters/{strip.name}.png")


if __name__ == "__main__":
    main()
