#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What script/bootstrap installs, on a made-up machine: stand-ins for dpkg-query and apt-get, and no others' commands."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
OWN = "bash env dirname".split()
MACOS = ["lld-16", "llvm-14", "libgl-dev", "python3-macholib"]


class Bootstrap(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name in OWN:
            (self.folder / name).symlink_to(shutil.which(name))
        self.stand_in("id", "echo 0")
        self.stand_in("npm", "exit 0")
        self.installed("*")
        self.apt("exit 0")

    def stand_in(self, name, text):
        file = self.folder / name
        file.write_text(f"#!/bin/bash\n{text}\n")
        file.chmod(0o755)

    def installed(self, pattern):
        """Makes the packages that match a pattern of the shell the installed ones."""
        self.stand_in("dpkg-query", f'case "${{!#}}" in {pattern}) echo -n installed;; *) exit 1;; esac')

    def apt(self, install):
        self.stand_in("apt-get", f'echo "$*" >>"{self.folder}/apt.log"\n[[ $1 != install ]] || {{ {install}; }}')

    def run_it(self, *arguments):
        """The ended process, and the lists of packages that apt-get was asked to install."""
        log = self.folder / "apt.log"
        log.unlink(missing_ok=True)
        ran = subprocess.run([ROOT / "script" / "bootstrap", *arguments], env={"PATH": str(self.folder)},
                             capture_output=True, text=True)
        lines = log.read_text().splitlines() if log.exists() else []
        words = [line.split() for line in lines if line.startswith("install")]
        return ran, [[word for word in line[1:] if not word.startswith("-")] for line in words]

    def test_nothing_to_do(self):
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, ran.stdout, ran.stderr, asked), (0, "", "", []))
        self.assertFalse((self.folder / "apt.log").exists())

    def test_a_bare_machine(self):
        self.installed("none")
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, len(asked)), (0, 2))
        self.assertTrue({"g++", "cmake", "ninja-build", "libgtest-dev", "clang-format-14"} <= set(asked[0]))
        self.assertEqual(asked[1], MACOS)
        self.assertEqual(self.run_it("--without-macos")[1], asked[:1])

    def test_no_tests(self):
        self.installed("none")
        _, with_tests = self.run_it("--without-macos")
        _, without = self.run_it("--without-macos", "--without-tests")
        self.assertTrue({"file", "lintian", "fish", "zsh", "slurm-wlm", "parallel"} <= set(with_tests[0]) - set(without[0]))
        # What the build itself looks for is there in both.
        self.assertTrue({"g++", "cmake", "libgtest-dev", "libbenchmark-dev"} <= set(without[0]))

    def test_more_for_the_soak(self):
        self.installed("[!vd]*|dpkg-dev")
        self.assertEqual(self.run_it("--without-macos")[1], [])
        self.assertEqual(self.run_it("--without-macos", "--soak")[1], [["valgrind", "debootstrap"]])

    def test_npm_is_a_command_before_it_is_a_package(self):
        (self.folder / "npm").unlink()
        self.installed("[!n]*|ninja-build|nlohmann-json3-dev")
        self.assertEqual(self.run_it()[1], [["npm"]])

    def test_the_bundle_is_not_needed(self):
        self.installed("[!l]*|lib*|llvm-14|lintian|lld")
        self.apt("exit 100")
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, asked), (0, [["lld-16"]]))
        self.assertEqual(ran.stderr.splitlines()[-1],
                         "The macOS bundle will not be built: apt-get could not install lld-16.")
        self.stand_in("id", "echo 1000")
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, asked), (0, []))
        self.assertEqual(ran.stderr,
                         "The macOS bundle will not be built: lld-16 must be installed, which needs root or sudo.\n")

    def test_everything_else_is(self):
        self.installed("[!c]*|clang*|chromium*")
        self.apt("exit 100")
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, asked), (100, [["cmake"]]))
        self.stand_in("id", "echo 1000")
        ran, asked = self.run_it()
        self.assertEqual((ran.returncode, asked), (1, []))
        self.assertEqual(ran.stderr,
                         "script/bootstrap must install packages, which needs root or sudo. Missing: cmake\n")

    def test_another_system(self):
        (self.folder / "apt-get").unlink()
        ran, _ = self.run_it()
        self.assertEqual(ran.returncode, 1)
        self.assertIn("which this system does not have.", ran.stderr)

    def test_usage(self):
        ran, _ = self.run_it("--mac")
        self.assertEqual((ran.returncode, ran.stderr), (2, "Usage: script/bootstrap [--without-macos] [--without-tests] [--fuzz] [--soak]\n"))


if __name__ == "__main__":
    unittest.main()
