#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""`umbrant farm --submit` on a terminal, where it asks. A script takes the place of sbatch."""

import os
import pty
import subprocess
import unittest

from farm_case import TITLE, UMBRANT, FarmCase


class Submit(FarmCase):
    def setUp(self):
        super().setUp()
        self.script = self.folder / "script"
        (self.folder / "sbatch").write_text(f"#!/bin/bash\ncat >'{self.script.name}'\necho 17\n")
        (self.folder / "sbatch").chmod(0o755)

    def asked(self, answer):
        """Exit code, standard output and standard error after this answer."""
        keyboard, terminal = pty.openpty()
        try:
            # As folders in PATH have no colons, and this one has none either.
            environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}")
            run = subprocess.Popen([UMBRANT, "farm", "--submit", "--no-first-frame", "slurm", *TITLE, "-o", "farm/t.##.png",
                                    "--frames", "1-2"], cwd=self.folder, env=environment, stdin=terminal,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            os.write(keyboard, answer)
            out, errors = run.communicate(timeout=600)
            return run.returncode, out, errors
        finally:
            os.close(keyboard)
            os.close(terminal)

    def test_yes_submits(self):
        code, out, errors = self.asked(b"y\n")
        self.assertEqual((code, out), (0, "17\n"), errors)
        self.assertIn("umbrant: submit 1 task? [y/N] ", errors)
        self.assertIn("#SBATCH --array=1-1\n", errors)
        self.assertTrue(self.script.exists())

    def test_anything_else_does_not(self):
        for answer in [b"n\n", b"\n", b"yep\n", b"\x04"]:
            code, out, errors = self.asked(answer)
            self.assertEqual((code, out), (0, ""), errors)
            self.assertIn("umbrant: the job was not submitted\n", errors)
            self.assertFalse(self.script.exists())


if __name__ == "__main__":
    unittest.main()
