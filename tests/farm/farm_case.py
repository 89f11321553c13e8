# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What the tests of farms share: a folder with a title that moves, the program, and one machine's frames of it."""

import os
import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
UMBRANT = os.environ["UMBRANT"]
TITLE = [str(ROOT / "assets/layers/title.png"), "--preset", str(ROOT / "assets/presets/turning-title.json"),
         "--renderer", "cpu", "--canvas", "layer"]


class FarmCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        # Whatever signs a folder's name has, a job goes there.
        self.folder = pathlib.Path(folder.name) / "a 'shot' of $HOME {{1}} 100%"
        for name in ["one", "farm"]:
            (self.folder / name).mkdir(parents=True)

    def umbrant(self, *arguments):
        ran = subprocess.run([UMBRANT, *arguments], cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(ran.returncode, 0, ran.stderr)
        return ran.stdout

    def job(self, engine, output, frames, *render, options=()):
        """The file of a job that draws frames of the title."""
        script = self.folder / f"job.{engine}"
        script.write_text(
            self.umbrant("farm", *options, engine, *TITLE, "-o", output, "--frames", frames, *render))
        return script

    def frames(self, folder):
        """name: bytes of everything in a folder, hidden files too."""
        return {file.name: file.read_bytes() for file in (self.folder / folder).iterdir()}

    def one_machine(self, frames, *render):
        self.umbrant("render", *TITLE, "-o", "one/t.####.png", "--frames", frames, "--quiet", *render)
        return self.frames("one")

    def tool(self, text):
        """A script that replaces the program on the farm's machines."""
        file = self.folder / "tool"
        file.write_text(f"#!/bin/bash\n{text}\n")
        file.chmod(0o755)
        return str(file)
