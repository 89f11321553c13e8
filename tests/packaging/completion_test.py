# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Shells complete the program's command line: each row is typed into the shell itself, up to the key that asks."""

import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import tempfile
import time
import unittest

UMBRANT = os.environ["UMBRANT"]

# What is typed, and what must be offered; what must not.
ROWS = [
    ("commands", "umbrant ", ["render", "params", "completion"], ["--help"]),
    ("a command's beginning", "umbrant rend", ["render"], ["params"]),
    ("options of a command", "umbrant render --", ["--output", "--canvas", "--set", "--renderer"], ["--strictness"]),
    ("options of another", "umbrant validate --", ["--strictness", "--seed"], ["--canvas"]),
    ("an option's values", "umbrant render --canvas ", ["grow", "frame", "layer"], ["auto"]),
    ("values of a check", "umbrant validate --report ", ["text", "json", "junit"], []),
    ("words among other texts", "umbrant render --progress ", ["bar", "lines", "json"], ["SECONDS"]),
    ("an argument's values", "umbrant completion ", ["bash", "zsh", "fish"], []),
    ("parameters", "umbrant render --set style/", ["style/shadow-type", "style/distance"], ["easing/mode"]),
    ("items of a popup", "umbrant render --set style/shadow-type=", ["inner", "radial"], ["screen"]),
    ("rows of the panel", "umbrant panel --open easing/", ["easing/advanced"], ["style/angle", "easing/mode"]),
    ("groups of the panel", "umbrant panel --open ", ["all", "style", "about-support"], ["style/shadow-type"]),
    ("codecs", "umbrant render --codec ", ["prores4444", "ffv1", "vp9", "png"], []),
    ("compressions", "umbrant render --compression ", ["zip", "piz", "lzw", "none"], []),
    ("rows for developers", "umbrant render --set debug/", ["debug/counter"], []),
    ("the first word of a farm's job", "umbrant farm ", ["slurm", "openjd", "parallel"], []),
    ("a farm's own options", "umbrant farm --halt ", ["never", "soon", "now"], []),
    ("the arguments of a farm's job", "umbrant farm slurm in.png --mis", ["--missing"], ["--halt"]),
    ("values in a farm's job", "umbrant farm parallel in.png --canvas ", ["grow", "frame", "layer"], ["slurm"]),
    ("after other options", "umbrant render in.png -o x.png --set style/angle=9 --mis", ["--missing"], ["--canvas"]),
]

# Beginnings with one end: zsh writes that end at once, and lists nothing. What must be offered is one word.
BEGINNINGS = [
    ("the beginning of a farm's option", "umbrant farm --fra", ["--frames-per-task"], ["--frames"]),
    ("the frames of a farm's job", "umbrant farm slurm in.png --fra", ["--frames"], ["--frames-per-task"]),
]


def script(shell):
    return subprocess.run([UMBRANT, "completion", shell], check=True, capture_output=True, text=True).stdout


def options_of_help(command):
    text = subprocess.run([UMBRANT, command, "--help"], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.MULTILINE))


def commands_of_help():
    text = subprocess.run([UMBRANT, "--help"], check=True, capture_output=True, text=True).stdout
    return re.findall(r"^  ([a-z]+) ", text.split("Subcommands:")[1].split("\n\n")[0], re.MULTILINE)


class Terminal:
    """A shell at a terminal."""

    def __init__(self, *command, folder):
        environment = os.environ | {"TERM": "dumb", "PS1": "$ ", "HOME": folder, "COLUMNS": "200", "INPUTRC": "/dev/null"}
        self.pid, self.file = pty.fork()
        if self.pid == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, environment)

    def type(self, text):
        os.write(self.file, text.encode())

    def read_until(self, wanted, limit=20.0):
        """What is shown, until all of the words are there or nothing more comes."""
        shown = ""
        end = time.monotonic() + limit
        while time.monotonic() < end and not all(word in shown for word in wanted):
            if select.select([self.file], [], [], 0.2)[0]:
                try:
                    shown += os.read(self.file, 65536).decode(errors="replace")
                except OSError:
                    break
        return shown

    def close(self):
        os.close(self.file)
        os.kill(self.pid, 9)
        os.waitpid(self.pid, 0)


class Completion(unittest.TestCase):
    def setUp(self):
        self.holder = tempfile.TemporaryDirectory()
        self.addCleanup(self.holder.cleanup)
        self.folder = pathlib.Path(self.holder.name)
        (self.folder / "picture-one.png").touch()

    def need(self, shell):
        if shutil.which(shell) is None:
            self.skipTest(f"there is no {shell} here")

    def test_every_option_of_every_command_is_known(self):
        texts = {shell: script(shell) for shell in ("bash", "zsh", "fish")}
        for command in commands_of_help():
            for option in options_of_help(command):
                for shell, text in texts.items():
                    self.assertIn(f"-l {option[2:]} " if shell == "fish" else option, text, f"{shell}: {command} {option}")

    def test_a_module_that_is_not_there(self):
        done = subprocess.run([UMBRANT, "completion", "bash", "--module", "none.so"], capture_output=True, text=True,
                              check=False)  # fmt: skip
        self.assertEqual((done.returncode, done.stdout), (4, ""))
        self.assertIn("cannot load the module 'none.so'", done.stderr)

    def test_a_shell_that_is_unknown(self):
        done = subprocess.run([UMBRANT, "completion", "tcsh"], capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 2)
        self.assertIn("tcsh", done.stderr)

    def test_bash(self):
        self.need("bash")
        (self.folder / "umbrant.bash").write_text(script("bash"), encoding="utf-8")
        ask = (
            "source umbrant.bash; COMP_LINE=$1 COMP_POINT=${#1} COMP_WORDBREAKS=$2; _umbrant; "
            "printf '%s\\n' \"${COMPREPLY[@]}\""
        )
        for title, line, offered, absent in ROWS + BEGINNINGS:
            for breaks in (" \t\n\"'><=;|&(:", " \t\n\"'><;|&(:"):
                with self.subTest(title, breaks=breaks):
                    done = subprocess.run(["bash", "-c", ask, "ask", line, breaks], cwd=self.folder, check=True,
                                          capture_output=True, text=True)  # fmt: skip
                    self.assertEqual(done.stderr, "")
                    answers = [answer.rstrip("=") for answer in done.stdout.split("\n") if answer]
                    whole = line.split(" ")[-1] if "=" not in breaks and "=" in line.split(" ")[-1] else ""
                    for word in offered:
                        self.assertIn(whole + word, answers)
                    for word in absent:
                        self.assertNotIn(word, answers)

    def test_bash_at_a_terminal(self):
        self.need("bash")
        (self.folder / "umbrant.bash").write_text(script("bash"), encoding="utf-8")
        rows = [
            ("umbrant rend\t", "umbrant render "),
            ("umbrant render --canvas g\t", "--canvas grow "),
            ("umbrant render --canvas=la\t", "--canvas=layer "),
            ("umbrant render --set style/dist\t", "--set style/distance="),
            ("umbrant render --set style/shadow-type=inn\t", "style/shadow-type=inner "),
            ("umbrant render pict\t", "umbrant render picture-one.png "),
            ("umbrant render x.png -o pict\t", "-o picture-one.png "),
        ]
        terminal = Terminal("bash", "--norc", "--noprofile", "-i", folder=str(self.folder))
        self.addCleanup(terminal.close)
        terminal.type("source umbrant.bash; echo rea''dy\n")
        self.assertIn("ready", terminal.read_until(["ready"]))
        for typed, shown in rows:
            with self.subTest(typed):
                terminal.type(typed)
                self.assertIn(shown, terminal.read_until([shown]))
                terminal.type("\x15")

    def test_zsh_at_a_terminal(self):
        self.need("zsh")
        (self.folder / "_umbrant").write_text(script("zsh"), encoding="utf-8")
        terminal = Terminal("zsh", "-f", "-i", folder=str(self.folder))
        self.addCleanup(terminal.close)
        terminal.type(
            "fpath=($PWD $fpath); autoload -Uz compinit; compinit -u -D; LISTMAX=1000; unsetopt automenu menucomplete; "
            "setopt noalwayslastprompt; bindkey '^U' kill-whole-line; echo rea''dy\n"
        )
        self.assertIn("ready", terminal.read_until(["ready"]))
        for title, line, offered, absent in ROWS:
            with self.subTest(title):
                # Twice: the first may only write what all have in common.
                terminal.type(line + "\t\t")
                shown = terminal.read_until(offered)
                for word in offered:
                    self.assertIn(word, shown)
                for word in absent:
                    self.assertNotIn(word, shown.replace(line, ""))
                terminal.type("\x15")
                terminal.type("echo do''ne\n")
                terminal.read_until(["done"])
        for title, line, offered, _ in BEGINNINGS:
            with self.subTest(title):
                # The sign that zsh puts before a value shows where the option ends; between them it may ring.
                terminal.type(line + "\t")
                shown = terminal.read_until(["="]).replace("\a", "")
                terminal.type("\x15")
                terminal.type("echo do''ne\n")
                terminal.read_until(["done"])
                self.assertIn(line[: line.rindex(" ") + 1] + offered[0] + "=", shown)

    def test_fish(self):
        self.need("fish")
        (self.folder / "umbrant.fish").write_text(script("fish"), encoding="utf-8")
        for title, line, offered, absent in ROWS + BEGINNINGS:
            with self.subTest(title):
                done = subprocess.run(["fish", "-c", "source umbrant.fish; complete -C $argv[1]", line], check=True,
                                      cwd=self.folder, capture_output=True, text=True,
                                      env=os.environ | {"HOME": str(self.folder)})  # fmt: skip
                self.assertEqual(done.stderr, "")
                answers = {answer.split("\t")[0] for answer in done.stdout.splitlines()}
                answers |= {answer.rpartition("=")[2] for answer in answers} | {a.partition("=")[0] for a in answers}
                for word in offered:
                    self.assertIn(word, answers)
                for word in absent:
                    self.assertNotIn(word, answers)


if __name__ == "__main__":
    unittest.main()
