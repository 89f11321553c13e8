# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The OpenFX bundle for older systems: what its two binaries need and show, the files around them, the archive, and that
its module draws the bytes of this system's."""

import os
import pathlib
import random
import re
import subprocess
import tarfile
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
UMBRANT = os.environ["UMBRANT"]
MODULE = pathlib.Path(os.environ["MODULE"])
BUILD = SOURCE / "build" / "openfx"
BUNDLE = BUILD / "openfx" / "Umbrant.ofx.bundle"
BINARIES = BUNDLE / "Contents" / "Linux-x86-64"
PLUGIN, OLD_MODULE = BINARIES / "Umbrant.ofx", BINARIES / "umbrant2.so"

NEWEST = (2, 28)
SYSTEM = {"libc.so.6", "libm.so.6", "libpthread.so.0", "libdl.so.2", "ld-linux-x86-64.so.2"}
ENTRIES = {"OfxGetNumberOfPlugins", "OfxGetPlugin", "OfxSetHost"}


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False, **options)


def output(*command):
    done = run(*command)
    if done.returncode:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def versions(file):
    """The versions of functions of other libraries: {"GLIBC": {(2, 17), ...}, ...}."""
    found = {}
    for name, number in re.findall(r"\(?\b([A-Z]+)_(\d+(?:\.\d+)+)\b\)?", output("objdump", "-T", file)):
        found.setdefault(name, set()).add(tuple(map(int, number.split("."))))
    return found


def needed(file):
    return set(re.findall(r"NEEDED\s+(\S+)", output("objdump", "-p", file)))


def exported(file):
    return {line.split()[0] for line in output("nm", "-D", "--defined-only", "--format=posix", file).splitlines()}


def setUpModule():
    built = run(SOURCE / "packaging" / "openfx" / "build", "--installed")
    if built.returncode == 77:
        raise unittest.SkipTest(built.stderr.strip())
    if built.returncode:
        raise AssertionError(built.stderr)


class Binaries(unittest.TestCase):
    def test_the_reader_sees_newer_versions(self):
        here = versions(MODULE)
        self.assertIn("GLIBCXX", here)
        self.assertGreater(len(here["GLIBC"]), 1)

    def test_need_no_newer_c_library_and_no_cpp_library(self):
        for file in (PLUGIN, OLD_MODULE):
            found = versions(file)
            self.assertEqual(set(found), {"GLIBC"}, file)
            self.assertLessEqual(max(found["GLIBC"]), NEWEST, file)

    def test_every_function_of_the_c_library_has_a_version(self):
        for file in (PLUGIN, OLD_MODULE):
            undefined = [line for line in output("objdump", "-T", file).splitlines() if "*UND*" in line]
            self.assertGreater(len(undefined), 20, file)
            without = {line.split()[-1] for line in undefined if "GLIBC_" not in line and " w " not in line}
            system = {name for name in without if file == OLD_MODULE and name.startswith(("gl", "egl"))}
            self.assertEqual(without - system, set(), file)

    def test_need_the_system_alone(self):
        self.assertEqual(needed(PLUGIN) - SYSTEM, set())
        self.assertEqual(needed(OLD_MODULE) - SYSTEM, {"libEGL.so.1", "libOpenGL.so.0"})

    def test_export_the_entry_points_alone(self):
        self.assertEqual(exported(PLUGIN), ENTRIES)
        self.assertEqual(exported(OLD_MODULE), exported(MODULE))

    def test_are_stripped_hardened_and_of_no_place(self):
        for file in (PLUGIN, OLD_MODULE):
            sections = output("readelf", "--wide", "--sections", file)
            self.assertNotRegex(sections, r"\.debug_info|\.symtab", file)
            segments = output("readelf", "--wide", "--program-headers", "--dynamic", file)
            self.assertNotRegex(segments, "RUNPATH|RPATH", file)
            self.assertIn("GNU_RELRO", segments, file)
            self.assertRegex(segments, r"BIND_NOW|FLAGS_1\).*\bNOW\b", file)
            self.assertRegex(segments, r"GNU_STACK.*RW ", file)
            self.assertNotIn(str(SOURCE).encode(), file.read_bytes(), file)

    def test_joins_no_multiplication_with_an_addition(self):
        code = output("objdump", "--disassemble", "--no-show-raw-insn", OLD_MODULE)
        self.assertRegex(code, r"\tvmulps ")
        self.assertNotRegex(code, r"\tvfn?m(add|sub)")


class Bundle(unittest.TestCase):
    def test_files(self):
        found = {path.relative_to(BUNDLE).as_posix() for path in BUNDLE.rglob("*") if path.is_file()}
        text = (SOURCE / "openfx/describe.h").read_text(encoding="utf-8")
        identifier = re.search(r'kPluginIdentifier\[\] = "(.*)"', text)[1]
        self.assertEqual(found, {"Contents/Info.plist", f"Contents/Resources/{identifier}.png",
                                 "Contents/Linux-x86-64/Umbrant.ofx", "Contents/Linux-x86-64/umbrant2.so"})  # fmt: skip
        self.assertIn(f"<string>{identifier}</string>", (BUNDLE / "Contents/Info.plist").read_text(encoding="utf-8"))

    def test_the_doctor_finds_it_in_order(self):
        done = run(UMBRANT, "doctor", "openfx", BUNDLE, env=os.environ | {"UMBRANT_RENDERER": "cpu"})
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertRegex(done.stdout, r" is in order: 'Umbrant 2' \(\S+\.umbrant2 1\.\d+\) has \d+ parameters and draws a frame of ")

    def test_archive(self):
        (archive,) = BUILD.glob("umbrant-openfx-*-linux-x86_64.tar.gz")
        with tarfile.open(archive) as packed:
            folder = archive.name.removesuffix(".tar.gz")
            self.assertTrue(all(name.startswith(folder + "/") for name in packed.getnames()), packed.getnames())
            for path in BUNDLE.rglob("*"):
                if path.is_file():
                    name = f"{folder}/{BUNDLE.name}/{path.relative_to(BUNDLE).as_posix()}"
                    self.assertEqual(packed.extractfile(name).read(), path.read_bytes(), name)
            readme = packed.extractfile(f"{folder}/README.txt").read().decode()
            self.assertEqual(len(re.findall(r"^\d\. ", readme, re.MULTILINE)), 3)
            self.assertIn("Niels Lohmann", packed.extractfile(f"{folder}/THIRD_PARTY.txt").read().decode())
            self.assertEqual({entry.uname for entry in packed}, {""})


class Pixels(unittest.TestCase):
    """Random settings, drawn by both modules with the CPU renderer."""

    SCENES = 12

    def settings(self, chance):
        kind = chance.choice(["normal", "inner", "radial"])
        values = {
            "style/shadow-type": kind, "style/angle": chance.uniform(-400, 400), "style/distance": chance.uniform(0, 600),
            "style/softness": chance.choice([0, 3, chance.uniform(0, 300)]), "style/color": f"#{chance.randrange(1 << 24):06x}",
            "style/blend-mode": chance.choice(["normal", "screen", "multiply", "overlay"]),
            "opacity/opacity-start": chance.uniform(0, 100), "opacity/opacity-end": chance.uniform(0, 100),
            "easing/ease": chance.uniform(0, 100), "easing/mode": chance.choice(["ease-in", "ease-in-out"]),
            "quality/samples": chance.randint(1, 48), "quality/resolution": chance.choice(["draft", "moderate", "extreme"]),
        }  # fmt: skip
        return [word for path, value in values.items() for word in ("--set", f"{path}={value}")]

    def draw(self, module, layer, file, settings):
        output(UMBRANT, "render", SOURCE / "assets/layers" / layer, "-o", file, "--renderer", "cpu", "--downsample", 4, "--no-recipe", "--module",
               module, *settings)  # fmt: skip
        return file.read_bytes()

    def test_are_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for scene in range(self.SCENES):
                settings = self.settings(random.Random(scene))
                for layer, kind in (("title.png", "png"), ("neon.exr", "exr")):
                    with self.subTest(scene=scene, layer=layer, settings=settings):
                        here, there = folder / f"{scene}.here.{kind}", folder / f"{scene}.there.{kind}"
                        first = self.draw(MODULE, layer, here, settings)
                        self.assertEqual(first, self.draw(OLD_MODULE, layer, there, settings))
                        here.unlink(), there.unlink()


class Plugin(unittest.TestCase):
    def test_draws_what_the_library_of_this_system_draws(self):
        done = run(os.environ["PLUGIN_TEST"], "--gtest_filter=OpenfxSmoke.*:OpenfxForms.*",
                   env=os.environ | {"UMBRANT_TEST_OPENFX_BINARY": str(PLUGIN)})  # fmt: skip
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertRegex(done.stdout, r"\[  PASSED  \] \d+ tests")


if __name__ == "__main__":
    unittest.main()
