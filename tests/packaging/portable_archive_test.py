# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""packaging/archive/make refuses what it cannot pack with one sentence. What it packs is tried by script/soak archive."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parent.parent.parent
MAKE = SOURCE / "packaging/archive/make"


class Refusals(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)

    def refuse(self, *arguments, **environment):
        done = subprocess.run([MAKE, *arguments], text=True, capture_output=True, env={**os.environ, **environment})
        self.assertNotEqual(done.returncode, 0)
        self.assertEqual(list(self.folder.glob("out/*")), [])
        return done.stderr.splitlines()[-1]

    def program(self, text="#!/bin/sh\necho umbrant 1.2.3\n"):
        program = self.folder / "umbrant"
        program.write_text(text, encoding="ascii")
        program.chmod(0o755)

    def test_a_folder_that_is_not_built(self):
        self.assertEqual(self.refuse(self.folder, self.folder / "out"),
                         f"'{self.folder}' has no built program; build it first: cmake --build {self.folder}")  # fmt: skip

    def test_a_tool_that_is_missing(self):
        self.program()
        tools = self.folder / "tools"
        tools.mkdir()
        for tool in ("python3", "env"):
            (tools / tool).symlink_to(f"/usr/bin/{tool}")
        self.assertEqual(self.refuse(self.folder, self.folder / "out", PATH=str(tools)),
                         "'patchelf' is not installed; install it (Debian: apt install patchelf).")  # fmt: skip

    def test_levels(self):
        self.program()
        self.assertIn("--level", self.refuse(self.folder, self.folder / "out", "--level", "20"))


if __name__ == "__main__":
    unittest.main()
