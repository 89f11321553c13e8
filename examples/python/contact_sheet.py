#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws a contact sheet: an image with twelve different shadows, each over grey with its settings below.

Usage: contact_sheet.py IMAGE [SHEET]        (SHEET is contact_sheet.png without it)

Needs Pillow (Debian: python3-pil). The cells are drawn at a part of the resolution, as previews are: distances remain in
pixels of the whole image.
"""

import fractions
import sys

import numpy
import PIL.Image
import PIL.ImageDraw
import PIL.ImageFont

import umbrant

COLUMNS = 3
CELL = 420, 270
CAPTION = 40
GREY = 128, 128, 128
# Space around the image, as a part of its longer side: blurs look best where the image does not touch the layer's edge.
MARGIN = 0.12
FONTS = "Inter-Regular.otf", "DejaVuSans.ttf", "Arial.ttf"

LONG = {"style/distance": 420, "style/softness": 90, "opacity/opacity-end": 0}
CELLS = {
    "long and soft": LONG,
    "short and hard": {"style/distance": 90, "style/softness": 0},
    "from below": {**LONG, "style/angle": -45},
    "blue": {**LONG, "style/color": "#2040c0", "opacity/opacity-start": 40},
    "radial: a glow": {"style/shadow-type": "radial", "style/color": (1, 0.8, 0.3), "style/origin": "50%,50%",
                       "style/distance": 60, "style/softness": 120, "opacity/opacity-start": 8, "opacity/opacity-end": 2},
    "inner": {"style/shadow-type": "inner", "style/distance": 30, "style/softness": 20, "opacity/opacity-end": 0},
    "eased": {**LONG, "easing/ease": 100, "opacity/opacity-start": 30},
    "not eased": {**LONG, "easing/ease": 0, "opacity/opacity-start": 30},
    "faint": {**LONG, "opacity/opacity-master": 35},
    "no softness": {**LONG, "style/softness": 0, "quality/samples": 200, "opacity/opacity-start": 12},
    "to the right": {**LONG, "style/angle": 90},
    "a long way down": {**LONG, "style/angle": 180, "style/distance": 700, "style/softness": 160},
}  # fmt: skip


def font():
    for name in FONTS:
        try:
            return PIL.ImageFont.truetype(name, 18)
        except OSError:
            pass
    return PIL.ImageFont.load_default()


def cell(effect, layer, ratio, settings):
    """The image with one shadow, over grey, in the middle of a cell."""
    effect.reset()
    effect.update(settings)
    picture = effect.render(numpy.asarray(layer), scale=ratio)
    drawn = PIL.Image.fromarray(picture.array, "RGBA")
    ground = PIL.Image.new("RGBA", CELL, (*GREY, 255))
    # The layer is in the middle; its shadow may reach beyond the cell.
    at = (CELL[0] - layer.width) // 2 + picture.place.left, (CELL[1] - layer.height) // 2 + picture.place.top
    shown = PIL.Image.new("RGBA", CELL)
    shown.paste(drawn, at)
    return PIL.Image.alpha_composite(ground, shown)


def main():
    if len(sys.argv) not in (2, 3):
        print(__doc__, file=sys.stderr)
        return 2
    image = PIL.Image.open(sys.argv[1]).convert("RGBA")
    file = sys.argv[2] if len(sys.argv) == 3 else "contact_sheet.png"
    # The visible part with some space around it.
    left, top, right, bottom = image.getchannel("A").getbbox() or (0, 0, image.width, image.height)
    margin = round(MARGIN * max(right - left, bottom - top))
    image = image.crop((left - margin, top - margin, right + margin, bottom + margin))

    # The image fits into three quarters of a cell; one ratio for both sides, so that round shadows remain round.
    ratio = min(fractions.Fraction(3 * side, 4 * length) for side, length in zip(CELL, image.size))
    ratio = max(min(ratio, fractions.Fraction(1)), fractions.Fraction(1, 64)).limit_denominator(1000)
    size = max(1, round(image.width * ratio)), max(1, round(image.height * ratio))
    layer = image.resize(size, PIL.Image.Resampling.LANCZOS)

    rows = -(-len(CELLS) // COLUMNS)
    sheet = PIL.Image.new("RGB", (COLUMNS * CELL[0], rows * (CELL[1] + CAPTION)), "white")
    words = PIL.ImageDraw.Draw(sheet)
    letters = font()
    effect = umbrant.Effect()
    for number, (name, settings) in enumerate(CELLS.items()):
        x, y = number % COLUMNS * CELL[0], number // COLUMNS * (CELL[1] + CAPTION)
        sheet.paste(cell(effect, layer, ratio, settings).convert("RGB"), (x, y))
        words.text((x + 14, y + CELL[1] + 9), name, "black", letters)
    sheet.save(file)
    print(f"{file}: {len(CELLS)} shadows of {sys.argv[1]}, {effect.renderer_text}")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (umbrant.Error, OSError) as error:
        sys.exit(f"contact_sheet.py: {error}")
