#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The jobs of `umbrant farm slurm`, run by a real Slurm with two workers on this machine. With UMBRANT_SOAK in the
environment one of them dies in the middle of 48 frames, which takes some minutes: Slurm waits before it believes that."""

import os
import re
import subprocess
import tempfile
import time
import unittest

import slurm_farm
from farm_case import TITLE, UMBRANT, FarmCase

SOAK = "UMBRANT_SOAK" in os.environ


def setUpModule():
    if reason := slurm_farm.why_not():
        raise unittest.SkipTest(reason)


class Slurm(FarmCase):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        farm = slurm_farm.SlurmFarm(folder.name)
        farm.__enter__()
        self.addCleanup(farm.__exit__)
        self.farm = farm
        self.begin = time.monotonic()

    def submit(self, script):
        job = self.farm.submit(script, self.folder)
        self.addCleanup(job.stdout.close)
        return job

    def report(self, text):
        if SOAK:
            print(f"{time.monotonic() - self.begin:6.1f} s  {text}", flush=True)

    def test_an_array_of_tasks(self):
        (self.folder / "logs of 100%").mkdir()
        script = self.job("slurm", "farm/t.####.png", "1-8", "--downsample", "8",
                          options=["--tasks", "4", "--name", "title", "--logs", "logs of 100%"])
        job = self.submit(script)
        said, _ = job.communicate(timeout=3600)
        self.assertEqual(job.returncode, 0, said)
        self.assertEqual(self.frames("farm"), self.one_machine("1-8", "--downsample", "8"))
        self.assertEqual(sorted(log.name for log in (self.folder / "logs of 100%").iterdir()),
                         [f"title-1_{task}.log" for task in range(1, 5)])

        # The exit code of a task that fails, after as many tries as it may have.
        tool = self.tool(f"[[ \"$*\" != *'--chunk 2/2'* ]] && exec '{UMBRANT}' \"$@\"\nexit 4")
        script = self.job("slurm", "farm/u.####.png", "1-2", "--downsample", "8",
                          options=["--tasks", "2", "--program", tool, "--retries", "1"])
        job = self.submit(script)
        said, _ = job.communicate(timeout=3600)
        self.assertEqual(job.returncode, 4, said)
        self.assertEqual(sorted(name for name in self.frames("farm") if name.startswith("u")), ["u.0001.png"])
        self.assertEqual((self.folder / "umbrant-5_2.log").read_text(),
                         "try 1 of 2 ended with exit code 4\ntry 2 of 2 ended with exit code 4\n")

        # Submitted by the program itself: its number is printed, and the measured limit is Slurm's.
        ran = subprocess.run([UMBRANT, "farm", "--submit", "--yes", "--tasks", "2", "--name", "direct", "slurm", *TITLE, "-o",
                              "farm/v.####.png", "--frames", "1-4", "--downsample", "8"], cwd=self.folder,
                             env=self.farm.environment, capture_output=True, text=True, stdin=subprocess.DEVNULL)
        self.assertEqual(ran.returncode, 0, ran.stderr)
        self.assertEqual(ran.stdout, "7\n")
        limit = re.search(r"its time limit is (\d+) minutes\n", ran.stderr)
        self.assertIn(f"\n#SBATCH --time={limit[1]}\n", ran.stderr)
        self.assertIn(f" TimeLimit=00:{int(limit[1]):02}:00 ", self.farm.ask("scontrol", "show", "job", "-o", "7"))
        self.farm.until(lambda: not self.farm.ask("squeue", "--noheader", "--job", "7"), 600, "the job does not end")
        self.assertEqual({name: data for name, data in self.frames("farm").items() if name.startswith("v")},
                         {name.replace("t.", "v.", 1): data for name, data in self.frames("one").items()
                          if name <= "t.0004.png"})

        # What Slurm refuses is said, with what it printed.
        ran = subprocess.run([UMBRANT, "farm", "--submit", "--yes", "--no-first-frame", "slurm", *TITLE, "-o",
                              "farm/w.####.png", "--frames", "1-4"], cwd=self.folder,
                             env=dict(self.farm.environment, SBATCH_PARTITION="none"), capture_output=True, text=True,
                             stdin=subprocess.DEVNULL)
        self.assertEqual((ran.returncode, ran.stdout), (3, ""))
        self.assertIn("umbrant: the job was not submitted: sbatch ended with exit code 1: ", ran.stderr)
        self.assertIn("invalid partition specified: none", ran.stderr)

    @unittest.skipUnless(SOAK, "it takes minutes; script/soak farm runs it")
    def test_a_worker_dies_in_the_middle(self):
        expected = self.one_machine("1-48")
        script = self.job("slurm", "farm/t.####.png", "1-48", "--threads", "1",
                          options=["--frames-per-task", "4", "--name", "title"])
        job = self.submit(script)

        def drawn():
            return {file.name for file in (self.folder / "farm").iterdir() if not file.name.startswith(".")}

        # In the middle: some tasks are done, and the second worker has begun another one and drawn a part of it.
        state = {}

        def middle():
            tasks, _ = self.farm.tasks_of("n2")
            table = slurm_farm.process_table()
            for pid in tasks:
                for word in table.get(pid, (0, [], b""))[1]:
                    if word.startswith(b"SLURM_ARRAY_TASK_ID="):
                        state["task"] = int(word.split(b"=")[1])
            if "task" not in state or len(drawn()) < 16:
                return False
            first = 4 * state["task"] - 3
            of_task = [frame for frame in range(first, first + 4) if f"t.{frame:04}.png" in drawn()]
            return 1 <= len(of_task) <= 2 and len(tasks) > 1

        self.farm.until(middle, 300, "the second worker is never in the middle of a task")
        self.farm.fell("n2")
        task = state["task"]
        self.report(f"worker n2 is killed within task {task}; {len(drawn())} frames exist")
        self.farm.until(lambda: "n2 down" in self.farm.ask("sinfo", "--noheader", "--Node", "--format=%N %T"), 120,
                        "the death of the worker goes unnoticed")
        self.report(f"Slurm marks worker n2 as down; {len(drawn())} frames exist")
        seen = set()
        requeued = f"title-1_{task}.log"
        while job.poll() is None:
            self.assertLess(time.monotonic() - self.begin, 900, "the job does not end")
            shown = self.farm.ask("scontrol", "show", "job", "-o", f"1_{task}")
            for field in ["JobState", "Reason", "Restarts", "NodeList"]:
                value = next((word for word in shown.split() if word.startswith(field + "=")), None)
                if value and value not in seen:
                    seen.add(value)
                    self.report(f"task {task}: {value}")
            time.sleep(0.5)
        self.report(f"sbatch --wait ends with exit code {job.returncode}; {len(drawn())} frames exist")
        self.assertEqual(job.returncode, 0, job.stdout.read())
        self.assertIn("Restarts=1", seen)
        log = (self.folder / requeued).read_text()
        self.report(f"{requeued}:\n{log}")
        self.assertRegex(log, r"already exists\n(.|\n)*umbrant: [23] drawn, [12] already there in ")
        # What a killed program was writing is left under a hidden name, and is no frame.
        self.assertEqual({name: data for name, data in self.frames("farm").items() if not name.startswith(".")}, expected)
        self.assertEqual(len(expected), 48)
        self.report("48 frames, each once, equal to the bytes of one machine's")


if __name__ == "__main__":
    unittest.main()
