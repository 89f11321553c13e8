#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The proof of the interface's layout compiles for both kinds of Mac, and fails there for a wrong declaration."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle


def setUpModule():
    bundle.require()


def compile_proof(arch, root):
    with tempfile.TemporaryDirectory() as folder:
        command = [bundle.TOOLS / f"c++-{arch}", "-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Werror", f"-I{root}"]
        command += ["-c", root / "hostapi" / "abi_asserts.cpp", "-o", pathlib.Path(folder) / "proof.o"]
        return subprocess.run(command, capture_output=True, text=True)


class Layout(unittest.TestCase):
    def test_compiles(self):
        for arch in bundle.ARCHITECTURES:
            with self.subTest(arch):
                ran = compile_proof(arch, bundle.ROOT)
                self.assertEqual((ran.returncode, ran.stderr), (0, ""))

    def test_a_wrong_declaration_does_not(self):
        mutants = [
            ("pixels.h", "A_long rowbytes;", "A_long moved; A_long rowbytes;", "PF_LayerDef"),
            ("basic_types.h", "typedef int32_t A_long;", "typedef long A_long;", "sizeof A_Time"),
            ("transfer.h", "PF_Xfer_MULTIPLY_ALPHA = 17", "PF_Xfer_MULTIPLY_ALPHA = 18", "PF_Xfer_MULTIPLY_ALPHA"),
        ]
        for arch in bundle.ARCHITECTURES:
            for header, old, new, message in mutants:
                with self.subTest(arch=arch, header=header), tempfile.TemporaryDirectory() as folder:
                    root = pathlib.Path(folder)
                    shutil.copytree(bundle.ROOT / "hostapi", root / "hostapi")
                    text = (root / "hostapi" / header).read_text()
                    self.assertIn(old, text)
                    (root / "hostapi" / header).write_text(text.replace(old, new))
                    ran = compile_proof(arch, root)
                    self.assertNotEqual(ran.returncode, 0)
                    self.assertTrue(message in ran.stderr, ran.stderr[:500])

    def test_is_part_of_each_slice(self):
        for arch in bundle.ARCHITECTURES:
            self.assertEqual(len(list((bundle.CROSS / arch).rglob("abi_asserts.cpp.o"))), 1, arch)


if __name__ == "__main__":
    unittest.main()
