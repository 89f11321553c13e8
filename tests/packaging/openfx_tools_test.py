#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What a person reads where the OpenFX plug-in for older systems cannot be built: one sentence, and exit code 77."""

import os
import pathlib
import platform
import shutil
import subprocess
import tempfile
import unittest

OPENFX = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "openfx"
OWN = "bash sh env dirname readlink uname mkdir cp mv rm ln cmp cat chmod grep sort head find echo sed tr sha256sum mktemp".split()
WANTED = {"cmake": "cmake", "ninja": "ninja-build", "g++": "g++", "strip": "binutils", "nm": "binutils"}


@unittest.skipUnless((platform.system(), platform.machine()) == ("Linux", "x86_64"), "the compiler runs on x86-64 Linux")
class Refusals(unittest.TestCase):
    """On a made-up machine, whose commands are the system's own few and stand-ins for the rest."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.commands = self.folder / "bin"
        self.commands.mkdir()
        for name in OWN:
            (self.commands / name).symlink_to(shutil.which(name))
        for name in WANTED:
            self.stand_in(name, "exit 0")

    def stand_in(self, name, text):
        file = self.commands / name
        file.unlink(missing_ok=True)
        file.write_text(f"#!/bin/sh\n{text}\n")
        file.chmod(0o755)
        return file

    def assertRefused(self, reason, *options, **environment):
        ran = subprocess.run([OPENFX / "fetch_compiler", self.folder / "tools", *options],
                             env={"PATH": str(self.commands), "HOME": str(self.folder), **environment},
                             capture_output=True, text=True)  # fmt: skip
        self.assertEqual((ran.returncode, ran.stdout), (77, ""), ran.stderr)
        self.assertEqual(ran.stderr.splitlines()[-1],
                         f"The OpenFX plug-in for older systems cannot be built here: {reason}")

    def test_a_command_is_missing(self):
        for name, package in WANTED.items():
            with self.subTest(name):
                (self.commands / name).unlink()
                self.assertRefused(f"the command {name} is missing; install the Debian package {package}.")
                self.stand_in(name, "exit 0")

    def test_another_machine(self):
        self.stand_in("uname", '[ "$1" = -s ] && echo Linux || echo riscv64')
        self.assertRefused("the pinned compiler runs on x86-64 Linux, and this is Linux on riscv64.")

    def test_a_wrong_compiler(self):
        zig = self.stand_in("zig", "echo 0.12.1")
        self.assertRefused(f"the compiler {zig} is version 0.12.1, and 0.11.0 is needed.", UMBRANT_ZIG=str(zig))

    def test_no_cpp_library(self):
        zig = self.stand_in("zig", "echo 0.11.0")
        self.stand_in("g++", 'echo "${1#*=}"')
        self.assertRefused("the archive libstdc++.a is missing; install the Debian package libstdc++-12-dev.",
                           UMBRANT_ZIG=str(zig))  # fmt: skip

    def test_a_compiler_that_does_not_compile(self):
        zig = self.stand_in("zig", '[ "$1" = version ] && echo 0.11.0 || { echo "error: no" >&2; exit 1; }')
        self.stand_in("g++", f'[ "${{1#-print}}" = "$1" ] || echo {self.stand_in("archive", "")}')
        log = self.folder / "tools" / "runtime" / "log"
        self.assertRefused(f"the compiler did not build its runtime (see {log}).", UMBRANT_ZIG=str(zig))
        self.assertEqual(log.read_text(), "error: no\n")
        zig = self.stand_in("zig", "echo 0.11.0")
        self.assertRefused("the compiler left no libm.so.6; is it the right one?", UMBRANT_ZIG=str(zig))

    def test_usage(self):
        for name, usage in (("fetch_compiler", "FOLDER [--installed]"), ("build", "[--installed]")):
            options = ["--wrong"] if name == "build" else []
            ran = subprocess.run([OPENFX / name, *options], capture_output=True, text=True)
            self.assertEqual(ran.returncode, 2)
            self.assertIn(f"Usage: packaging/openfx/{name} {usage}", ran.stderr)


if __name__ == "__main__":
    unittest.main()
