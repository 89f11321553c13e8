# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The module for 64-bit ARM: what it needs, and that its kernels make the same bytes as this processor's."""

import os
import pathlib
import re
import subprocess
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
BUILD = SOURCE / "build" / "aarch64"
SYSTEM = "/usr/aarch64-linux-gnu"


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False, **options)


def emulated(program, *arguments, **environment):
    return run("qemu-aarch64", "-L", SYSTEM, program, *arguments, env=dict(os.environ, **environment))


def setUpModule():
    built = run(SOURCE / "packaging" / "aarch64" / "build")
    if built.returncode == 77:
        raise unittest.SkipTest(built.stderr.strip())
    if built.returncode:
        raise AssertionError(built.stderr)


class Module(unittest.TestCase):
    def test_needs_what_the_module_of_this_processor_needs(self):
        def needed(module):
            text = run("readelf", "--wide", "--dynamic", module).stdout
            return {name for name in re.findall(r"Shared library: \[(.*)\]", text) if not name.startswith("ld-linux")}

        self.assertEqual(needed(BUILD / "umbrant2.so"), needed(os.environ["MODULE"]))

    def test_exports_what_the_module_of_this_processor_exports(self):
        def exported(module):
            text = run("nm", "--dynamic", "--defined-only", "--format=posix", module).stdout
            return {line.split()[0] for line in text.splitlines()}

        self.assertEqual(exported(BUILD / "umbrant2.so"), exported(os.environ["MODULE"]))
        self.assertNotEqual(exported(BUILD / "umbrant2.so"), set())

    def test_loads_with_every_name_found(self):
        # What `ldd -r` does. The stand-ins have the names of the system's OpenGL.
        loaded = emulated(pathlib.Path(SYSTEM) / "lib" / "ld-linux-aarch64.so.1", "--library-path", BUILD / "stubs",
                          "--list", BUILD / "umbrant2.so", LD_WARN="1", LD_BIND_NOW="1")
        self.assertEqual(loaded.returncode, 0, loaded.stdout + loaded.stderr)
        self.assertIn("libOpenGL.so.0", loaded.stdout)
        self.assertNotIn("not found", loaded.stdout)
        self.assertNotIn("undefined symbol", loaded.stdout + loaded.stderr)

    def test_joins_no_multiplication_with_an_addition(self):
        code = run("aarch64-linux-gnu-objdump", "--disassemble", "--no-show-raw-insn", BUILD / "umbrant2.so")
        self.assertEqual(code.returncode, 0, code.stderr)
        self.assertRegex(code.stdout, r"\tfmul\tv\d+\.4s", "the kernels use whole registers")
        self.assertNotRegex(code.stdout, r"\tf(n?m(add|sub)|ml[as])\t")


class Kernels(unittest.TestCase):
    def test_tests_pass(self):
        tests = emulated(BUILD / "tests" / "cpu" / "kernels_and_lists_test", "--gtest_brief=1")
        self.assertEqual(tests.returncode, 0, tests.stdout + tests.stderr)
        self.assertRegex(tests.stdout, r"\[  PASSED  \] \d\d tests")

    def test_scenes_have_the_same_bytes_on_both_processors(self):
        scenes = 60
        here = run(os.environ["SCENE_HASHES"], scenes)
        self.assertEqual(here.returncode, 0, here.stderr)
        there = emulated(BUILD / "tests" / "cpu" / "scene_hashes", scenes)
        self.assertEqual(there.returncode, 0, there.stderr)
        self.assertEqual(there.stderr.split(), ["NEON"])
        lines = here.stdout.splitlines()
        self.assertEqual(len(lines), scenes * len(here.stderr.split()))
        for first in range(0, len(lines), scenes):
            self.assertEqual(there.stdout.splitlines(), lines[first:first + scenes])
