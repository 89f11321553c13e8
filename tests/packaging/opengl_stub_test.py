#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The text stub of OpenGL.framework: the module's calls, all of them, no other, and none that macOS does not export."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import bundle

KHRONOS = pathlib.Path("/usr/include/GL/glcorearb.h")
MAKER = bundle.ROOT / "packaging" / "macos" / "make_opengl_stub"

# What OpenGL.framework exports under CGL's name, by Apple's documentation of CGL.
CGL = """
CGLChoosePixelFormat CGLDestroyPixelFormat CGLDescribePixelFormat CGLRetainPixelFormat CGLReleasePixelFormat
CGLGetPixelFormatRetainCount CGLQueryRendererInfo CGLDestroyRendererInfo CGLDescribeRenderer CGLCreateContext
CGLDestroyContext CGLCopyContext CGLRetainContext CGLReleaseContext CGLGetContextRetainCount CGLGetPixelFormat
CGLSetCurrentContext CGLGetCurrentContext CGLFlushDrawable CGLClearDrawable CGLSetOffScreen CGLGetOffScreen CGLEnable
CGLDisable CGLIsEnabled CGLSetParameter CGLGetParameter CGLSetVirtualScreen CGLGetVirtualScreen CGLUpdateContext
CGLSetGlobalOption CGLGetGlobalOption CGLSetOption CGLGetOption CGLLockContext CGLUnlockContext CGLGetVersion
CGLErrorString CGLGetShareGroup
""".split()

# Younger than 3.2, and exported by macOS all the same, whose OpenGL goes up to 4.1: the data-driven renderer, which the
# effect itself does not use, binds transform feedback objects.
ALSO = {"glBindTransformFeedback"}


def core_3_2():
    """The commands of OpenGL 3.2 core, from the Khronos header."""
    names, version = set(), None
    for line in KHRONOS.read_text().splitlines():
        if match := re.match(r"#ifndef GL_(?:VERSION_(\d)_(\d)|\w+)", line):
            version = (int(match[1]), int(match[2])) if match[1] else None
        if (match := re.match(r"GLAPI .*APIENTRY (gl\w+) ?\(", line)) and version and version <= (3, 2):
            names.add(match[1])
    return names


def allowed():
    return {f"_{name}" for name in core_3_2() | set(CGL) | ALSO}


def listed(text):
    """The symbols of a stub."""
    return set(re.findall(r"_\w+", re.search(r"symbols:\s*\[(.*?)\]", text, re.DOTALL)[1]))


def used(files):
    """What the objects leave undefined of OpenGL and CGL, by another tool than the stub's maker uses."""
    undefined, defined, name = set(), set(), None
    for line in bundle.run("llvm-readobj-14", "--symbols", *files).splitlines():
        if match := re.match(r"\s*Name: (\S+)", line):
            name = match[1]
        if match := re.match(r"\s*Type: (\w+)", line):
            (undefined if match[1] == "Undef" else defined).add(name)
    return {symbol for symbol in undefined - defined if re.match(r"_(gl[A-Z]|CGL)", symbol)}


def offences(stub, needed, exported):
    """What is wrong with a stub, a sentence each."""
    return (
        [f"{name} is missing" for name in sorted(needed - stub)]
        + [f"{name} is superfluous" for name in sorted(stub - needed)]
        + [f"{name} is neither OpenGL 3.2 core nor CGL" for name in sorted(stub - exported)]
    )


class Judge(unittest.TestCase):
    """The judge of the stub, on wrong stubs."""

    def test_core_names(self):
        names = core_3_2()
        self.assertLess({"glTexImage2D", "glGenVertexArrays", "glFramebufferTexture", "glFenceSync"}, names)
        for younger in ["glGenSamplers", "glBindTransformFeedback", "glTexStorage2D", "glDebugMessageCallback"]:
            self.assertNotIn(younger, names)
        for older in ["glBegin", "glMatrixMode"]:
            self.assertNotIn(older, names)

    def test_each_offence_is_found(self):
        exported = allowed()
        good = {"_glClear", "_CGLCreateContext"}
        self.assertEqual(offences(good, good, exported), [])
        self.assertEqual(offences({"_glClear"}, good, exported), ["_CGLCreateContext is missing"])
        self.assertEqual(offences(good | {"_glFinish"}, good, exported), ["_glFinish is superfluous"])
        for foreign in ["_glTexStorage2D", "_glGenSamplers", "_CGLInvent", "_glBegin"]:
            both = good | {foreign}
            self.assertEqual(offences(both, both, exported), [f"{foreign} is neither OpenGL 3.2 core nor CGL"])


class Stub(unittest.TestCase):
    def setUp(self):
        try:
            bundle.require()
        except unittest.SkipTest as reason:
            self.skipTest(str(reason))

    def test_lists_what_the_objects_use(self):
        for arch in bundle.ARCHITECTURES:
            with self.subTest(arch):
                folder = bundle.CROSS / arch
                objects = sorted(folder.rglob("*.o"))
                self.assertGreater(len(objects), 40)
                text = (folder / "entry" / "OpenGL.framework" / "OpenGL.tbd").read_text()
                self.assertEqual(offences(listed(text), used(objects), allowed()), [])
                self.assertIn("install-name:    '/System/Library/Frameworks/OpenGL.framework/Versions/A/OpenGL'", text)

    def test_same_for_both(self):
        texts = {
            (bundle.CROSS / arch / "entry" / "OpenGL.framework" / "OpenGL.tbd").read_text()
            for arch in bundle.ARCHITECTURES
        }
        self.assertEqual(len(texts), 1)

    def test_maker(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            source = folder / "calls.cpp"
            source.write_text(
                'extern "C" void glClear(unsigned); extern "C" void glow(); extern "C" int CGLCreateContext();\n'
                'extern "C" void glFinish() {}\n'
                "void calls() { glClear(CGLCreateContext()); glow(); glFinish(); }\n"
            )
            bundle.run(bundle.TOOLS / "c++-arm64", "-c", source, "-o", folder / "calls.o")
            bundle.run(MAKER, "--output", folder / "new" / "OpenGL.tbd", folder / "calls.o")
            self.assertEqual(listed((folder / "new" / "OpenGL.tbd").read_text()), {"_glClear", "_CGLCreateContext"})
            source.write_text("int nothing() { return 0; }\n")
            bundle.run(bundle.TOOLS / "c++-arm64", "-c", source, "-o", folder / "calls.o")
            ran = subprocess.run([MAKER, "--output", folder / "x", folder / "calls.o"], capture_output=True, text=True)
            self.assertEqual(ran.returncode, 2)
            self.assertIn("none of the objects calls OpenGL or CGL", ran.stderr)


if __name__ == "__main__":
    unittest.main()
