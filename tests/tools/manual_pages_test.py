# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The manual pages say what the built program's help says, and tools/make_manual_pages writes them."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
MANUAL = ROOT / "docs/man"
PROGRAM = os.environ["PROGRAM"]


def help_of(*command):
    return subprocess.run([PROGRAM, *command, "--help"], check=True, capture_output=True, text=True).stdout


def plain(page):
    """The text of a page without roff's fonts and escapes."""
    text = re.sub(r"\\f[BIRP]|\\[,/]", "", (MANUAL / page).read_text(encoding="utf-8"))
    return text.replace("\\-", "-").replace("\\e", "\\")


def on_one_line(text):
    return " ".join(text.split())


class Pages(unittest.TestCase):
    def test_each_command_of_the_help_has_one(self):
        names = {page.stem for page in MANUAL.glob("*.1")}
        listed = re.findall(r"^  (\w+)  ", help_of().partition("Subcommands:")[2], re.MULTILINE)
        self.assertIn("render", listed)
        self.assertEqual(names, {"umbrant"} | {f"umbrant-{name}" for name in listed})

    def test_they_name_each_other(self):
        names = {page.stem for page in MANUAL.glob("*.1")}
        for name in names:
            see = plain(f"{name}.1").partition('.SH "SEE ALSO"')[2]
            self.assertEqual(set(re.findall(r"\.BR (\S+) \(1\)", see)), names - {name}, name)

    def test_sections(self):
        first = ["NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS"]
        for page in MANUAL.glob("*.1"):
            sections = [name.strip('"') for name in re.findall(r"^\.SH (.*)$", page.read_text(), re.MULTILINE)]
            if page.stem == "umbrant":
                others = ["COMMANDS", "PRESETS", "KEYFRAMES", "EXIT STATUS", "ENVIRONMENT", "FILES"]
            else:
                arguments = "Positionals:" in help_of(page.stem.removeprefix("umbrant-"))
                others = ["ARGUMENTS"] * arguments + ["EXIT STATUS", "ENVIRONMENT"]
            self.assertEqual(sections, [*first, *others, "EXAMPLES", "SEE ALSO"], page.name)

    def test_nothing_of_the_help_is_missing(self):
        for page in MANUAL.glob("*.1"):
            text = on_one_line(plain(page.name))
            shown = help_of(*page.stem.split("-")[1:]).partition("Exit codes:")[0]
            self.assertGreater(len(shown.splitlines()), 5)
            for line in shown.splitlines():
                # A title, and the usage, whose arguments have fonts of their own.
                if re.match(r"\w+:|$", line):
                    continue
                for part in re.split(r"  +", re.sub(r"^(  -\w),", r"\1, ", line).strip()):
                    self.assertIn(on_one_line(part), text, page.name)

    def test_exit_codes(self):
        status = plain("umbrant.1").partition('.SH "EXIT STATUS"')[2].partition(".SH")[0]
        codes = re.findall(r"(\d+) ", help_of().partition("Exit codes:")[2])
        self.assertIn("130", codes)
        self.assertEqual(re.findall(r"^\.TP\n(\d+)\n\w", status, re.MULTILINE), codes)


class Tool(unittest.TestCase):
    """Runs a copy of the tool, on copies of the pages."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        shutil.copytree(MANUAL, self.folder / "docs/man")
        (self.folder / "tools").mkdir()
        shutil.copy(ROOT / "tools/make_manual_pages", self.folder / "tools")

    def run_it(self, *arguments, **environment):
        return subprocess.run([sys.executable, self.folder / "tools/make_manual_pages", PROGRAM, *arguments],
                              capture_output=True, text=True, check=False, env=os.environ | environment)  # fmt: skip

    def read(self):
        return {page.name: page.read_bytes() for page in (self.folder / "docs/man").glob("*.1")}

    def need_help2man(self):
        if shutil.which("help2man") is None:
            self.skipTest("there is no help2man here")

    def test_the_pages_are_up_to_date(self):
        self.need_help2man()
        ran = self.run_it("--check")
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))

    def test_any_day_and_locale_give_the_same_bytes(self):
        self.need_help2man()
        before = self.read()
        for page in before:
            (self.folder / "docs/man" / page).unlink()
        for environment in ({"SOURCE_DATE_EPOCH": "0"}, {"SOURCE_DATE_EPOCH": "2000000000", "LC_ALL": "C"}):
            ran = self.run_it(**environment)
            self.assertEqual((ran.returncode, ran.stderr), (0, ""))
            self.assertEqual(self.read(), before)

    def test_changed_missing_and_old_pages(self):
        self.need_help2man()
        before = self.read()
        folder = self.folder / "docs/man"
        (folder / "umbrant-info.1").write_text("changed")
        (folder / "umbrant-farm.1").unlink()
        (folder / "umbrant-old.1").write_text("old")
        ran = self.run_it("--check")
        self.assertEqual(ran.returncode, 1)
        self.assertIn("out of date: umbrant-farm.1, umbrant-info.1, umbrant-old.1; run tools/", ran.stderr)
        self.assertNotIn("umbrant-farm.1", self.read())
        self.assertEqual(self.run_it().returncode, 0)
        self.assertEqual(self.read(), before)

    def test_without_help2man(self):
        ran = self.run_it("--check", PATH=str(self.folder))
        sentence = "tools/make_manual_pages needs help2man, which is not installed: `apt-get install help2man`\n"
        self.assertEqual((ran.returncode, ran.stderr), (1, sentence))


if __name__ == "__main__":
    unittest.main()
