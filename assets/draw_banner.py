#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws the banner of the effect's panel. Its shadow is the effect's own work.

Usage: assets/draw_banner.py UMBRANT [FOLDER]      (default folder: assets/banner)

UMBRANT is the built program. Writes banner.png, for people, and um2_map.bgra, which the build embeds: 500 x 150 pixels,
top row first, four bytes each, blue, green, red and straight alpha. The panel shows it at half that size, so nothing in
it is finer than two pixels. The card carries its own ground, and only its corners are clear: it must look right on a
dark and on a light panel. Needs Debian's python3-cairo and fonts-inter.
"""

import math
import pathlib
import re
import subprocess
import sys
import tempfile

import cairo

ROOT = pathlib.Path(__file__).resolve().parent.parent
WIDTH, HEIGHT = 500, 150
RADIUS = 14
BASELINE = 99

# The light falls from the upper left; the shadow starts dense under the letters and is gone at the card's edge.
SHADOW = {
    "style/angle": "128",
    "style/distance": "150",
    "style/softness": "34",
    "style/color": "#2c1440",
    "opacity/opacity-start": "7",
    "opacity/opacity-end": "0",
    "opacity/opacity-master": "82",
    "easing/ease": "35",
    "quality/samples": "96",
    "quality/resolution": "extreme",
}


def version():
    """The three numbers as the effect itself has them."""
    text = (ROOT / "entry" / "version.h").read_text()
    parts = [re.search(rf"kVersion{part} = (\d+);", text).group(1) for part in ("Major", "Minor", "BugFix")]
    return ".".join(parts)


def card(context):
    context.new_path()
    for corner, (x, y) in enumerate(
        ((WIDTH - RADIUS, RADIUS), (WIDTH - RADIUS, HEIGHT - RADIUS), (RADIUS, HEIGHT - RADIUS), (RADIUS, RADIUS))
    ):
        context.arc(x, y, RADIUS, (corner - 1) * math.pi / 2, corner * math.pi / 2)
    context.close_path()


def draw_type(context):
    """The name and, smaller, the version, in white."""
    context.set_source_rgb(1, 1, 1)
    context.select_font_face("Inter Display Extra Bold")
    context.set_font_size(74)
    tracking = -1.6
    x = 34
    for letter in "Umbrant 2":
        context.move_to(x, BASELINE)
        context.show_text(letter)
        x += context.text_extents(letter).x_advance + tracking
    context.select_font_face("Inter Display Semi Bold")
    context.set_font_size(22)
    context.move_to(x + 14, BASELINE)
    context.show_text(version())


def draw_ground(context):
    """Evening light: warm where the light comes from, violet where the shadow goes."""
    ground = cairo.LinearGradient(0, 0, WIDTH, HEIGHT)
    for position, colour in ((0.0, "#ff9f6b"), (0.42, "#e0607e"), (1.0, "#5b4b9a")):
        ground.add_color_stop_rgb(position, *(int(colour[i : i + 2], 16) / 255 for i in (1, 3, 5)))
    context.set_source(ground)
    context.paint()
    glow = cairo.RadialGradient(40, -30, 10, 40, -30, 330)
    glow.add_color_stop_rgba(0, 1, 0.93, 0.8, 0.55)
    glow.add_color_stop_rgba(1, 1, 0.93, 0.8, 0)
    context.set_source(glow)
    context.paint()


def shadowed_type(umbrant):
    """The type with the shadow that the effect gives it, as a cairo surface."""
    with tempfile.TemporaryDirectory() as folder:
        layer, result = pathlib.Path(folder, "type.png"), pathlib.Path(folder, "shadow.png")
        surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, WIDTH, HEIGHT)
        draw_type(cairo.Context(surface))
        surface.write_to_png(str(layer))
        settings = [f"--set={path}={value}" for path, value in SHADOW.items()]
        subprocess.run([umbrant, "render", layer, "-o", result, "--canvas", "layer", *settings], check=True,
                       stdout=subprocess.DEVNULL)
        return cairo.ImageSurface.create_from_png(str(result))


def straight(surface):
    """Cairo's pixels, premultiplied in memory as blue, green, red, alpha, with straight alpha."""
    pixels = bytearray()
    data, stride = bytes(surface.get_data()), surface.get_stride()
    for y in range(HEIGHT):
        row = data[y * stride : y * stride + WIDTH * 4]
        for x in range(0, len(row), 4):
            alpha = row[x + 3]
            pixels += bytes(min(255, (value * 255 + alpha // 2) // alpha) if alpha else 0 for value in row[x : x + 3])
            pixels.append(alpha)
    return bytes(pixels)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[2]) if len(sys.argv) == 3 else ROOT / "assets" / "banner"
    folder.mkdir(parents=True, exist_ok=True)

    surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, WIDTH, HEIGHT)
    context = cairo.Context(surface)
    context.push_group()
    draw_ground(context)
    context.set_source_surface(shadowed_type(sys.argv[1]), 0, 0)
    context.paint()
    context.pop_group_to_source()
    card(context)
    context.fill()

    surface.flush()
    surface.write_to_png(str(folder / "banner.png"))
    (folder / "um2_map.bgra").write_bytes(straight(surface))


if __name__ == "__main__":
    main()
