# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""tools/check_includes passes this tree and finds every kind of offence in trees made to be wrong."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

# What the small trees hold besides the file under test: something to include in every zone.
HEADERS = [
    "hostapi/a.h", "platform/a.h", "entry/suites/a.h", "entry/a.h", "entry/global_data.h", "entry/param_ids.h",
    "render/render_settings.h", "render/shadow_shaders.h", "render/a.h", "pixel/a.h", "gl/a.h", "cpu/a.h",
    "host/result.h", "host/module/a.h", "host/compositing/a.h", "host/suites/a.h", "host/session/a.h",
    "host/image/a.h", "host/cli/a.h", "tests/support/a.h",
]  # fmt: skip

RIGHT = [
    ("a suite header is a leaf's business", "entry/suites/b.cpp", '#include "hostapi/a.h"'),
    ("a record knows the platform's types", "entry/global_data.h", '#include "platform/a.h"'),
    ("pixel arithmetic takes suites", "pixel/b.cpp", '#include "entry/suites/a.h"'),
    ("the GL toolkit reads the settings", "gl/b.cpp", '#include "render/render_settings.h"'),
    ("the per-thread state builds the shaders", "gl/thread_state.cpp", '#include "render/shadow_shaders.h"'),
    ("the render uses the GL toolkit", "render/b.cpp", '#include "gl/a.h"'),
    ("the entry uses the render", "entry/b.cpp", '#include "render/a.h"'),
    ("the command line uses the session", "host/cli/b.cpp", '#include "host/session/a.h"'),
    ("a test uses anything", "tests/gl/b_test.cpp", '#include "gl/a.h"\n#include <gtest/gtest.h>'),
    ("the platform asks for the system", "platform/b.cpp", "#if defined(__APPLE__)\n#include <EGL/egl.h>\n#endif"),
    ("a feature is no operating system", "gl/b.cpp", "#ifdef __cpp_lib_span\n#endif"),
    ("an installed header names another", "host/library/umbrant/b.h", "#include <umbrant/a.h>\n#include <string>"),
    ("an example is a user", "examples/b/b.cpp", "#include <umbrant/a.h>"),
    ("a comment is no condition", "gl/b.cpp", "// #if __linux__"),
]

WRONG = [
    ("the host interface includes nothing else", "hostapi/b.h", '#include "pixel/a.h"', 'hostapi/ may not include "pixel/a.h"'),
    ("the platform knows no host", "platform/b.h", '#include "hostapi/a.h"', 'platform/ may not include "hostapi/a.h"'),
    ("the suites are a leaf", "entry/suites/b.h", '#include "entry/a.h"', 'entry/suites/ may not include "entry/a.h"'),
    ("a record calls nothing", "entry/global_data.h", '#include "gl/a.h"', 'may not include "gl/a.h"'),
    ("pixels know no GL", "pixel/b.cpp", '#include "gl/a.h"', 'pixel/ may not include "gl/a.h"'),
    ("pixels know no settings", "pixel/b.cpp", '#include "render/render_settings.h"', "pixel/ may not include"),
    ("pixels know no platform", "pixel/b.cpp", '#include "platform/a.h"', "pixel/ may not include"),
    ("the GL toolkit knows no render", "gl/b.cpp", '#include "render/a.h"', 'gl/ may not include "render/a.h"'),
    ("only one file may know the shaders", "gl/b.cpp", '#include "render/shadow_shaders.h"', "gl/ may not include"),
    ("the pair is no licence for more", "gl/thread_state.cpp", '#include "render/a.h"', "gl/ may not include"),
    ("the GL toolkit knows no entry", "gl/b.cpp", '#include "entry/a.h"', 'gl/ may not include "entry/a.h"'),
    ("the processor path knows no GL", "cpu/b.cpp", '#include "gl/a.h"', 'cpu/ may not include "gl/a.h"'),
    ("the render knows no entry", "render/b.cpp", '#include "entry/a.h"', 'render/ may not include "entry/a.h"'),
    ("the module knows no host program", "entry/b.cpp", '#include "host/result.h"', "entry/ may not include"),
    ("the host program knows no module", "host/cli/b.cpp", '#include "gl/a.h"', 'host/cli/ may not include "gl/a.h"'),
    ("the session knows no files", "host/session/b.cpp", '#include "host/image/a.h"', "host/session/ may not include"),
    ("a suite knows no session", "host/suites/pf/b.cpp", '#include "host/session/a.h"', "host/suites/ may not include"),
    ("a layer has no order in itself", "host/animation/b.cpp", '#include "host/image/a.h"', "may not include"),
    ("the session knows no command line", "host/session/b.cpp", '#include "host/cli/a.h"', "may not include"),
    ("packaging calls nothing", "packaging/b.cpp", '#include "entry/a.h"', 'packaging/ may not include "entry/a.h"'),
    ("golden tests know no module", "tests/golden/b.cpp", '#include "gl/a.h"', "tests/golden/ may not include"),
    ("installed headers stand alone", "host/library/umbrant/b.h", '#include "host/result.h"', "may not include"),
    ("installed headers need no other library", "host/library/umbrant/b.h", "#include <fmt/format.h>", "<umbrant/...>"),
    ("an example knows no tree", "examples/b/b.cpp", '#include "host/result.h"', "examples/ may not include"),
    ("includes start at the root", "gl/b.cpp", '#include "a.h"', '"a.h" is no file from the root of the tree'),
    ("GL headers stay in the platform", "gl/b.cpp", "#include <GL/gl.h>", "only the C++ standard library"),
    ("POSIX headers stay in the platform", "pixel/b.cpp", "#include <unistd.h>", "only the C++ standard library"),
    ("only the platform asks", "gl/b.cpp", "#ifdef __linux__\n#endif", "only platform/ may ask"),
    ("also within a condition", "host/b.cpp", "#if 1 && defined(__APPLE__)\n#endif", "only platform/ may ask"),
    ("also with blanks", "tests/b.cpp", "#  elif defined( _WIN32 )", "only platform/ may ask"),
    ("a new folder needs a rule", "util/b.cpp", "", "no rule for this folder"),
]


def check(root):
    command = [sys.executable, ROOT / "tools/check_includes", root]
    return subprocess.run(command, capture_output=True, text=True, check=False)


class CheckIncludes(unittest.TestCase):
    def run_on(self, name, text):
        with tempfile.TemporaryDirectory() as folder:
            for header in [*HEADERS, name]:
                path = pathlib.Path(folder, header)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text if header == name else "", encoding="utf-8")
            return check(folder)

    def test_right(self):
        for title, name, text in RIGHT:
            with self.subTest(title):
                result = self.run_on(name, text)
                self.assertEqual((result.returncode, result.stdout), (0, "Includes are in order.\n"))

    def test_wrong(self):
        for title, name, text, message in WRONG:
            with self.subTest(title):
                result = self.run_on(name, text)
                self.assertEqual(result.returncode, 1, result.stdout)
                self.assertIn(message, result.stdout)
                self.assertTrue(result.stdout.startswith(f"{name}:1: "), result.stdout)
                self.assertTrue(result.stdout.endswith("1 offence(s)\n"), result.stdout)

    def test_line_number(self):
        result = self.run_on("gl/b.cpp", '// one\n#include "gl/a.h"\n#include "render/a.h"\n')
        self.assertTrue(result.stdout.startswith("gl/b.cpp:3: "), result.stdout)

    def test_this_tree(self):
        result = check(ROOT)
        self.assertEqual(result.returncode, 0, result.stdout)


if __name__ == "__main__":
    unittest.main()
