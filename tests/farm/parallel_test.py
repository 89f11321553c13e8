#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The jobs of `umbrant farm parallel`, run by GNU parallel."""

import subprocess
import unittest

from farm_case import UMBRANT, FarmCase


def why_not():
    try:
        said = subprocess.run(["parallel", "--version"], capture_output=True, text=True, stdin=subprocess.DEVNULL)
    except FileNotFoundError:
        return "GNU parallel is not installed; the package is parallel"
    return None if said.stdout.startswith("GNU parallel") else "the parallel of this machine is not GNU's"


def setUpModule():
    if reason := why_not():
        raise unittest.SkipTest(reason)


class Parallel(FarmCase):
    def run_job(self, script, *arguments):
        return subprocess.run(["bash", str(script), *arguments], cwd="/", capture_output=True, text=True,
                              stdin=subprocess.DEVNULL)

    def joblog(self, file):
        """(sequence number, exit code, command) of each line."""
        lines = [line.split("\t") for line in file.read_text().splitlines()[1:]]
        return [(line[0], line[6], line[8]) for line in lines]

    def test_all_frames_once_as_on_one_machine(self):
        script = self.job("parallel", "farm/t.####.png", "1-12", "--downsample", "8",
                          options=["--tasks", "4", "--name", "title", "--logs", "the logs"])
        ran = self.run_job(script, "-j", "2")
        self.assertEqual((ran.returncode, ran.stdout), (0, ""), ran.stderr)
        self.assertEqual(self.frames("farm"), self.one_machine("1-12", "--downsample", "8"))
        self.assertEqual(len(self.frames("farm")), 12)
        logs = self.folder / "the logs"
        self.assertEqual(sorted(log.name for log in logs.iterdir()),
                         ["title-1.log", "title-2.log", "title-3.log", "title-4.log", "title.joblog"])
        self.assertEqual(sorted(self.joblog(logs / "title.joblog")),
                         [(str(task), "0", f"task {task}") for task in range(1, 5)])
        self.assertIn("umbrant: 3 drawn in ", (logs / "title-1.log").read_text())
        # Once more: nothing is drawn again.
        before = {file.name: file.stat().st_mtime_ns for file in (self.folder / "farm").iterdir()}
        self.assertEqual(self.run_job(script).returncode, 0)
        self.assertEqual(before, {file.name: file.stat().st_mtime_ns for file in (self.folder / "farm").iterdir()})
        self.assertIn("umbrant: 0 drawn, 3 already there\n", (logs / "title-1.log").read_text())

    def test_a_frame_that_fails_is_drawn_again(self):
        expected = self.one_machine("1-8", "--downsample", "8")
        # The third of four tasks finds the module of its machine broken, once.
        tool = self.tool('if [[ "$*" == *"--chunk 3/4"* && ! -e broken ]]; then\n'
                         f"    : >broken; '{UMBRANT}' \"$@\" --module broken\n"
                         f"else '{UMBRANT}' \"$@\"; fi")
        script = self.job("parallel", "farm/t.####.png", "1-8", "--downsample", "8",
                          options=["--frames-per-task", "2", "--program", tool])
        ran = self.run_job(script)
        self.assertEqual(ran.returncode, 0, ran.stderr)
        self.assertTrue((self.folder / "broken").exists())
        self.assertEqual(self.frames("farm"), expected)
        log = (self.folder / "umbrant-3.log").read_text()
        self.assertIn("umbrant: cannot load the module 'broken'", log)
        self.assertIn("umbrant: 2 drawn in ", log)

    def test_what_fails_for_good_is_counted_and_the_others_are_drawn(self):
        tool = self.tool('echo try >>"$0.${*: -2:1}"\n' f"[[ \"$*\" != *'--chunk 2/4'* ]] && exec '{UMBRANT}' \"$@\"\nexit 3")
        tool_options = ["--tasks", "4", "--program", tool, "--retries", "1"]
        for halt, frames, code in [("never", 6, 1), ("soon", 2, None)]:
            script = self.job("parallel", f"farm/{halt}.####.png", "1-8", "--downsample", "8",
                              options=[*tool_options, "--halt", halt])
            ran = self.run_job(script)
            drawn = [name for name in self.frames("farm") if name.startswith(halt)]
            self.assertEqual(len(drawn), frames, ran.stderr)
            if code is not None:
                self.assertEqual(ran.returncode, code)
            self.assertNotEqual(ran.returncode, 0)
        codes = {task: code for _, code, task in self.joblog(self.folder / "umbrant.joblog")}
        self.assertEqual(codes["task 2"], "3")


if __name__ == "__main__":
    unittest.main()
