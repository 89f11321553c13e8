#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws docs/images/preview: the page of `umbrant preview` in chromium, at three sizes, light and dark.

Usage: assets/draw_preview.py UMBRANT
"""

import json
import os
import pathlib
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUTPUT = ROOT / "docs/images/preview"
SIZES = [(1280, 720), (1920, 1080), (820, 1180)]
SETTINGS = ["--set", "style/color=#3a1c8c", "--set", "style/softness=60", "--set", "opacity/opacity-start=70",
            "--set", "opacity/opacity-end=10"]  # fmt: skip
KEYS = {
    "style/angle": [{"frame": 1, "value": 60, "out": "ease"}, {"frame": 24, "value": 135, "in": "ease", "out": "ease"},
                    {"frame": 48, "value": 225, "in": "ease"}],
    "style/distance": [{"frame": 1, "value": 40, "out": "ease"}, {"frame": 36, "value": 220, "in": "ease"}],
}  # fmt: skip


def draw(page, prefix=""):
    for theme in ("light", "dark"):
        page.theme(theme)
        for width, height in SIZES:
            page.resize(width, height)
            page.settle()
            page.run("document.getElementById('zoom-fit').click()")
            page.run("return new Promise((done) => setTimeout(done, 300))")
            page.driver.get_screenshot_as_file(str(OUTPUT / f"{prefix}{theme}-{width}x{height}.png"))


def draw_time(page):
    """The timeline at a key, with frames kept by a loop that was played."""
    page.settle()
    page.driver.find_elements("css selector", "#lanes .key")[1].click()
    page.find("#curves-shown").click()
    page.find("#play").click()
    page.wait("return umbrantState().player.kept >= 36")
    page.run("""document.getElementById('play').click();
        const field = document.getElementById('frame-number');
        field.value = '24';
        field.dispatchEvent(new Event('change'));""")
    page.settle()
    draw(page, "time-")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    os.environ["UMBRANT"] = str(pathlib.Path(sys.argv[1]).resolve())
    sys.path.insert(0, str(ROOT / "tests/host/preview"))
    import browser

    OUTPUT.mkdir(parents=True, exist_ok=True)
    with tempfile.NamedTemporaryFile("w", suffix=".json") as preset:
        json.dump({"version": 2, "keyframes": KEYS}, preset)
        preset.flush()
        for more, take in ((["--set", "style/distance=220"], draw), (["--preset", preset.name], draw_time)):
            page = browser.Browser(ROOT / "assets/layers", "title.png", "--renderer", "cpu", *SETTINGS, *more)
            try:
                take(page)
            finally:
                page.close()


if __name__ == "__main__":
    main()
