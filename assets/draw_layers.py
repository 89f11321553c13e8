#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws the example layers: what the demo renders, and what a person tries the effect on.

Usage: assets/draw_layers.py [FOLDER]      (default: assets/layers)

Every picture stands for one kind of layer that a compositor meets. All of it comes from this file, fixed seeds and one
typeface, so a second run gives the same pictures. Needs Debian's python3-cairo, fonts-inter and openimageio-tools.
"""

import math
import pathlib
import random
import subprocess
import sys
import tempfile

import cairo

FONT_FILE = pathlib.Path("/usr/share/fonts/opentype/inter/InterDisplay-Black.otf")


def canvas(width, height):
    surface = cairo.ImageSurface(cairo.FORMAT_ARGB32, width, height)
    return surface, cairo.Context(surface)


def colour(text, alpha=1.0):
    """'#rrggbb' as cairo's four numbers."""
    return (*(int(text[i : i + 2], 16) / 255 for i in (1, 3, 5)), alpha)


def ramp(gradient, *stops):
    for position, rgb in stops:
        gradient.add_color_stop_rgba(position, *colour(rgb))
    return gradient


def tracked_text(context, text, centre, baseline, size, family, tracking=0.0):
    """Appends text to the path, centred about x, letters `tracking` ems further apart than the font has them."""
    context.select_font_face(family)
    context.set_font_size(size)
    advances = [context.text_extents(letter).x_advance + tracking * size for letter in text]
    x = centre - (sum(advances) - tracking * size) / 2
    for letter, advance in zip(text, advances):
        context.move_to(x, baseline)
        context.text_path(letter)
        x += advance


def rounded(context, x, y, width, height, radius):
    context.new_sub_path()
    for corner, (cx, cy) in enumerate(
        (
            (x + width - radius, y + radius),
            (x + width - radius, y + height - radius),
            (x + radius, y + height - radius),
            (x + radius, y + radius),
        )
    ):
        context.arc(cx, cy, radius, (corner - 1) * math.pi / 2, corner * math.pi / 2)
    context.close_path()


def draw_title(folder):
    """Large anti-aliased type on nothing: the layer that most shadows are made for."""
    surface, context = canvas(1920, 1080)
    tracked_text(context, "GOLDEN", 960, 548, 268, "Inter Display Black", -0.012)
    tracked_text(context, "HOUR", 960, 790, 268, "Inter Display Black", -0.012)
    context.set_source(ramp(cairo.LinearGradient(0, 350, 0, 790), (0, "#ffb457"), (0.55, "#ff7a4d"), (1, "#f0476b")))
    context.fill()
    tracked_text(context, "A SHORT FILM ABOUT LIGHT", 960, 306, 34, "Inter Display Semi Bold", 0.22)
    context.set_source_rgba(*colour("#ff9a52"))
    context.fill()
    surface.write_to_png(str(folder / "title.png"))


def draw_card(folder):
    """An interface card: flat areas, soft corners, an edge that one anti-aliased pixel makes."""
    surface, context = canvas(1200, 800)
    rounded(context, 250, 160, 700, 480, 44)
    context.set_source(ramp(cairo.LinearGradient(0, 160, 0, 640), (0, "#ffffff"), (1, "#eef1f8")))
    context.fill()

    context.arc(346, 262, 46, 0, 2 * math.pi)
    context.set_source(ramp(cairo.LinearGradient(300, 216, 392, 308), (0, "#7a5cff"), (1, "#39c6ff")))
    context.fill()
    context.select_font_face("Inter Display Semi Bold")
    context.set_font_size(38)
    context.set_source_rgba(*colour("#20263c"))
    context.move_to(420, 256)
    context.show_text("Evening session")
    context.select_font_face("Inter")
    context.set_font_size(25)
    context.set_source_rgba(*colour("#7b84a3"))
    context.move_to(420, 298)
    context.show_text("Studio 2, 18:30 to 21:00")

    for row, width in enumerate((604, 604, 420)):
        rounded(context, 298, 360 + row * 40, width, 16, 8)
        context.set_source_rgba(*colour("#dfe4f0"))
        context.fill()

    rounded(context, 298, 524, 236, 72, 36)
    context.set_source(ramp(cairo.LinearGradient(298, 0, 534, 0), (0, "#7a5cff"), (1, "#5b7dff")))
    context.fill()
    tracked_text(context, "Join", 416, 570, 28, "Inter Display Semi Bold")
    context.set_source_rgba(1, 1, 1, 1)
    context.fill()
    tracked_text(context, "Not now", 632, 570, 28, "Inter Display Semi Bold")
    context.set_source_rgba(*colour("#7b84a3"))
    context.fill()
    surface.write_to_png(str(folder / "card.png"))


def draw_cutout(folder):
    """A dandelion clock: hundreds of hairs thinner than a pixel, most of the layer partly transparent."""
    surface, context = canvas(800, 1000)
    rng = random.Random(7)
    cx, cy, radius = 400, 370, 236
    context.set_line_cap(cairo.LINE_CAP_ROUND)

    context.set_line_width(9)
    context.set_source(ramp(cairo.LinearGradient(0, cy, 0, 990), (0, "#8c9a5b"), (1, "#5a7a3c")))
    context.move_to(cx, cy)
    context.curve_to(cx + 6, cy + 220, cx - 34, cy + 400, cx - 12, 985)
    context.stroke()

    seeds = 150
    for seed in range(seeds):
        # Spread evenly over a ball, looked at from the front.
        height = 1 - 2 * (seed + 0.5) / seeds
        turn = seed * math.pi * (3 - math.sqrt(5))
        reach = math.sqrt(1 - height * height)
        dx, dy, depth = reach * math.cos(turn), height, reach * math.sin(turn)
        light = 0.45 + 0.55 * (depth + 1) / 2
        length = radius * rng.uniform(0.86, 1.0)
        tipX, tipY = cx + dx * length, cy + dy * length
        context.set_source_rgba(0.93, 0.90, 0.82, 0.55 * light)
        context.set_line_width(0.8)
        context.move_to(cx + dx * 26, cy + dy * 26)
        context.line_to(tipX, tipY)
        context.stroke()

        hairs = 26
        for hair in range(hairs):
            angle = 2 * math.pi * (hair + rng.uniform(-0.2, 0.2)) / hairs
            spread = rng.uniform(38, 52)
            # The parachute is a disc across the stalk, seen at the stalk's slant.
            sideX = -dy * math.cos(angle) - dx * depth * math.sin(angle)
            sideY = dx * math.cos(angle) - dy * depth * math.sin(angle)
            endX = tipX + spread * sideX + 20 * dx
            endY = tipY + spread * sideY + 20 * dy
            context.set_source_rgba(1, 0.99, 0.95, rng.uniform(0.25, 0.6) * light)
            context.set_line_width(rng.uniform(0.35, 0.75))
            context.move_to(tipX, tipY)
            context.line_to(endX, endY)
            context.stroke()
        context.set_source_rgba(0.42, 0.30, 0.20, light)
        context.set_line_width(3.2)
        context.move_to(cx + dx * 16, cy + dy * 16)
        context.line_to(cx + dx * 34, cy + dy * 34)
        context.stroke()
    surface.write_to_png(str(folder / "dandelion.png"))


def draw_photo(folder, scratch):
    """City lights out of focus at dusk: opaque everywhere, noisy, soft. Also the demo's texture."""
    width, height = 1920, 1080
    surface, context = canvas(width, height)
    context.set_source(
        ramp(
            cairo.LinearGradient(0, 0, 0, height),
            (0, "#1b2250"), (0.34, "#5a3a7a"), (0.56, "#e0646b"), (0.66, "#ffb36b"), (0.7, "#2c2140"), (1, "#100d1f"),
        )
    )
    context.paint()
    rng = random.Random(20)
    palette = ("#ffd08a", "#ff8f5a", "#ff5d73", "#8fd3ff", "#c59bff", "#fff3d6")
    for _ in range(230):
        # Small and dense at the horizon, large and sparse in front.
        near = rng.random() ** 1.8
        x = rng.uniform(-60, width + 60)
        y = height * (0.64 + 0.36 * near) + rng.gauss(0, 46 * (1 - near))
        size = 10 + 74 * near * rng.uniform(0.7, 1.2)
        alpha = rng.uniform(0.16, 0.55) * (1 - 0.45 * near)
        rgb = rng.choice(palette)
        disc = cairo.RadialGradient(x, y, 0, x, y, size)
        disc.add_color_stop_rgba(0, *colour(rgb, alpha * 0.72))
        disc.add_color_stop_rgba(0.86, *colour(rgb, alpha))
        disc.add_color_stop_rgba(1, *colour(rgb, 0))
        context.set_operator(cairo.OPERATOR_SCREEN)
        context.set_source(disc)
        context.arc(x, y, size, 0, 2 * math.pi)
        context.fill()

    # Film grain, half the picture's size so that it is seen.
    grain = cairo.ImageSurface(cairo.FORMAT_ARGB32, width // 2, height // 2)
    noise = rng.randbytes(width // 2 * (height // 2))
    alpha = bytes(value // 20 for value in range(256))
    grain.get_data()[:] = b"".join(bytes((a, a, a, a)) for a in noise.translate(alpha))
    grain.mark_dirty()
    context.scale(2, 2)
    context.set_source_surface(grain)
    context.paint()
    surface.write_to_png(str(scratch / "photo.png"))
    oiiotool(scratch / "photo.png", "--ch", "R,G,B", "--compression", "jpeg:88", "-o", folder / "dusk.jpg")


def draw_neon(folder, scratch):
    """A neon sign: a core of eight times white, a glow that fades into soft alpha. Premultiplied, as EXR has it."""
    surface, context = canvas(640, 360)
    tracked_text(context, "open late", 320, 206, 100, "Inter Display Thin", 0.03)
    context.set_line_join(cairo.LINE_JOIN_ROUND)
    context.set_line_width(2.7)
    context.set_source_rgba(1, 1, 1, 1)
    context.fill_preserve()
    context.stroke()
    surface.write_to_png(str(scratch / "tube.png"))
    # In float from here on: 8 bits would leave steps in the glow.
    tube = scratch / "tube.exr"
    oiiotool(scratch / "tube.png", "-d", "float", "-o", tube)
    oiiotool(
        tube, "--blur", "3x3", "--mulc", "9,6.5,7.5,1",
        tube, *["--blur", "9x9"] * 2, "--mulc", "3,0.3,1.1,0.9",
        tube, *["--blur", "51x51"] * 4, "--mulc", "1.3,0.07,0.45,0.8",
        "--over", "--over", "-d", "half", "--compression", "zip",
        "--attrib", "DateTime", "2026:01:01 00:00:00", "-o", folder / "neon.exr",
    )  # fmt: skip


def draw_small_ones(folder):
    """The two layers that break careless arithmetic: a single pixel, and nothing at all."""
    surface, context = canvas(1, 1)
    context.set_source_rgba(*colour("#f0476b"))
    context.paint()
    surface.write_to_png(str(folder / "pixel.png"))
    surface, _ = canvas(640, 360)
    surface.write_to_png(str(folder / "empty.png"))


def oiiotool(*arguments):
    # One thread and no metadata of the run, so that no byte changes from run to run.
    command = ["oiiotool", "--threads", "1", "--nosoftwareattrib", *map(str, arguments)]
    subprocess.run(command, check=True)


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent / "layers"
    if not FONT_FILE.exists():
        sys.exit(f"{FONT_FILE} is missing: it comes with the package fonts-inter (script/bootstrap installs it)")
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as temporary:
        scratch = pathlib.Path(temporary)
        draw_title(folder)
        draw_card(folder)
        draw_cutout(folder)
        draw_photo(folder, scratch)
        draw_neon(folder, scratch)
        draw_small_ones(folder)
    for picture in sorted(folder.iterdir()):
        print(picture)


if __name__ == "__main__":
    main()
