# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Completion in bash, which leaves the splitting of a line to the script: quotes, signs, the cursor, the user's settings."""

import unittest

from shells import BEGINNINGS, BREAKS, OTHER_PROGRAMS, ROWS, SYSTEM, UMBRANT, ShellCase


class Bash(ShellCase):
    def test_bash(self):
        self.write_bash()
        for title, line, offered, absent in ROWS + BEGINNINGS:
            for breaks in BREAKS:
                with self.subTest(title, breaks=breaks):
                    answers = [answer.rstrip("=") for answer in self.ask_bash(line, breaks)]
                    whole = line.split(" ")[-1] if "=" not in breaks and line.endswith("=") else ""
                    for word in offered:
                        self.assertIn(whole + word, answers)
                    for word in absent:
                        self.assertNotIn(word, answers)

    def test_bash_gets_what_readline_leaves_to_it(self):
        self.write_bash()
        rows = [
            # An open quote, and a sign that does not part words within it.
            ('umbrant render --set "style/shadow-type=inn', BREAKS[0], ["style/shadow-type=inner"]),
            ('umbrant render --set="style/shadow-type=inn', BREAKS[0], ["style/shadow-type=inner"]),
            ('umbrant render "--set=style/shadow-type=inn', BREAKS[0], ["--set=style/shadow-type=inner"]),
            ("umbrant render --set 'style'/shadow-type=inn", BREAKS[0], ["inner"]),
            ("umbrant render --set 'style/shadow-type'=inn", BREAKS[1], ["style/shadow-type=inner"]),
            ("umbrant render --set style\\/shadow-type\\=inn", BREAKS[1], ["style/shadow-type=inner"]),
            # The cursor within the line, and within a word.
            ("umbrant ren| in.png -o out.png", BREAKS[0], ["render"]),
            ("umbrant ren|params", BREAKS[0], ["render"]),
            ("umbrant render --ca|nvas=grow in.png", BREAKS[0], ["--canvas"]),
            ("umbrant render --canvas |-o out.png", BREAKS[0], ["grow", "frame", "layer", "tight"]),
            # Used already; may be repeated; no value; after the mark; a flag's value; an unknown option.
            ("umbrant render --canvas grow --canv", BREAKS[0], []),
            ("umbrant render --set a=1 --se", BREAKS[0], ["--set"]),
            ("umbrant render -ox.png --output-d", BREAKS[0], ["--output-depth"]),
            ("umbrant render --frames ", BREAKS[0], []),
            ("umbrant render -- --canv", BREAKS[0], []),
            ("umbrant render --mkdir=", BREAKS[0], []),
            ("umbrant render --nonsense --canv", BREAKS[0], ["--canvas"]),
            # Redirections: the file is readline's, and no argument.
            ("umbrant completion > ba", BREAKS[0], []),
            ("umbrant completion 2>/dev/null ba", BREAKS[0], ["bash"]),
            # A tab, an escape that ends the line, quotes that contain a program.
            ("umbrant\tcompletion\tba", BREAKS[0], ["bash"]),
            ("umbrant render --canv\\", BREAKS[0], ["--canvas"]),
            ("umbrant render '$(touch bad)' `touch bad` --canv", BREAKS[0], ["--canvas"]),
            # Names of files, where readline would take the option for a part of the name.
            ("umbrant render x.png -opic", BREAKS[0], ["-opicture-one.png"]),
            ("umbrant render --texture=pic", BREAKS[0], []),
            ("umbrant render --texture=pic", BREAKS[1], ["--texture=picture-one.png"]),
        ]
        for line, breaks, expected in rows:
            with self.subTest(line, breaks=breaks):
                self.assertEqual(self.ask_bash(line, breaks), expected)
        self.assertFalse((self.folder / "bad").exists())

    def test_bash_in_the_moods_of_its_users(self):
        self.write_bash()
        for before in ("set -u;", "set -e;", "shopt -s failglob nullglob nocasematch extglob;", "IFS=e;", "set -o posix;",
                       "set -f;", "alias umbrant=false; shopt -s expand_aliases;", "export LC_ALL=C;"):  # fmt: skip
            with self.subTest(before):
                self.assertEqual(self.ask_bash("umbrant rend", before=before), ["render"])
                self.assertEqual(self.ask_bash("umbrant render --canvas ", before=before), ["grow", "frame", "layer", "tight"])
                self.assertEqual(self.ask_bash("umbrant render --json --nothing", before=before), [])

    def test_bash_asks_the_program_that_is_typed(self):
        self.write_bash()
        (self.folder / "my tools").mkdir()
        (self.folder / "my tools/umbrant").symlink_to(UMBRANT)
        for program in ("my\\ tools/umbrant", "'my tools'/umbrant", "~/my\\ tools/umbrant"):
            self.assertEqual(self.ask_bash(f"{program} rend", path=SYSTEM), ["render"])
        # Not found under that name: the one of PATH.
        self.assertEqual(self.ask_bash("u rend"), ["render"])

    def test_bash_without_the_program(self):
        self.write_bash()
        for breaks in BREAKS:
            self.assertEqual(self.ask_bash("umbrant rend", breaks, path=SYSTEM), [])
        for text in OTHER_PROGRAMS:
            with self.subTest(text):
                path = self.stand_in(text)
                self.assertEqual(self.ask_bash("umbrant rend", path=path), [])
                self.assertEqual(self.ask_bash("umbrant render --canvas=", path=path), [])

    def test_bash_at_a_terminal(self):
        self.write_bash()
        rows = [
            ("umbrant rend\t", "umbrant render "),
            ("umbrant render --canvas g\t", "--canvas grow "),
            ("umbrant render --canvas=la\t", "--canvas=layer "),
            ("umbrant render --set style/dist\t", "--set style/distance="),
            ("umbrant render --set style/shadow-type=inn\t", "style/shadow-type=inner "),
            ("umbrant render --set 'style/shadow-type=inn\t", "'style/shadow-type=inner' "),
            ("umbrant render pict\t", "umbrant render picture-one.png "),
            ("umbrant render x.png -o pict\t", "-o picture-one.png "),
            ("umbrant render x.png --output=pict\t", "--output=picture-one.png "),
            ('umbrant render "with\t', '"with a space.png" '),
            ("umbrant render --input-space Lin\t", "--input-space Linear\\ Rec.709 "),
            ("umbrant render --input-space 'Gam\t", "--input-space 'Gamma 2.4 Rec.709' "),
            ("umbrant render --input-space=Gam\t", "--input-space=Gamma\\ 2.4\\ Rec.709 "),
            ("umbrant params > pict\t", "> picture-one.png "),
            ("umbrant render --can in.png\x01\x1bf\x1bf\x1bf\t", "--canvas in.png"),
        ]
        terminal = self.terminal("bash", "--norc", "--noprofile", "-i", begin="source umbrant.bash")
        for typed, shown in rows:
            with self.subTest(typed):
                terminal.type(typed)
                self.assertIn(shown, terminal.read_until([shown]))
                terminal.type("\x05\x15")
        self.assertIn("picture-one.png ", self.typed_without_the_program(
            "bash", "--norc", "--noprofile", "-i", begin="source umbrant.bash"))  # fmt: skip


if __name__ == "__main__":
    unittest.main()
