#!/usr/bin/python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Draws docs/images/preview: the page of `umbrant preview` in chromium, at three sizes, light and dark.

Usage: assets/draw_preview.py UMBRANT
"""

import os
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
OUTPUT = ROOT / "docs/images/preview"
SIZES = [(1280, 720), (1920, 1080), (820, 1180)]
SETTINGS = ["--set", "style/color=#3a1c8c", "--set", "style/distance=220", "--set", "style/softness=60",
            "--set", "opacity/opacity-start=70", "--set", "opacity/opacity-end=10"]  # fmt: skip


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    os.environ["UMBRANT"] = str(pathlib.Path(sys.argv[1]).resolve())
    sys.path.insert(0, str(ROOT / "tests/host/preview"))
    import browser

    OUTPUT.mkdir(parents=True, exist_ok=True)
    page = browser.Browser(ROOT / "assets/layers", "title.png", "--renderer", "cpu", *SETTINGS)
    try:
        for theme in ("light", "dark"):
            page.theme(theme)
            for width, height in SIZES:
                page.resize(width, height)
                page.settle()
                page.run("document.getElementById('zoom-fit').click()")
                page.run("return new Promise((done) => setTimeout(done, 300))")
                page.driver.get_screenshot_as_file(str(OUTPUT / f"{theme}-{width}x{height}.png"))
    finally:
        page.close()


if __name__ == "__main__":
    main()
