#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The build on a Mac, rehearsed: the preset `macos` with stand-ins for Apple's compiler and codesign.

It proves what the build asks Apple's tools for, and what it does with what they make; not what they make of it. The
stand-in for the compiler writes down each command, makes no code for the module, and hands the build's own program to
this machine's compiler.
"""

import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle

COMPILER = """#!/usr/bin/env python3
import os, pathlib, shlex, sys
arguments = sys.argv[1:]
with open(os.environ["COMMANDS"], "a") as log:
    log.write(shlex.join(["c++", *arguments]) + "\\n")
output = pathlib.Path(arguments[arguments.index("-o") + 1])
if "-bundle" in arguments:
    output.write_text("code")
elif "-c" in arguments and "/packaging/" not in arguments[-1]:
    output.write_text("")
    pathlib.Path(arguments[arguments.index("-MF") + 1]).write_text(f"{arguments[-1]}:\\n")
else:
    kept, skip = [], False
    for word in arguments:
        if not skip and word not in ("-arch", "-isysroot") and not word.startswith(("-mmacosx", "-Wl,", "-fobjc")):
            kept.append(word)
        skip = word in ("-arch", "-isysroot")
    os.execv("/usr/bin/c++", ["/usr/bin/c++", *kept])
"""
RECORDER = """#!/bin/sh
printf '%s' "$(basename "$0")" >>"$COMMANDS"
for word in "$@"; do printf " '%s'" "$word" >>"$COMMANDS"; done
echo >>"$COMMANDS"
"""
TOOLCHAIN = """
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)
set(CMAKE_CXX_COMPILER {tools}/c++)
set(CMAKE_INSTALL_NAME_TOOL {tools}/install_name_tool)
set(CMAKE_CXX_COMPILER_ID AppleClang)
set(CMAKE_CXX_COMPILER_VERSION 14.0)
set(CMAKE_CXX_COMPILER_ID_RUN ON)
set(CMAKE_CXX_STANDARD_COMPUTED_DEFAULT 14)
set(CMAKE_CXX_EXTENSIONS_COMPUTED_DEFAULT OFF)
set(CMAKE_CXX_COMPILER_FORCED ON)
set(CMAKE_HAVE_LIBC_PTHREAD ON)
set(CMAKE_OSX_SYSROOT macosx)
"""


class MacRoad(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        sdk = cls.folder / "MacOSX.sdk"
        sdk.mkdir()
        stand_ins = {"c++": COMPILER, "codesign": RECORDER, "install_name_tool": RECORDER,
                     "xcrun": f"#!/bin/sh\necho '{sdk}'\n"}
        for name, text in stand_ins.items():
            (cls.folder / name).write_text(text)
            (cls.folder / name).chmod(0o755)
        (cls.folder / "mac.cmake").write_text(TOOLCHAIN.format(tools=cls.folder))
        # A Mac builds for itself; setting the system's name by hand says otherwise.
        (cls.folder / "native.cmake").write_text("set(CMAKE_CROSSCOMPILING OFF)\n")
        cls.commands = cls.build()

    @classmethod
    def build(cls, *options):
        """Configures as the preset does, with more options, and builds; the commands that the stand-ins were given."""
        log = cls.folder / "commands"
        log.unlink(missing_ok=True)
        environment = {**os.environ, "COMMANDS": str(log), "PATH": f"{cls.folder}:{os.environ['PATH']}"}
        presets = json.loads((bundle.ROOT / "CMakePresets.json").read_text())["configurePresets"]
        (preset,) = [each for each in presets if each["name"] == "macos"]
        assert preset["condition"]["rhs"] == "Darwin"
        cls.tree = cls.folder / "build"
        configure = ["cmake", "-S", bundle.ROOT, "-B", cls.tree, "-G", "Ninja", "--log-level=NOTICE",
                     f"-DCMAKE_TOOLCHAIN_FILE={cls.folder}/mac.cmake",
                     f"-DCMAKE_PROJECT_INCLUDE={cls.folder}/native.cmake",
                     *[f"-D{name}={value}" for name, value in preset["cacheVariables"].items()], *options]
        for command in [configure, ["cmake", "--build", cls.tree]]:
            ran = subprocess.run(list(map(str, command)), env=environment, capture_output=True, text=True)
            assert ran.returncode == 0, ran.stdout[-3000:] + ran.stderr[-3000:]
            assert "warning" not in (ran.stdout + ran.stderr).lower(), ran.stdout + ran.stderr
        return [shlex.split(line) for line in log.read_text().splitlines()]

    def test_every_file_is_compiled_for_both(self):
        compiled = {}
        for command in self.commands:
            if command[0] == "c++" and "-c" in command:
                compiled[command[-1].removeprefix(f"{bundle.ROOT}/")] = command
        for name in ["entry/dispatch.cpp", "render/smart_render.cpp", "gl/program.cpp", "platform/macos/open_url.cpp"]:
            self.assertIn(name, compiled)
        self.assertEqual([name for name in compiled if name.startswith(("platform/linux", "platform/fake", "cpu/"))], [])
        for name, command in compiled.items():
            words = " ".join(command)
            for wanted in ["-arch x86_64 -arch arm64", "-mmacosx-version-min=11.0", "-O2 -DNDEBUG", "-std=c++20",
                           "-fvisibility=hidden", "-fvisibility-inlines-hidden", "-Wall -Wextra -Wpedantic"]:
                self.assertIn(wanted, words, name)
            if name.startswith(("entry/", "render/", "gl/", "pixel/", "platform/")):
                self.assertIn("-ffp-contract=off", command, name)

    def test_link(self):
        (link,) = [command for command in self.commands if command[0] == "c++" and "-bundle" in command]
        words = " ".join(link)
        for wanted in ["-arch x86_64 -arch arm64", "-mmacosx-version-min=11.0", "-framework OpenGL", "-Xlinker -dead_strip"]:
            self.assertIn(wanted, words)
        self.assertEqual(link[link.index("-o") + 1], "Umbrant 2")
        exported = re.search(r"-Xlinker -exported_symbols_list -Xlinker (\S+)", words)[1]
        self.assertEqual((self.tree / exported).read_text(), "_EffectMain\n_PluginDataEntryFunction\n")
        self.assertNotIn("version-script", words)

    def test_bundle_and_archive(self):
        made = self.tree / "Umbrant 2.plugin" / "Contents"
        self.assertEqual((made / "MacOS" / "Umbrant 2").read_text(), "code")
        self.assertEqual((made / "Resources" / "Umbrant 2.rsrc").stat().st_size, 610)
        with zipfile.ZipFile(self.tree / "Umbrant-2-1.3.3-macOS.zip") as packed:
            self.assertEqual(len(packed.namelist()), 6)
        self.assertTrue((self.tree / "Umbrant-2-1.3.3-macOS.zip.sha256").exists())

    def test_signed_last_and_ad_hoc(self):
        signing = [command for command in self.commands if command[0] == "codesign"]
        self.assertEqual(signing, [["codesign", "--force", "--sign", "-", f"{self.tree}/Umbrant 2.plugin"]])
        self.assertEqual(self.commands[-1], signing[0])

    def test_signed_with_a_certificate(self):
        identity = "Developer ID Application: Somebody (TEAM)"
        commands = self.build(f"-DUMBRANT_CODESIGN_IDENTITY={identity}", "-DUMBRANT_BUNDLE_ID=org.example.other")
        self.assertEqual(commands[-1], ["codesign", "--force", "--sign", identity, "--options", "runtime", "--timestamp",
                                        f"{self.tree}/Umbrant 2.plugin"])
        plist = (self.tree / "Umbrant 2.plugin" / "Contents" / "Info.plist").read_text()
        self.assertIn("<string>org.example.other</string>", plist)


if __name__ == "__main__":
    unittest.main()
