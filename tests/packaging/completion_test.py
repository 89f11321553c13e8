# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Shells complete the program's command line: each row is typed into the shell itself, up to the key that asks. What the
program answers to a shell is tested in tests/host/cli/cli_completion_test.cpp."""

import os
import pathlib
import re
import shutil
import subprocess
import unittest

from shells import BEGINNINGS, FILES, LINES, OTHER_PROGRAMS, ROWS, SYSTEM, UMBRANT, ShellCase, script


def candidates(*words):
    asked = subprocess.run([UMBRANT, "__complete", "--", *words], check=True, capture_output=True, text=True).stdout
    return {line.split("\t")[0].rstrip("=") for line in asked.splitlines()}


def options_of_help(command):
    text = subprocess.run([UMBRANT, command, "--help"], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.MULTILINE))


def commands_of_help():
    text = subprocess.run([UMBRANT, "--help"], check=True, capture_output=True, text=True).stdout
    return re.findall(r"^  ([a-z]+) ", text.split("Subcommands:")[1].split("\n\n")[0], re.MULTILINE)


class Completion(ShellCase):
    def test_every_option_of_every_command_is_known(self):
        self.assertEqual(set(commands_of_help()) | {":words"}, candidates(""))
        for command in commands_of_help():
            self.assertEqual(options_of_help(command) - candidates(command, "--"), set(), command)

    def test_a_script_is_the_same_on_every_machine(self):
        for shell in ("bash", "zsh", "fish"):
            text = script(shell)
            self.assertLess(len(text.splitlines()), 80)
            self.assertNotIn(str(pathlib.Path(UMBRANT).parent), text)
            ours = subprocess.run([UMBRANT, "completion", shell], check=True, capture_output=True, text=True,
                                  env=os.environ | {"UMBRANT_MODULE": "none.so"})  # fmt: skip
            self.assertEqual(text, ours.stdout)

    def test_a_module_that_is_not_there(self):
        done = subprocess.run([UMBRANT, "completion", "bash", "--module", "none.so"], capture_output=True, text=True,
                              check=False)  # fmt: skip
        self.assertEqual((done.returncode, done.stdout), (4, ""))
        self.assertIn("cannot load the module 'none.so'", done.stderr)

    def test_a_shell_that_is_unknown(self):
        done = subprocess.run([UMBRANT, "completion", "tcsh"], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 2)
        self.assertIn("tcsh", done.stderr)

    def test_a_module_of_its_own(self):
        module = self.folder / "it's a \\ module.so"
        shutil.copy(pathlib.Path(UMBRANT).parent / "umbrant2.so", module)
        for shell, first in (("bash", "# "), ("zsh", "#compdef umbrant\n"), ("fish", "# ")):
            text = script(shell, "--module", str(module))
            self.assertTrue(text.startswith(first))
            self.assertEqual(len(text.splitlines()), len(script(shell).splitlines()) + 1)
            (self.folder / f"umbrant.{shell}").write_text(text, encoding="utf-8")
        self.assertIn("style/distance=", self.ask_bash("umbrant render --set "))
        if shutil.which("fish"):
            self.assertIn("style/distance=", self.ask_fish("umbrant render --set "))
        module.unlink()
        self.assertEqual(self.ask_bash("umbrant render --set "), [])
        self.assertEqual(self.ask_bash("umbrant render --canv"), ["--canvas"])
        if shutil.which("fish"):
            self.assertEqual(self.ask_fish("umbrant render --set "), set())


class Zsh(ShellCase):
    ZSH = (
        "fpath=($PWD $fpath); autoload -Uz compinit; compinit -u -D; LISTMAX=1000; unsetopt automenu menucomplete; "
        "setopt noalwayslastprompt; bindkey -e; bindkey '^U' kill-whole-line"
    )

    def test_zsh_at_a_terminal(self):
        self.need("zsh")
        (self.folder / "_umbrant").write_text(script("zsh"), encoding="utf-8")
        terminal = self.terminal("zsh", "-f", "-i", begin=self.ZSH)
        for title, line, offered, absent in ROWS:
            with self.subTest(title):
                # Twice: the first may only write what all have in common.
                terminal.type(line + "\t\t")
                shown = terminal.read_until(offered)
                for word in offered:
                    self.assertIn(word, shown)
                for word in absent:
                    self.assertNotIn(word, shown.replace(line, ""))
                terminal.clear()
        for title, line, offered, _ in BEGINNINGS:
            with self.subTest(title):
                # The sign that zsh puts before a value shows where the option ends; between them it may ring.
                terminal.type(line + "\t")
                shown = terminal.read_until(["="]).replace("\a", "")
                terminal.clear()
                self.assertIn(line[: line.rindex(" ") + 1] + offered[0] + "=", shown)
        for typed, wanted in LINES:
            with self.subTest(typed):
                terminal.type(typed)
                self.assertIn(wanted, terminal.read_until([wanted]).replace("\a", ""))
                terminal.clear()

    def test_zsh_reads_it_by_source_too(self):
        self.need("zsh")
        (self.folder / "_umbrant").write_text(script("zsh"), encoding="utf-8")
        begin = self.ZSH.replace("fpath=($PWD $fpath); ", "") + "; source ./_umbrant"
        terminal = self.terminal("zsh", "-f", "-i", begin=begin)
        terminal.type("umbrant rend\t")
        self.assertIn("umbrant render", terminal.read_until(["umbrant render"]).replace("\a", ""))
        for path in (SYSTEM, self.stand_in(OTHER_PROGRAMS[0]), self.stand_in(OTHER_PROGRAMS[1])):
            with self.subTest(path):
                self.assertIn("picture-one.png", self.typed_without_the_program("zsh", "-f", "-i", begin=begin, path=path))


class Fish(ShellCase):
    def test_fish(self):
        self.write_fish()
        for title, line, offered, absent in ROWS + BEGINNINGS:
            with self.subTest(title):
                answers = self.ask_fish(line)
                answers |= {answer.rpartition("=")[2] for answer in answers} | {a.partition("=")[0] for a in answers}
                for word in offered:
                    self.assertIn(word, answers)
                for word in absent:
                    self.assertNotIn(word, answers)

    def test_fish_completes_files_and_asks_the_program_that_is_typed(self):
        self.write_fish()
        (self.folder / "my tools").mkdir()
        (self.folder / "my tools/umbrant").symlink_to(UMBRANT)
        rows = [
            ("umbrant render pict", {"picture-one.png"}),
            ("umbrant render --output=pict", {"--output=picture-one.png"}),
            ("umbrant render -opict", {"-opicture-one.png"}),
            ("umbrant render in.png -o pict", {"picture-one.png"}),
            ("umbrant render --frames pict", set()),
            ("umbrant render --set style/shadow-type=inn", {"style/shadow-type=inner"}),
            ("UMBRANT_RENDERER=cpu umbrant rend", {"render"}),
            ("umbrant render '(touch bad)' \"$HOME\" --canv", {"--canvas"}),
            ("umbrant render pict'", {"picture-one.png"}),
        ]
        for line, expected in rows:
            with self.subTest(line):
                self.assertEqual(self.ask_fish(line), expected)
        self.assertFalse((self.folder / "bad").exists())
        self.assertEqual(self.ask_fish("my\\ tools/umbrant rend", path=SYSTEM), {"render"})

    def test_fish_without_the_program(self):
        self.write_fish()
        self.assertEqual(self.ask_fish("umbrant rend", path=SYSTEM), set())
        self.assertEqual(self.ask_fish("umbrant pict", path=SYSTEM), {"picture-one.png"})
        for text in OTHER_PROGRAMS:
            with self.subTest(text):
                self.assertEqual(self.ask_fish("umbrant render --canvas ", path=self.stand_in(text)) - FILES, set())

    def test_fish_at_a_terminal(self):
        self.write_fish()
        terminal = self.terminal("fish", "--no-config", "--interactive", begin="source umbrant.fish")
        for typed, wanted in LINES:
            with self.subTest(typed):
                terminal.type(typed)
                self.assertIn(wanted, terminal.read_until([wanted]))
                terminal.clear()


if __name__ == "__main__":
    unittest.main()
