#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What tools/test_report makes of the reports that real programs leave, those of programs that crash included."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PROGRAM = os.environ.get("REPORTED_PROGRAM", "")


class TestProgram(unittest.TestCase):
    def test_does_not_begin_again_as_the_process_of_a_module(self):
        # A command that finds no program beside the tests starts the tests themselves with this argument.
        begun = subprocess.run([PROGRAM, "--module-process"], capture_output=True, text=True)
        self.assertEqual(begun.returncode, 2)
        self.assertEqual(begun.stdout, "")
        self.assertEqual(begun.stderr, "A test program serves no module; build the program 'umbrant' first.\n")


class TestReport(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def program(self, name, cases):
        """Runs cases of the example; its exit status."""
        report = self.folder / f"{name}.xml"
        return subprocess.run([PROGRAM, f"--gtest_filter={cases}", f"--gtest_output=xml:{report}"],
                              capture_output=True, text=True)

    def file(self, name, text):
        """Runs a file of unittest cases; its exit status."""
        path = self.folder / f"{name}.py"
        path.write_text("import os, unittest\nclass Case(unittest.TestCase):\n" + text)
        runner = ROOT / "tests" / "support" / "run_unittest.py"
        return subprocess.run([sys.executable, "-B", runner, path, self.folder / f"{name}.xml"],
                              capture_output=True, text=True)

    def report(self, *options):
        ran = subprocess.run([ROOT / "tools" / "test_report", self.folder, *options], capture_output=True, text=True)
        return ran.returncode, ran.stdout.splitlines(), ran.stderr

    def test_the_cases_of_all_programs_are_added_up(self):
        self.assertEqual(self.program("one", "*Passes").returncode, 0)
        self.assertEqual(self.program("two", "*Passes:*Skips").returncode, 0)
        code, lines, _ = self.report()
        self.assertEqual(code, 0)
        self.assertIn("skipped: two.Outcome.Skips: there is no such device", lines)
        self.assertEqual(lines[-1], "cases: 2 passed, 0 failed, 1 skipped")

    def test_a_failed_case_is_named(self):
        self.assertEqual(self.program("one", "*Passes:*Fails").returncode, 1)
        code, lines, _ = self.report()
        self.assertEqual(code, 1)
        self.assertIn("failed: one.Outcome.Fails", lines)
        self.assertRegex(lines[lines.index("failed: one.Outcome.Fails") + 1], r"^    .*reported_program\.cpp:\d+$")
        self.assertEqual(lines[-1], "cases: 1 passed, 1 failed, 0 skipped")

    def test_of_a_long_message_the_beginning_is_shown(self):
        self.assertEqual(self.file("long", "    def test_it(self): self.fail('line\\n' * 99 + 'end')\n").returncode, 1)
        _, lines, _ = self.report()
        self.assertIn("    ...", lines)
        self.assertLess(len(lines), 30)
        self.assertNotIn("end", "".join(lines[-5:]))

    def test_a_case_that_ends_the_process_is_named(self):
        for case in ["Crashes", "IsKilled", "EndsTheProcess"]:
            with self.subTest(case):
                self.program("one", f"*Passes:*{case}")
                code, lines, _ = self.report()
                self.assertEqual(code, 1)
                self.assertIn(f"one ended during Outcome.{case}", lines)
                # The next run of the program that ends well takes the note away.
                self.assertEqual(self.program("one", "*Passes").returncode, 0)
                self.assertEqual(self.report()[0], 0)

    def test_a_program_without_a_case_fails(self):
        ran = self.program("one", "*Passses")
        self.assertEqual(ran.returncode, 1)
        self.assertIn("No case of this program matches the filter '*Passses'.\n", ran.stderr)

    def test_a_program_that_only_skips_says_so(self):
        self.assertEqual(self.program("one", "*Skips").returncode, 77)

    def test_a_skip_must_be_on_the_list(self):
        self.program("one", "*Passes:*Skips")
        skips = self.folder / "skips.txt"
        skips.write_text("# none of ours\nother.*\n")
        code, lines, _ = self.report("--skips", skips)
        self.assertEqual(code, 1)
        self.assertIn(f"skipped, but not listed in {skips}: one.Outcome.Skips", lines)
        skips.write_text("one.Outcome.Sk*  # no such device on the machines that run this\n")
        self.assertEqual(self.report("--skips", skips)[0], 0)

    def test_files_of_python_cases(self):
        self.assertEqual(self.file("good", "    def test_it(self): pass\n").returncode, 0)
        self.assertEqual(self.file("bad", "    def test_it(self): self.fail('on purpose')\n").returncode, 1)
        self.assertEqual(self.file("away", "    def test_it(self): self.skipTest('no such tool')\n").returncode, 77)
        self.file("dead", "    def test_it(self): os._exit(0)\n")
        self.assertEqual(self.file("hollow", "    pass\n").returncode, 1)
        part = "    def test_it(self):\n        with self.subTest(3): self.assertEqual(1, 2)\n"
        self.assertEqual(self.file("partly", part).returncode, 1)
        code, lines, _ = self.report()
        self.assertEqual(code, 1)
        self.assertIn("failed: bad.bad.Case.test_it", lines)
        self.assertIn("on purpose", "\n".join(lines))
        self.assertIn("failed: partly.partly.Case.test_it", lines)
        self.assertIn("skipped: away.away.Case.test_it: no such tool", lines)
        self.assertIn("dead ended during dead.Case.test_it", lines)
        self.assertEqual(lines[-1], "cases: 1 passed, 3 failed, 1 skipped")

    def test_a_cut_report_is_a_failure(self):
        (self.folder / "one.xml").write_text("<testsuites><testsuite")
        code, lines, _ = self.report()
        self.assertEqual(code, 1)
        self.assertTrue(any(line.startswith("one.xml is not complete: ") for line in lines), lines)

    def test_no_report_at_all(self):
        code, _, err = self.report()
        self.assertEqual(code, 2)
        self.assertEqual(err, f"test_report: there is no report in '{self.folder}'; run ctest first\n")


if __name__ == "__main__":
    unittest.main()
