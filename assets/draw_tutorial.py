#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Writes docs/tutorial.md and draws its pictures by running the commands that the page shows.

Usage: assets/draw_tutorial.py UMBRANT [--check]

UMBRANT is the built program; step 10 needs ffmpeg. With --check no picture is drawn and nothing is written: exit code 1 if
the page is out of date. Needs only Python.
"""

import json
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/tutorial.md"
PICTURES = ROOT / "docs/images/tutorial"

INTRODUCTION = """\
# Tutorial: from a layer to a moving title

Ten steps from an image with transparency to a finished clip, in about fifteen minutes. You need the program and `title.png`
from the example layers: copy it from `assets/layers` (with Debian's packages, from `/usr/share/doc/umbrant-doc/assets/layers`)
into an empty folder, and run the commands there. Each step adds to the one before.

A result is transparent around the shadow. The pictures of this page are over light grey and at a third of the size: their
commands also have `--background '#ecebf1' --downsample 3`.

`umbrant preview title.png` shows every step in a browser while you move the sliders; its button *Copy command* gives you the
command line of what you see. This page uses the command line, so that every step can be repeated.
"""

FRAMES = "--frames 1-48"
LOOK = ["style/angle=120", "style/distance=420", "style/softness=80", "opacity/opacity-start=9", "opacity/opacity-end=0",
        "style/color=#2a1466", "easing/ease=80"]
MOVING = {
    "version": 2,
    "values": {"style/softness": 80, "style/color": "#2a1466", "opacity/opacity-start": 9, "opacity/opacity-end": 0,
               "easing/ease": 80},
    "keyframes": {
        "style/angle": [{"frame": 1, "value": 60, "out": "ease"}, {"frame": 48, "value": 240, "in": "ease"}],
        "style/distance": [{"frame": 1, "value": 0, "out": "ease"}, {"frame": 30, "value": 420, "in": "ease"}],
    },
}


def settings(count):
    """The first of the look's settings, as people type them."""
    words = ["umbrant render title.png -o shadow.png --canvas layer"]
    return words + [f"    --set {setting}" for setting in LOOK[:count]]


def command(lines):
    return " \\\n".join(lines)


# Heading, text, command or None, and how its picture is made: "render" runs the command, and so on; see draw().
STEPS = [
    ("Look at the layer", "`title.png` has 1920 x 1080 pixels and is transparent around its letters. The shadow is made of this "
     "transparency alone; the colours of the layer do not matter. `opacity/opacity-master=0` draws no shadow, so this is the "
     "layer itself.",
     "umbrant render title.png -o shadow.png --canvas layer --set opacity/opacity-master=0", "render"),
    ("Draw the first shadow", "Without settings the shadow is black, long and soft. `--canvas layer` keeps the size of the layer; "
     "without it the image grows until it holds the whole shadow.", command(settings(0)), "render"),
    ("Choose where it goes", "The angle is in degrees, clockwise from the top: 120 is to the right and down. The distance is the "
     "length of the shadow in pixels.", command(settings(2)), "render"),
    ("Make it sharper", "The shadow begins sharp and becomes softer along its length. The softness is the blur at its end, in "
     "pixels; 0 keeps it sharp.", command(settings(3)), "render"),
    ("Let it fade out", "A shadow is a stack of copies, 36 by default, and each has an opacity. Few percent at the start are "
     "enough, because the copies overlap; 0 at the end lets the shadow disappear.", command(settings(5)), "render"),
    ("Give it a colour", "A dark colour from the palette of the picture looks better than black. Colours are `#rrggbb` or the "
     "names that web pages use.", command(settings(6)), "render"),
    ("Shape it with the curve", "With full easing most copies are near the layer. Less easing distributes them more evenly, so the "
     "far end becomes stronger.", command(settings(7)), "render"),
    ("Compare variations", "A contact sheet shows combinations of settings side by side: a row for each angle, a column for each "
     "distance. When you like one, use its values.",
     "umbrant params --json --values " + " ".join(f"--set {word}" for word in LOOK) + " > look.json\n"
     "umbrant sheet title.png -o sheet.png --preset look.json --vary style/angle=60,120,240 --vary style/distance=150,420",
     "sheet"),
    ("Let it move", "The first command of step 8 saved all values as a preset. For a moving shadow write a preset with keyframes, "
     "`moving.json`: the angle turns from 60 to 240 degrees in 48 frames, and the shadow grows from nothing to 420 pixels in "
     "30.\n\n" + "\n".join("    " + line for line in json.dumps(MOVING, indent=2).splitlines()) +
     "\n\n`umbrant curves` draws how the values change; a hump or an edge that you did not want is easy to see there.",
     "umbrant curves --preset moving.json -o curves.png", "curves"),
    ("Render the clip", "The first command writes a clip with transparency for an editing program (ProRes 4444), the second a clip "
     "for reviews, which every player shows. The third draws every fourth frame as a contact sheet, for this page.",
     f"umbrant render title.png -o title.mov --preset moving.json {FRAMES} --rate 24\n"
     f"umbrant render title.png -o review.mp4 --preset moving.json {FRAMES} --rate 24 --background '#ecebf1'\n"
     "umbrant sheet title.png -o frames.png --preset moving.json --canvas layer --frames 1-48x4 --background '#ecebf1'",
     "frames"),
]

END = """\
## Next

[parameters.md](parameters.md) shows what each parameter does, [gallery.md](gallery.md) has twelve finished looks
(`--preset soft-drop`), [sequences.md](sequences.md) and [video.md](video.md) describe frames and clips.
"""


def page():
    text = INTRODUCTION
    for number, (heading, words, lines, _) in enumerate(STEPS, start=1):
        text += f"\n## {number}. {heading}\n\n{words}\n\n"
        text += "\n".join(f"    {line}" for line in lines.splitlines()) + "\n"
        text += f"\n![{heading}](images/tutorial/step-{number}.png)\n"
    return text + "\n" + END


def run(program, folder, line, *more):
    words = shlex.split(line.replace("\\\n", " "))
    output = None
    if ">" in words:
        output = folder / words[words.index(">") + 1]
        words = words[: words.index(">")]
    done = subprocess.run([program, *words[1:], *more], cwd=folder, check=True, stdout=subprocess.PIPE)
    if output:
        output.write_bytes(done.stdout)


def draw(program, folder, number, lines, kind):
    picture = PICTURES / f"step-{number}.png"
    if kind == "render":
        run(program, folder, lines, "--background", "#ecebf1", "--downsample", "3")
        shutil.copyfile(folder / "shadow.png", picture)
    else:
        for line in lines.splitlines():
            run(program, folder, line)
        shutil.copyfile(folder / f"{kind}.png", picture)
    print(picture.relative_to(ROOT))


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--check"]
    if len(arguments) != 1:
        sys.exit(__doc__)
    if "--check" in sys.argv:
        if not PAGE.exists() or PAGE.read_text(encoding="utf-8") != page():
            sys.exit(f"{PAGE} is out of date: run assets/draw_tutorial.py {arguments[0]}")
        return
    program = str(pathlib.Path(arguments[0]).resolve())
    PICTURES.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as holder:
        folder = pathlib.Path(holder)
        shutil.copyfile(ROOT / "assets/layers/title.png", folder / "title.png")
        (folder / "moving.json").write_text(json.dumps(MOVING), encoding="utf-8")
        for number, (_, _, lines, kind) in enumerate(STEPS, start=1):
            draw(program, folder, number, lines, kind)
    PAGE.write_text(page(), encoding="utf-8")


if __name__ == "__main__":
    main()
