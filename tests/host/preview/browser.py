# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""A preview and a browser that shows it, for tests and for the pictures of the documentation."""

import base64
import os
import pathlib
import shutil
import struct
import subprocess
import tempfile
import time
import zlib

try:
    from selenium import webdriver
    from selenium.common.exceptions import WebDriverException
    from selenium.webdriver.chrome.options import Options
    from selenium.webdriver.chrome.service import Service
except ImportError:
    webdriver = None

UMBRANT = os.environ.get("UMBRANT", "umbrant")
# How long a slow machine may take for anything, in seconds.
PATIENCE = 300


def missing():
    """What a test in the browser lacks here, as a sentence, or None."""
    if webdriver is None:
        return "there is no python3-selenium here"
    for program in ("chromium", "chromedriver"):
        if not shutil.which(program):
            return f"there is no {program} here"
    return None


class Browser:
    """Chromium without a window, and `umbrant preview` with the given arguments in `folder`."""

    def __init__(self, folder, *arguments, environment=None):
        inherited = {name: value for name, value in os.environ.items() if not name.startswith("UMBRANT_")}
        self.preview = subprocess.Popen([UMBRANT, "preview", "--no-open", *map(str, arguments)], cwd=folder, text=True,
                                        env=inherited | (environment or {}), stdout=subprocess.PIPE)  # fmt: skip
        self.address = self.preview.stdout.readline().strip()
        self.profile = tempfile.mkdtemp()
        options = Options()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
                         "--force-color-profile=srgb", f"--user-data-dir={self.profile}"):  # fmt: skip
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        options.binary_location = shutil.which("chromium")
        self.driver = self.start(options)
        self.driver.set_script_timeout(PATIENCE)
        self.downloads = pathlib.Path(self.profile) / "downloads"
        self.driver.execute_cdp_cmd("Page.setDownloadBehavior", {"behavior": "allow", "downloadPath": str(self.downloads)})
        self.resize(1280, 720)
        self.driver.get(self.address)
        self.wait("return document.querySelectorAll('#rows .row').length > 0")

    @staticmethod
    def start(options):
        """The driver gives up after half a minute, which a busy machine may need."""
        for attempt in range(5):
            try:
                return webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
            except WebDriverException:
                if attempt == 4:
                    raise
        return None

    def close(self):
        self.driver.quit()
        self.preview.terminate()
        self.preview.wait()
        self.preview.stdout.close()
        shutil.rmtree(self.profile, ignore_errors=True)

    def resize(self, width, height):
        self.driver.execute_cdp_cmd(
            "Emulation.setDeviceMetricsOverride",
            {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False},
        )

    def theme(self, name):
        self.driver.execute_cdp_cmd(
            "Emulation.setEmulatedMedia", {"features": [{"name": "prefers-color-scheme", "value": name}]}
        )

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, script, *arguments):
        """Runs the script until its result is true, and returns it."""
        end = time.monotonic() + PATIENCE
        while True:
            result = self.run(script, *arguments)
            if result:
                return result
            if time.monotonic() > end:
                raise AssertionError(f"this did not become true: {script}")
            time.sleep(0.02)

    def find(self, selector):
        return self.driver.find_element("css selector", selector)

    def settle(self):
        """Waits until the page shows the full frame of its last request, with nothing on its way."""
        self.wait("return window.umbrantState().isSettled")

    def pixels(self):
        """Size and bytes of the frame as the page received them."""
        text = self.driver.execute_async_script("""
            const done = arguments[0];
            const reader = new FileReader();
            reader.onload = () => done(reader.result.slice(reader.result.indexOf(',') + 1));
            reader.readAsDataURL(new Blob([window.umbrantFrame.pixels]));""")
        left, top, right, bottom = self.run("return window.umbrantFrame.info.rect")
        return right - left, bottom - top, base64.b64decode(text)

    def downloaded(self, name):
        """Waits for a file that the browser saves, and returns its path."""
        end = time.monotonic() + PATIENCE
        while not (self.downloads / name).exists():
            if time.monotonic() > end:
                raise AssertionError(f"{name} was not saved; there are {os.listdir(self.downloads)}")
            time.sleep(0.05)
        return self.downloads / name

    def screenshot(self, file, x, y, width, height):
        """Writes a part of the page as a PNG file."""
        clip = {"x": x, "y": y, "width": width, "height": height, "scale": 1}
        taken = self.driver.execute_cdp_cmd("Page.captureScreenshot", {"format": "png", "clip": clip})
        pathlib.Path(file).write_bytes(base64.b64decode(taken["data"]))

    def errors(self):
        return [entry["message"] for entry in self.driver.get_log("browser") if entry["level"] == "SEVERE"]


def write_png(file, width, height, rgba):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    rows = b"".join(b"\0" + rgba[4 * width * y : 4 * width * (y + 1)] for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    parts = chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 1)) + chunk(b"IEND", b"")
    pathlib.Path(file).write_bytes(b"\x89PNG\r\n\x1a\n" + parts)
