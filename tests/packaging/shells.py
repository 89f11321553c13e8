# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""For the tests of completion: shells that have read the program's completion, asked for a line or at a terminal."""

import os
import pathlib
import pty
import select
import shutil
import subprocess
import tempfile
import time
import unittest

UMBRANT = os.environ["UMBRANT"]
# The scripts ask the program that is found.
PATH = f"{pathlib.Path(UMBRANT).parent}:{os.environ['PATH']}"

# The same without any umbrant.
SYSTEM = ":".join(folder for folder in os.environ["PATH"].split(":") if not pathlib.Path(folder, "umbrant").exists())
FILES = {"picture-one.png", "with a space.png", "umbrant.fish", "other/"}
# What readline takes for the ends of words: as bash sets it, and as people set it who want "=" in words.
BREAKS = (" \t\n\"'@><=;|&(:", " \t\n\"'@><;|&(")

# Programs that give no answer: an older one, one that prints something else, one that crashes, one that prints nothing.
OTHER_PROGRAMS = [
    "echo \"umbrant: there is no command '__complete'\" >&2; exit 2",
    "echo rendered; echo nothing",
    "echo render; kill -SEGV $$",
    "exit 0",
]

# What is typed at a terminal of zsh or fish, and what is then shown.
LINES = [
    ("umbrant rend\t", "umbrant render"),
    ("umbrant render --canvas g\t", "--canvas grow"),
    ("umbrant render --canvas=la\t", "--canvas=layer"),
    ("umbrant render --set style/dist\t", "--set style/distance="),
    ("umbrant render --set style/shadow-type=inn\t", "style/shadow-type=inner"),
    ("umbrant render pict\t", "umbrant render picture-one.png"),
    ("umbrant render x.png -o pict\t", "-o picture-one.png"),
    ("umbrant render x.png --output=pict\t", "--output=picture-one.png"),
    ("umbrant render with\t", "with\\ a\\ space.png"),
    ("umbrant render --input-space Lin\t", "--input-space Linear\\ Rec.709"),
]

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
    ("after a flag", "umbrant render --mkdir --canvas ", ["grow", "frame", "layer"], []),
    ("a value after a sign", "umbrant render --canvas=", ["grow", "frame", "layer"], []),
    ("a parameter after a sign", "umbrant render --set=style/shadow-type=", ["inner", "radial"], ["screen"]),
    ("after a value in quotes", "umbrant render 'a b.png' -o \"it's.png\" c\\ d --mis", ["--missing"], ["--canvas"]),
    ("within quotes", "umbrant render --set 'style/dist", ["style/distance"], []),
]

# Beginnings with one end: zsh writes that end at once, and lists nothing. What must be offered is one word.
BEGINNINGS = [
    ("the beginning of a farm's option", "umbrant farm --fra", ["--frames-per-task"], ["--frames"]),
    ("the frames of a farm's job", "umbrant farm slurm in.png --fra", ["--frames"], ["--frames-per-task"]),
]


def script(shell, *arguments):
    return subprocess.run([UMBRANT, "completion", shell, *arguments], check=True, capture_output=True, text=True).stdout


class Terminal:
    """A shell at a terminal."""

    def __init__(self, *command, folder, path=PATH):
        environment = os.environ | {"TERM": "dumb", "PS1": "$ ", "HOME": folder, "COLUMNS": "200", "INPUTRC": "/dev/null",
                                    "PATH": path}  # fmt: skip
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

    def clear(self):
        """Empties the line."""
        self.type("\x05\x15")
        self.type("echo do''ne\n")
        self.read_until(["done"])

    def close(self):
        os.close(self.file)
        os.kill(self.pid, 9)
        os.waitpid(self.pid, 0)


class ShellCase(unittest.TestCase):
    """Cases in a folder with a few files."""

    def setUp(self):
        self.holder = tempfile.TemporaryDirectory()
        self.addCleanup(self.holder.cleanup)
        self.folder = pathlib.Path(self.holder.name)
        for name in FILES - {"other/"}:
            (self.folder / name).touch()

    def terminal(self, *command, begin, path=PATH):
        """A shell that has read the script."""
        terminal = Terminal(*command, folder=str(self.folder), path=path)
        self.addCleanup(terminal.close)
        terminal.type(f"{begin}; echo rea''dy\n")
        self.assertIn("ready", terminal.read_until(["ready"]))
        return terminal

    def typed_without_the_program(self, *command, begin, path=SYSTEM):
        """What a terminal shows for the name of a file where the program is not installed; nothing may be reported."""
        terminal = self.terminal(*command, begin=begin, path=path)
        terminal.type("umbrant pict\t")
        shown = terminal.read_until(["picture-one.png"])
        self.assertNotRegex(shown.lower(), "not found|no such|error")
        return shown

    def stand_in(self, text):
        """The PATH of a machine with another program of that name."""
        folder = self.folder / "other"
        folder.mkdir(exist_ok=True)
        (folder / "umbrant").write_text(f"#!/bin/sh\n{text}\n", encoding="utf-8")
        (folder / "umbrant").chmod(0o755)
        return f"{folder}:{SYSTEM}"

    def need(self, shell):
        if shutil.which(shell) is None:
            self.skipTest(f"there is no {shell} here")

    def ask_bash(self, line, breaks=BREAKS[0], before="", path=PATH):
        """What bash offers for a line, up to a "|" in it where the cursor is; the answer has what readline would get."""
        point = line.find("|") if "|" in line else len(line)
        ask = (
            f"{before} source ./umbrant.bash; COMP_LINE=$1 COMP_POINT=$2 COMP_WORDBREAKS=$3; _umbrant; "
            "for ((i = 0; i < ${#COMPREPLY[@]}; ++i)); do printf '%s\\n' \"${COMPREPLY[i]}\"; done"
        )
        done = subprocess.run(["bash", "-c", ask, "ask", line.replace("|", ""), str(point), breaks], cwd=self.folder,
                              check=True, capture_output=True, text=True,
                              env=os.environ | {"PATH": path, "HOME": str(self.folder)})  # fmt: skip
        self.assertEqual(done.stderr, "")
        return done.stdout.splitlines()

    def write_bash(self):
        self.need("bash")
        (self.folder / "umbrant.bash").write_text(script("bash"), encoding="utf-8")

    def ask_fish(self, line, path=PATH):
        done = subprocess.run(["fish", "-c", "source umbrant.fish; complete -C $argv[1]", line], check=True,
                              cwd=self.folder, capture_output=True, text=True,
                              env=os.environ | {"HOME": str(self.folder), "PATH": path})  # fmt: skip
        self.assertEqual(done.stderr, "")
        return {answer.split("\t")[0] for answer in done.stdout.splitlines()}

    def write_fish(self):
        self.need("fish")
        (self.folder / "umbrant.fish").write_text(script("fish"), encoding="utf-8")
