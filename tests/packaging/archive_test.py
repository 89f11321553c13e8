#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The archive that people get: what is in it, and the same bytes from the same files."""

import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import stat
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle

MAKER = bundle.ROOT / "packaging" / "macos" / "make_archive"
WRITER = os.environ["WRITE_BUNDLE_FILES"]
NAMES = [
    "LICENSE.txt",
    "README.txt",
    "Umbrant 2.plugin/Contents/Info.plist",
    "Umbrant 2.plugin/Contents/MacOS/Umbrant 2",
    "Umbrant 2.plugin/Contents/PkgInfo",
    "Umbrant 2.plugin/Contents/Resources/Umbrant 2.rsrc",
]


def check(archive):
    """The checksum beside the archive, checked as a user would."""
    return subprocess.run(["sha256sum", "-c", f"{archive.name}.sha256"], cwd=archive.parent, capture_output=True)


class MadeUp(unittest.TestCase):
    """An archive around an executable that is none."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def make(self, where):
        made = self.folder / where / "Umbrant 2.plugin"
        subprocess.run([WRITER, made, "com.example.umbrant2"], check=True)
        (made / "Contents" / "MacOS").mkdir()
        (made / "Contents" / "MacOS" / "Umbrant 2").write_bytes(b"code" * 1000)
        archive = self.folder / where / "some.zip"
        subprocess.run([MAKER, made, archive], check=True)
        return archive

    def test_the_same_bytes_twice(self):
        first = self.make("first")
        os.utime(self.folder / "first" / "Umbrant 2.plugin" / "Contents" / "PkgInfo", (0, 0))
        time.sleep(2.1)  # a zip's times have steps of two seconds
        previous = os.umask(0o077)
        try:
            second = self.make("second")
        finally:
            os.umask(previous)
        self.assertEqual(first.read_bytes(), second.read_bytes())

    def test_contents(self):
        archive = self.make("one")
        with zipfile.ZipFile(archive) as packed:
            self.assertEqual(packed.namelist(), NAMES)
            self.assertIsNone(packed.testzip())
            self.assertEqual(packed.read("LICENSE.txt"), (bundle.ROOT / "LICENSE").read_bytes())
            self.assertEqual({info.date_time for info in packed.infolist()}, {(1980, 1, 1, 0, 0, 0)})
            modes = {info.filename: stat.S_IMODE(info.external_attr >> 16) for info in packed.infolist()}
        self.assertEqual(modes.pop(NAMES[3]), 0o755)
        self.assertEqual(set(modes.values()), {0o644})

    def test_checksum(self):
        archive = self.make("one")
        self.assertEqual(check(archive).returncode, 0)
        archive.write_bytes(archive.read_bytes()[:-1])
        self.assertNotEqual(check(archive).returncode, 0)

    def test_what_is_no_bundle_is_refused(self):
        target = self.folder / "x.zip"
        ran = subprocess.run([MAKER, self.folder, target], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 1)
        self.assertEqual(ran.stderr, f"'{self.folder}' is not a bundle: it has no Contents/Info.plist.\n")
        self.assertFalse(target.exists())
        self.assertEqual(list(self.folder.glob("*.partial")), [])


class Shipped(unittest.TestCase):
    """The archive of the real bundle."""

    def setUp(self):
        try:
            bundle.require()
        except unittest.SkipTest as reason:
            self.skipTest(str(reason))
        (self.archive,) = bundle.CROSS.glob("*.zip")

    def test_name_and_checksum(self):
        self.assertEqual(self.archive.name, "Umbrant-2-1.3.3-macOS.zip")
        self.assertEqual(check(self.archive).returncode, 0)

    def test_holds_the_bundle(self):
        with zipfile.ZipFile(self.archive) as packed:
            self.assertEqual(packed.namelist(), NAMES)
            for name in NAMES[2:]:
                self.assertEqual(packed.read(name), (bundle.CROSS / name).read_bytes(), name)

    def test_shown_as_the_documents_quote_it(self):
        shown = bundle.run(bundle.ROOT / "packaging" / "macos" / "show")
        for line in ["Umbrant-2-1.3.3-macOS.zip: OK", "Umbrant 2 (for architecture arm64):", "T _EffectMain"]:
            self.assertIn(line, shown)
        quoted = (bundle.ROOT / "docs" / "macos.md").read_text()
        for command in re.findall(r"^    \$ .*", shown, re.MULTILINE):
            self.assertIn(command, quoted)

    def test_compiled_elsewhere_it_is_the_same(self):
        """Some files of each slice once more, from a copy of the tree in another folder."""
        for arch in bundle.ARCHITECTURES:
            tree = bundle.CROSS / arch
            listed = json.loads((tree / "compile_commands.json").read_text())
            for name in ["entry/global_setup.cpp", "gl/program.cpp", "render/smart_render.cpp"]:
                with self.subTest(arch=arch, file=name), tempfile.TemporaryDirectory() as folder:
                    copy = pathlib.Path(folder) / "copy"
                    for part in ["hostapi", "platform", "entry", "pixel", "gl", "cpu", "render"]:
                        if (bundle.ROOT / part).exists():
                            shutil.copytree(bundle.ROOT / part, copy / part)
                    (made,) = [each for each in listed if each["file"] == str(bundle.ROOT / name)]
                    words = shlex.split(made["command"])
                    place = words[words.index("-o") + 1]
                    elsewhere = {str(bundle.ROOT): str(copy), str(copy / "build" / "macos-cross"): str(bundle.CROSS)}
                    for old, new in elsewhere.items():
                        words = [word.replace(old, new) for word in words]
                    (copy / place).parent.mkdir(parents=True)
                    subprocess.run(words, cwd=copy, check=True)
                    self.assertEqual((copy / place).read_bytes(), (tree / place).read_bytes())

    def test_linked_again_it_is_the_same(self):
        """The link of each slice once more, in another folder."""
        for arch in bundle.ARCHITECTURES:
            with self.subTest(arch), tempfile.TemporaryDirectory() as folder:
                tree = bundle.CROSS / arch
                listing = bundle.run("ninja", "-C", tree, "-t", "commands", "-s", "Umbrant 2")
                again = pathlib.Path(folder) / "Umbrant 2"
                command = listing.splitlines()[-1].replace('-o "Umbrant 2"', f'-o "{again}"')
                subprocess.run(command, shell=True, cwd=tree, check=True)
                first, second = ((path / "Umbrant 2").read_bytes() for path in (tree, again.parent))
                self.assertEqual(hashlib.sha256(first).hexdigest(), hashlib.sha256(second).hexdigest())


if __name__ == "__main__":
    unittest.main()
