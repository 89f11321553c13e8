#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The hardening of what ships, read from the built files: the program and its shared objects, the library, the module,
the judge's library and the filter. Each reader is also tried on a small program that was built without hardening, so that
it can fail."""

import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = pathlib.Path(os.environ["BUILD_FOLDER"])
LIBRARY = pathlib.Path(os.environ["LIBRARY"])
LINKED = [
    BUILD / name
    for name in ("umbrant", "umbrant2.so", "umbrant_color.so", "umbrant_drawing.so", "umbrant_http.so", "umbrant_images.so",
                 "umbrant_shim.so", "umbrant_frei0r.so")  # fmt: skip
] + sorted((BUILD / "python/umbrant").glob("_umbrant.*.so"))
# The judge's library puts itself before a few calls of the driver and has no buffer of its own to protect.
LARGE = [BUILD / "umbrant", BUILD / "umbrant2.so", LIBRARY]


def read(tool, *arguments):
    return subprocess.run([os.environ[tool], *map(str, arguments)], check=True, capture_output=True, text=True).stdout


class Facts:
    """What a built file says of itself."""

    def __init__(self, file):
        # The names in an archive's members that are not defined there include those of the compiler's own calls.
        self.symbols = set(re.findall(r"\b(\w+)(?:@\S+)?$", read("READELF", "--wide", "--symbols", file), re.MULTILINE))
        code = read("OBJDUMP", "--disassemble", "--no-show-raw-insn", "--wide", file)
        functions = re.split(r"^[0-9a-f]+ <", code, flags=re.MULTILINE)[1:]
        self.functions = len(functions)
        self.marked = sum(1 for text in functions if re.search(r"\A[^\n]*\n[^\n]*\bendbr64", text))
        # A frame of more than a page is entered page by page; each page is touched.
        self.probes = len(re.findall(r"\borq\s+\$0x0,(?:0x[0-9a-f]+)?\(%rsp\)", code))
        self.large_frames = len(re.findall(r"\bsub\s+\$0x[1-9a-f][0-9a-f]{4,7},%rsp", code))

    @property
    def protects_the_stack(self):
        return "__stack_chk_fail" in self.symbols

    @property
    def checked_calls(self):
        return {name for name in self.symbols if re.fullmatch(r"__\w+_chk", name)} - {"__stack_chk"}


class Hardening(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.facts = {file: Facts(file) for file in {*LINKED, LIBRARY} if file.exists()}
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        source = pathlib.Path(folder.name) / "soft.cpp"
        source.write_text("#include <cstdio>\n#include <cstring>\n"
                          "int main(int count, char** words) {\n"
                          "    char text[90000]; std::strcpy(text, words[count - 1]); return std::puts(text); }\n")
        cls.soft = {}
        for name, flags in {
            "without": ["-fno-stack-protector", "-fno-stack-clash-protection", "-fcf-protection=none", "-no-pie",
                        "-U_FORTIFY_SOURCE", "-Wl,-z,lazy", "-Wl,-z,norelro", "-Wl,-z,execstack"],
            "with": ["-fstack-protector-strong", "-fstack-clash-protection", "-fcf-protection=full", "-pie", "-fPIE",
                     "-D_FORTIFY_SOURCE=2", "-Wl,-z,now", "-Wl,-z,relro"],
        }.items():
            cls.soft[name] = source.with_name(name)
            subprocess.run([os.environ["CXX"], "-O2", "-w", *flags, source, "-o", cls.soft[name]], check=True)

    def linked(self):
        found = [file for file in LINKED if file.exists()]
        self.assertIn(BUILD / "umbrant", found)
        self.assertIn(BUILD / "umbrant2.so", found)
        return found

    def test_stacks_are_protected(self):
        self.assertFalse(Facts(self.soft["without"]).protects_the_stack)
        for file in LARGE:
            self.assertTrue(self.facts[file].protects_the_stack, file)

    def test_library_calls_are_checked(self):
        self.assertEqual(Facts(self.soft["without"]).checked_calls, set())
        self.assertIn("__strcpy_chk", Facts(self.soft["with"]).checked_calls)
        self.assertTrue(self.facts[BUILD / "umbrant"].checked_calls)
        self.assertTrue(self.facts[LIBRARY].checked_calls)

    def test_large_frames_are_probed(self):
        self.assertTrue(Facts(self.soft["without"]).large_frames)
        self.assertEqual(Facts(self.soft["with"]).large_frames, 0)
        for file, facts in self.facts.items():
            self.assertEqual(facts.large_frames, 0, file)

    def test_functions_are_marked_as_targets(self):
        # What the C library brings to every program is marked.
        soft = {name: Facts(file) for name, file in self.soft.items()}
        self.assertLess(soft["without"].marked, soft["with"].marked)
        self.assertLess(soft["without"].marked, soft["without"].functions / 2)
        for file in LARGE:
            facts = self.facts[file]
            # Local functions that are only called directly need no mark, nor have stubs of the linker one.
            self.assertGreater(facts.marked, facts.functions / 2, file)

    def segments(self, file):
        return read("READELF", "--wide", "--program-headers", "--dynamic", file)

    def test_what_the_start_writes_is_read_only_afterwards(self):
        self.assertNotRegex(self.segments(self.soft["without"]), "GNU_RELRO|BIND_NOW")
        for file in self.linked():
            segments = self.segments(file)
            self.assertIn("GNU_RELRO", segments, file)
            self.assertRegex(segments, r"BIND_NOW|FLAGS_1\).*\bNOW\b", file)

    def test_the_stack_is_no_code(self):
        self.assertRegex(self.segments(self.soft["without"]), r"GNU_STACK.*RWE")
        for file in self.linked():
            self.assertRegex(self.segments(file), r"GNU_STACK.*RW ", file)

    def test_the_program_is_at_no_fixed_place(self):
        self.assertIn("EXEC (", read("READELF", "--file-header", self.soft["without"]))
        self.assertIn("DYN (", read("READELF", "--file-header", BUILD / "umbrant"))

    def test_format_strings_are_checked(self):
        commands = {}
        for entry in json.loads((BUILD / "compile_commands.json").read_text()):
            sources = [entry["file"]]
            if "/Unity/" in entry["file"]:
                # It includes those that are compiled together.
                sources = re.findall(r'^#include "(.*)"', pathlib.Path(entry["file"]).read_text(), re.MULTILINE)
            for source in sources:
                commands[os.path.relpath(source, ROOT)] = entry["command"]
        for file in ("host/main.cpp", "entry/dispatch.cpp", "frei0r/filter.cpp", "host/library/effect.cpp"):
            if file.startswith("frei0r") and file not in commands:
                continue
            self.assertIn("-Werror=format-security", commands.get(file, ""), file)


if __name__ == "__main__":
    unittest.main()
