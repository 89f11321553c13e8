#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws the pictures of docs/sequences.md: the animated title as a contact sheet, and its curves.

Usage: assets/draw_motion.py UMBRANT

UMBRANT is the built program. The title's 48 frames are drawn by the one command that the page shows, at an eighth of
the resolution; every fourth of them goes into the sheet, in rows of four, on a light ground.
"""

import pathlib
import subprocess
import sys
import tempfile

import draw_gallery
import png_rows

PRESET = "assets/presets/turning-title.json"
PICTURES = draw_gallery.ROOT / "docs" / "images" / "motion"
SHOWN = range(1, 49, 4)
COLUMNS = 4
GAP = 6
GAP_COLOUR = (255, 255, 255)


def sheet(frames):
    """The frames' rows side by side and below each other, with a gap between them."""
    width = len(frames[0][0]) // 3
    whole = COLUMNS * width + (COLUMNS - 1) * GAP
    rows = []
    for first in range(0, len(frames), COLUMNS):
        if first:
            rows += [bytes(GAP_COLOUR) * whole] * GAP
        for lines in zip(*frames[first:first + COLUMNS]):
            rows.append((bytes(GAP_COLOUR) * GAP).join(bytes(line) for line in lines))
    return whole, rows


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    program = str(pathlib.Path(sys.argv[1]).resolve())
    PICTURES.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([program, "render", "assets/layers/title.png", "-o", f"{folder}/title.####.png", "--frames", "1-48",
                        "--preset", PRESET, "--canvas", "layer", "--downsample", "8"],
                       cwd=draw_gallery.ROOT, check=True, stdout=subprocess.DEVNULL)
        frames = []
        for number in SHOWN:
            _, _, step, rows = png_rows.read_png(pathlib.Path(folder) / f"title.{number:04}.png")
            frames.append([png_rows.on_ground(row, step, draw_gallery.GROUND) for row in rows])
    png_rows.write_png(PICTURES / "turning-title.png", *sheet(frames))
    subprocess.run([program, "curves", "--preset", PRESET, "-o", str(PICTURES / "turning-title-curves.png")],
                   cwd=draw_gallery.ROOT, check=True, stdout=subprocess.DEVNULL)


if __name__ == "__main__":
    main()
