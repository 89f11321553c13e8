#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws docs/gallery.md, one small picture per setting with its command line, two pictures for README.md, and the contact
sheets of docs/host-program.md.

Usage: assets/draw_gallery.py UMBRANT [SECTION...]      (default: all sections)

UMBRANT is the built program. With sections only their pictures are drawn again; the page is always written whole. Needs
only Python. The program writes images with transparency; here they are composited over a light background, because
shadows are invisible on a dark page.
"""

import os
import pathlib
import subprocess
import sys
import tempfile

from png_rows import on_ground, read_png, write_png

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs" / "gallery.md"
PICTURES = ROOT / "docs" / "images" / "gallery"
GROUND = (236, 235, 241)
# Behind what glows.
NIGHT = (27, 24, 44)
# Pictures in a row, and where they must be larger.
COLUMNS = 3
FEW_COLUMNS = {"blend": 2, "stencil": 2}
TITLE = "title.png --canvas layer --downsample 5"
PHOTOGRAPH = "dusk.jpg --canvas layer --downsample 5"
CLOSE_UP = "title.png --canvas 280,160,1760,992 --downsample 4"

INTRODUCTION = """\
# Gallery

The command line above the pictures of a section draws them with what each picture adds to it, below the picture. The layers are in
`assets/layers`; run the command lines in the root folder of the project. `assets/draw_gallery.py` draws the pictures and writes
this page. To keep the pictures small, they are drawn at a lower resolution (`--downsample`) and without growing the image
(`--canvas`). Without these two options the same settings give the full-size result.
"""


def settings(**values):
    """Parameters as options: style_angle=90 is --set style/angle=90."""
    return " ".join(f"--set {path.replace('__', '/').replace('_', '-')}={value}" for path, value in values.items())


STYLED = {
    "normal": settings(style__angle=120, style__distance=420, style__softness=80, style__color="#2a1466",
                       opacity__opacity_start=9, opacity__opacity_end=0),
    "inner": settings(style__shadow_type="inner", style__angle=130, style__distance=26, style__softness=24,
                      style__color="#5a0f3c", style__blend_mode="multiply", opacity__opacity_start=9,
                      opacity__opacity_end=0),
    "radial": settings(style__shadow_type="radial", style__origin="960,-200", style__distance=110, style__softness=40,
                       style__color="#2a1466", opacity__opacity_start=8, opacity__opacity_end=0),
}
STEPS = settings(style__angle=160, style__distance=420, style__softness=0, style__color="#503a8c",
                 opacity__opacity_start=60, opacity__opacity_end=15, quality__samples=9)
WIDE_BLUR = settings(style__angle=135, style__distance=160, style__softness=300, opacity__opacity_start=90,
                     opacity__opacity_end=90, easing__ease=0, quality__samples=2)
CURTAIN = settings(style__shadow_type="inner", style__color="#2f9a94", style__angle=90, style__distance=900,
                   style__softness=160, opacity__opacity_start=9, opacity__opacity_end=3, easing__ease=0)
TEXTURED = settings(style__angle=120, style__distance=420, style__softness=60, style__color="#8a6ad0",
                    opacity__opacity_start=14, opacity__opacity_end=2)
TEXTURE = "--texture assets/layers/dusk.jpg"

BLEND_MODES = ["normal", "add", "screen", "overlay", "soft-light", "hard-light", "darken", "multiply", "color-burn",
               "classic-color-burn", "linear-burn", "darker-color"]
TEXTURE_MODES = ["normal", "multiply", "color-burn", "add", "screen", "overlay", "soft-light"]
ALPHA_MODES = ["stencil-alpha", "stencil-luma", "silhouette-alpha", "silhouette-luma"]
# A texture with alpha of its own, over a part of the shadow.
CARD = "--texture assets/layers/card.png --texture-at 760,260"
UNCHANGED = settings(opacity__opacity_master=0)


def easing(mode, ease, more=""):
    return f"{STEPS} {settings(easing__mode=mode, easing__ease=ease)} {more}".strip()


# Presets by name, in the order of the page.
PRESETS = ["soft-drop", "long-flat", "long-faded", "neon", "paper-cut", "inner-press", "inner-glow", "radial-burst", "light-rays",
           "texture", "double", "animated-reveal"]
GLOWING = {"neon", "light-rays"}
PRESET_LAYERS = {"title": "title.png --downsample 5", "card": "card.png --downsample 4", "dandelion": "dandelion.png --downsample 4",
                 "neon": "neon.exr --downsample 2 --output-depth 8"}


def preset_options(name, layer):
    more = {"texture": f" {TEXTURE}", "animated-reveal": " --time 1.5"}.get(name, "")
    return f"{PRESET_LAYERS[layer]} --canvas layer --preset {name}{more}"


# The contact sheets of docs/host-program.md, in docs/images.
SHEETS = {
    "sheet": "sheet assets/layers/title.png --vary style/angle=0,45,90 --vary style/softness=20,80,200 --preset long-faded "
             "--set style/distance=300 --cell 260",
    "presets": "presets --cell 200",
}

# The two pictures of README.md, in docs/images: a layer, and the same layer with the default shadow.
README = [("before", f"{CLOSE_UP} {settings(opacity__opacity_master=0)}"), ("after", CLOSE_UP)]

# Section: heading, text, and its pictures as (name, caption, layer and options).
SECTIONS = {
    "types": ("The three types", "With the default settings (the radial shadow with its origin in the centre), and styled.", [
        ("normal-default", "normal", f"{TITLE} {settings(style__shadow_type='normal')}"),
        ("inner-default", "inner", f"{TITLE} {settings(style__shadow_type='inner')}"),
        ("radial-default", "radial", f"{TITLE} {settings(style__shadow_type='radial', style__origin='960,540')}"),
        *((f"{kind}-styled", f"{kind}, styled", f"{TITLE} {options}") for kind, options in STYLED.items()),
    ]),
    "easing": ("Easing", "Nine sharp copies make the steps visible. Ease-in moves the copies together near "
               "the layer; ease-in-out also near the end of the shadow.", [
        ("easing-none", "no ease", f"{TITLE} {easing('ease-in', 0)}"),
        ("ease-in-50", "ease-in, 50 %", f"{TITLE} {easing('ease-in', 50)}"),
        ("ease-in-100", "ease-in, 100 %", f"{TITLE} {easing('ease-in', 100)}"),
        ("easing-opacity", "ease-in, opacity not eased",
         f"{TITLE} {easing('ease-in', 100, settings(easing__advanced__opacity=0))}"),
        ("ease-in-out-50", "ease-in-out, 50 %", f"{TITLE} {easing('ease-in-out', 50)}"),
        ("ease-in-out-100", "ease-in-out, 100 %", f"{TITLE} {easing('ease-in-out', 100)}"),
    ]),
    "resolution": ("Resolution", "The number of steps of each blur. Two copies with a large softness show the steps "
                   "most clearly; more samples hide them.", [
        (f"resolution-{name}", name, f"{TITLE} {WIDE_BLUR} {settings(quality__resolution=name)}")
        for name in ("draft", "low", "moderate", "high", "extreme")
    ]),
    "blend": ("Blend modes of the inner shadow", "The same sea-green shadow from the left, over a photograph. "
              "`color-burn` and `classic-color-burn` give the same picture here.", [
        (f"blend-{mode}", mode, f"{PHOTOGRAPH} {CURTAIN} {settings(style__blend_mode=mode)}") for mode in BLEND_MODES
    ]),
    "texture": ("Texture modes", "A violet shadow without a texture, the photograph that becomes its texture, and the shadow "
                "with it. A texture never changes the opacity of a shadow.", [
        ("texture-without", "without a texture", f"{TITLE} {TEXTURED}"),
        ("texture-itself", "the texture", f"{PHOTOGRAPH} {UNCHANGED}"),
        *((f"texture-{mode}", mode, f"{TITLE} {TEXTURED} {TEXTURE} {settings(texture__blend_mode=mode)}")
          for mode in TEXTURE_MODES),
    ]),
    "stencil": ("Stencil and silhouette modes of the texture", "The texture here has alpha of its own. These four modes change "
                "alpha only, and a shadow keeps its own alpha: with each of them it is to the byte the shadow without a texture. "
                "`normal` and `multiply` show what the texture does otherwise.", [
        ("stencil-without", "without a texture", f"{TITLE} {TEXTURED}"),
        ("stencil-texture", "the texture", f"card.png --canvas -360,-140,1560,940 --downsample 5 {UNCHANGED}"),
        ("stencil-normal", "normal", f"{TITLE} {TEXTURED} {CARD} {settings(texture__blend_mode='normal')}"),
        ("stencil-multiply", "multiply", f"{TITLE} {TEXTURED} {CARD} {settings(texture__blend_mode='multiply')}"),
        *((f"texture-{mode}", mode, f"{TITLE} {TEXTURED} {CARD} {settings(texture__blend_mode=mode)}")
          for mode in ALPHA_MODES),
    ]),
}


def command_words(name, options):
    layer, *rest = options.split()
    return ["render", f"assets/layers/{layer}", "-o", f"{name}.png", *rest]


def groups(options):
    """Options with their values: ["--set style/angle=90", "--downsample 5"]."""
    found = []
    for word in options.split()[1:]:
        if word.startswith("--"):
            found.append(word)
        else:
            found[-1] += f" {word}"
    return found


def own_options(options, layer, common):
    """What a picture adds to the options that a section's pictures have in common; all of it where the layer is another."""
    other = options.split()[0]
    if other != layer:
        return f"`assets/layers/{options}`"
    return "<br>".join(f"`{group}`" for group in groups(options) if group not in common)


def preset_page():
    """A row for each preset: the same settings on every layer."""
    lines = ["## Presets\n", "    umbrant render assets/layers/title.png -o shadow.png --preset soft-drop\n",
             "`umbrant presets` lists the names. A preset sets only some parameters; `--set` changes them further. `texture` needs an "
             "image (`--texture`), and `animated-reveal` has keyframes: this is its frame at 1.5 seconds.\n",
             "| | " + " | ".join(PRESET_LAYERS) + " |", "|" + "---|" * (len(PRESET_LAYERS) + 1)]
    for name in PRESETS:
        cells = [f"![{name} on {layer}](images/gallery/preset-{name}-{layer}.png)" for layer in PRESET_LAYERS]
        lines.append(f"| `{name}` | " + " | ".join(cells) + " |")
    return [*lines, ""]


def page():
    lines = [INTRODUCTION, *preset_page()]
    for section, (heading, text, pictures) in SECTIONS.items():
        columns = FEW_COLUMNS.get(section, COLUMNS)
        lines += [f"## {heading}\n", f"{text}\n"]
        layer = pictures[0][2].split()[0]
        shown = [groups(options) for _, _, options in pictures if options.split()[0] == layer]
        common = [group for group in shown[0] if all(group in one for one in shown)]
        lines.append(f"    umbrant render assets/layers/{layer} -o picture.png {' '.join(common)}\n")
        for first in range(0, len(pictures), columns):
            row = pictures[first:first + columns]
            cells = [f"![{caption}](images/gallery/{name}.png)" for name, caption, _ in row]
            own = [own_options(options, layer, common) for _, _, options in row]
            blank = [""] * (columns - len(row))
            lines.append("| " + " | ".join([caption for _, caption, _ in row] + blank).rstrip() + " |")
            lines.append("|" + "---|" * columns)
            lines.append("| " + " | ".join(cells + blank) + " |")
            lines.append("| " + " | ".join(own + blank) + " |\n")
    return "\n".join(lines)


def draw(program, target, name, options, ground=GROUND):
    with tempfile.TemporaryDirectory() as folder:
        words = command_words(name, options)
        drawn = pathlib.Path(folder) / words[3]
        words[3] = str(drawn)
        subprocess.run([program, *words], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
        width, _, step, rows = read_png(drawn)
    picture = target / f"{name}.png"
    write_png(picture, width, [on_ground(row, step, ground) for row in rows])
    print(picture.relative_to(ROOT))


def main():
    sections = ["readme", "sheets", "presets", *SECTIONS]
    if len(sys.argv) < 2 or any(section not in sections for section in sys.argv[2:]):
        sys.exit(f"{__doc__}\nSections: {', '.join(sections)}")
    program = str(pathlib.Path(sys.argv[1]).resolve())
    PICTURES.mkdir(parents=True, exist_ok=True)
    for section in sys.argv[2:] or sections:
        if section == "readme":
            for name, options in README:
                draw(program, PICTURES.parent, name, options)
        elif section == "sheets":
            for name, words in SHEETS.items():
                sheet = PICTURES.parent / f"{name}.png"
                environment = os.environ | {"XDG_CONFIG_HOME": "/nonexistent"}
                subprocess.run([program, *words.split(), "-o", str(sheet)], cwd=ROOT, check=True, env=environment)
        elif section == "presets":
            for name in PRESETS:
                for layer in PRESET_LAYERS:
                    draw(program, PICTURES, f"preset-{name}-{layer}", preset_options(name, layer),
                         NIGHT if name in GLOWING else GROUND)
        else:
            for name, _, options in SECTIONS[section][2]:
                draw(program, PICTURES, name, options)
    PAGE.write_text(page())


if __name__ == "__main__":
    main()
