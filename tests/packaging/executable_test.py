#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The bundle's executable, as tools that did not make it see it."""

import functools
import getpass
import hashlib
import os
import pathlib
import re
import struct
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle

EXPORTS = {"_EffectMain", "_PluginDataEntryFunction"}
LIBRARIES = [
    "/System/Library/Frameworks/OpenGL.framework/Versions/A/OpenGL",
    "/usr/lib/libSystem.B.dylib",
]
# The C++ library asks for this old library of the system, when it is loaded anyway, to share an empty string with it.
ALSO_NAMED = "/usr/lib/libstdc++.6.dylib"
# The render mutex, and the C++ library's standard streams, which a diagnostic is printed to.
# The mutex of all renders; what starts afresh in a forked child (OpenGL, the threads' state); the note of written records.
INITIALISERS = {"__GLOBAL__sub_I_global_setup.cpp", "__GLOBAL__I_000100", "__GLOBAL__sub_I_opengl_fork.cpp",
                "__GLOBAL__sub_I_thread_state.cpp", "___cxx_global_var_init"}  # fmt: skip
PAGE = 4096


def setUpModule():
    bundle.require()


def per_slice(test):
    """Runs a test with the architecture and the bytes of each slice."""

    @functools.wraps(test)
    def run(self):
        for arch, data in bundle.slices().items():
            with self.subTest(arch):
                test(self, arch, data)

    return run


class EachSlice(unittest.TestCase):
    def objdump(self, arch, *options):
        return bundle.run("llvm-objdump-14", "--macho", f"--arch={arch}", *options, bundle.EXECUTABLE)

    def test_two_slices(self):
        self.assertEqual(bundle.run("llvm-lipo-14", "-archs", bundle.EXECUTABLE).split(), ["x86_64", "arm64"])
        bundle.run("llvm-lipo-14", bundle.EXECUTABLE, "-verify_arch", "x86_64", "arm64")

    @per_slice
    def test_file_type(self, arch, data):
        header = self.objdump(arch, "--private-header").splitlines()[-1]
        for word in ["MH_MAGIC_64", "BUNDLE", "NOUNDEFS", "DYLDLINK", "TWOLEVEL", "MH_HAS_TLV_DESCRIPTORS"]:
            self.assertIn(word, header.split())

    @per_slice
    def test_platform_and_minimum_version(self, arch, data):
        listing = bundle.run("llvm-otool-14", "-arch", arch, "-l", bundle.EXECUTABLE)
        version = listing.split("cmd LC_BUILD_VERSION")[1].split("Load command")[0]
        values = dict(line.split() for line in version.splitlines() if len(line.split()) == 2)
        self.assertEqual(values["platform"], "macos")
        self.assertEqual(values["minos"], "11.0")
        self.assertNotIn("LC_VERSION_MIN", listing)

    @per_slice
    def test_exactly_two_exports(self, arch, data):
        listing = bundle.run("llvm-nm-14", "--arch", arch, "-gU", "--format=just-symbols", bundle.EXECUTABLE)
        self.assertEqual({line for line in listing.splitlines() if line and " " not in line}, EXPORTS)
        trie = self.objdump(arch, "--exports-trie")
        self.assertEqual(set(re.findall(r"\s(_\w+)$", trie, re.MULTILINE)), EXPORTS)

    @per_slice
    def test_shares_no_weak_symbols(self, arch, data):
        self.assertNotRegex(self.objdump(arch, "--weak-bind"), r"0x[0-9A-Fa-f]+")

    @per_slice
    def test_libraries(self, arch, data):
        listing = bundle.run("llvm-otool-14", "-arch", arch, "-L", bundle.EXECUTABLE)
        self.assertEqual(re.findall(r"^\t(\S+)", listing, re.MULTILINE), LIBRARIES)

    def test_libraries_by_another_reader(self):
        probe = subprocess.run(["/usr/bin/python3", "-c", "import macholib"], capture_output=True)
        if probe.returncode != 0:
            self.skipTest("python3-macholib is not installed")
        listing = bundle.run("/usr/bin/python3", "-m", "macholib", "dump", bundle.EXECUTABLE)
        self.assertEqual(sorted(set(re.findall(r"^\s+(/\S+)$", listing, re.MULTILINE)) - {str(bundle.EXECUTABLE)}),
                         LIBRARIES)
        self.assertEqual(len(re.findall(r"\[MachOHeader endian='<' size='64-bit' arch='(?:x86_64|ARM64)'", listing)), 2)

    @per_slice
    def test_mathematics_and_memory_are_the_systems(self, arch, data):
        listing = bundle.run("llvm-nm-14", "--arch", arch, "--format=just-symbols", "-u", bundle.EXECUTABLE)
        self.assertLess({"_exp2", "_fmod", "_memcpy", "_memset", "_malloc"}, set(listing.split()))

    @per_slice
    def test_no_paths_and_no_names_of_the_build_machine(self, arch, data):
        # With a folder at least: machine code of five bytes can read like a file at the root.
        paths = {path.decode() for path in re.findall(rb"(?<![\x20-\x7e])/[A-Za-z][\x21-\x7e]*/[\x21-\x7e]+(?=\0)", data)}
        self.assertEqual(paths, {*LIBRARIES, ALSO_NAMED})
        forbidden = [str(bundle.ROOT), str(pathlib.Path.home()) + "/", os.uname().nodename, "node_modules", ".cpp.o",
                     "/tmp/", f"/{getpass.getuser()}/"]
        for name in forbidden:
            if len(name) > 4:
                self.assertNotIn(name.encode(), data, name)

    @per_slice
    def test_text_holds_the_shaders_and_the_banner(self, arch, data):
        shaders = sorted((bundle.ROOT / "render" / "shaders").glob("*.*"))
        self.assertEqual(len(shaders), 6)
        files = [*shaders, bundle.ROOT / "assets" / "banner" / "um2_map.bgra"]
        start, size = bundle.segments(data)["__TEXT"]
        text = data[start : start + size]
        for file in files:
            self.assertIn(file.read_bytes(), text, file.name)

    @per_slice
    def test_static_initialisers(self, arch, data):
        symbols = bundle.run("llvm-nm-14", "--arch", arch, bundle.EXECUTABLE)
        named = {int(line.split()[0], 16): line.split()[2] for line in symbols.splitlines() if len(line.split()) == 3}
        lists = [place for place in bundle.sections(data).values() if place[3] & 0xFF in (0x9, 0x16)]
        self.assertEqual(len(lists), 1)
        _, size, offset, _ = lists[0]
        addresses = struct.unpack_from(f"<{size // 8}Q", data, offset)
        self.assertEqual({named[address] for address in addresses}, INITIALISERS)

    @per_slice
    def test_thread_local_storage(self, arch, data):
        kinds = {flags & 0xFF for _, size, _, flags in bundle.sections(data).values() if size}
        self.assertIn(0x13, kinds, "descriptors")
        self.assertTrue(kinds & {0x11, 0x12}, "the variables themselves")
        self.assertIn("__tlv_bootstrap", bundle.run("llvm-nm-14", "--arch", arch, "-u", bundle.EXECUTABLE))

    @per_slice
    def test_exceptions_can_be_unwound(self, arch, data):
        found = bundle.sections(data)
        self.assertGreater(found["__TEXT", "__unwind_info"][1], 1000)
        # What compact unwind cannot say is in frame descriptions, whose counters must lie in the code.
        frames = bundle.run("llvm-dwarfdump-14", "--eh-frame", bundle.CROSS / arch / "Umbrant 2")
        counters = [int(pc, 16) for pc in re.findall(r" FDE .* pc=([0-9a-f]+)\.\.\.", frames)]
        start, length, _, _ = found["__TEXT", "__text"]
        self.assertGreater(len(counters), 0)
        for counter in counters:
            self.assertTrue(start <= counter < start + length, f"a frame description points to {counter:#x}")

    @per_slice
    def test_no_fused_arithmetic_of_ours(self, arch, data):
        code = bundle.run("llvm-objdump-14", "--disassemble", "--no-show-raw-insn", f"--triple={arch}-apple-macos",
                          bundle.CROSS / arch / "Umbrant 2")
        self.assertGreater(code.count("\n"), 20000)
        self.assertEqual(re.findall(r"\t(?:fn?madd|fn?msub|fml[as]|vfn?m(?:add|sub)\w+)\b.*", code), [])

    @per_slice
    def test_signature(self, arch, data):
        directory = code_directory(data)
        self.assertEqual(directory["flags"], 0x20002, "ad hoc, by the linker")
        self.assertEqual(directory["identifier"], "Umbrant 2")
        self.assertEqual(directory["bad pages"], 0)
        self.assertGreater(directory["pages"], 100)

    def test_signature_notices_a_changed_byte(self):
        data = bytearray(bundle.slices()["arm64"])
        data[0x5000] ^= 1
        self.assertEqual(code_directory(bytes(data))["bad pages"], 1)


def code_directory(data):
    """What the slice's signature says, with the number of pages whose hash is not what it says."""
    (place,) = [command for number, command in bundle.commands(data) if number == 0x1D]
    start, size = struct.unpack_from("<2I", place, 8)
    blob = data[start : start + size]
    magic, _, count = struct.unpack_from(">3I", blob, 0)
    assert magic == 0xFADE0CC0, hex(magic)
    slots = dict(struct.unpack_from(">2I", blob, 12 + 8 * index) for index in range(count))
    directory = blob[slots[0] :]
    magic, _, _, flags, hashes, name, _, pages, limit = struct.unpack_from(">9I", directory, 0)
    hash_size, hash_kind, _, page_bits = struct.unpack_from("4B", directory, 36)
    assert (magic, hash_size, hash_kind, 1 << page_bits) == (0xFADE0C02, 32, 2, PAGE)
    assert limit == start, "everything before the signature is signed"
    bad = 0
    for page in range(pages):
        digest = hashlib.sha256(data[page * PAGE : min((page + 1) * PAGE, limit)]).digest()
        bad += digest != directory[hashes + 32 * page : hashes + 32 * (page + 1)]
    identifier = directory[name : directory.index(b"\0", name)].decode()
    return {"flags": flags, "identifier": identifier, "pages": pages, "bad pages": bad}


class TheBundle(unittest.TestCase):
    def test_its_files(self):
        files = {path.relative_to(bundle.BUNDLE).as_posix() for path in bundle.BUNDLE.rglob("*") if path.is_file()}
        self.assertEqual(
            files,
            {"Contents/Info.plist", "Contents/PkgInfo", "Contents/MacOS/Umbrant 2", "Contents/Resources/Umbrant 2.rsrc"},
        )

    def test_its_resource_is_the_universal_one(self):
        digest = hashlib.sha256((bundle.BUNDLE / "Contents/Resources/Umbrant 2.rsrc").read_bytes()).hexdigest()
        self.assertEqual(digest, "844e541a3054a4c4dcc7379f35778ac078e5a38d53151f38fd755f01bdcc991e")


if __name__ == "__main__":
    unittest.main()
