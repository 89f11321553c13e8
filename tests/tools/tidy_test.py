#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What tools/tidy reads together, and that it checks every file, with a clang-tidy made for the test."""

import contextlib
import importlib.machinery
import importlib.util
import io
import json
import os
import pathlib
import tempfile
import unittest
from unittest import mock

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

# It finds a defect in each file that says DEFECT, and does not compile files that say CLASH together. It records what it
# read.
CLANG_TIDY = """#!/usr/bin/env python3
import pathlib, re, sys
file = pathlib.Path(sys.argv[3])
included = [pathlib.Path(name) for name in re.findall('^#include "(/.*)"', file.read_text(), re.M)] or [file]
texts = [path.read_text() for path in included]
print("3 warnings generated.", file=sys.stderr)
if sum("CLASH" in text for text in texts) > 1:
    print(f"{included[0]}:1:1: error: redefinition of 'a' [clang-diagnostic-error]")
    sys.exit(1)
with open(pathlib.Path(sys.argv[0]).parent / "read.txt", "a") as log:
    print(*included, sep="\\n", file=log)
for path, text in zip(included, texts):
    if "DEFECT" in text:
        print(f"{path}:7:1: error: a defect [bugprone-a,-warnings-as-errors]")
if "SILENT" in texts[0] or len(texts) > 1 and "TOGETHER" in texts[0] or any("DEFECT" in text for text in texts):
    sys.exit(1)
"""


def load():
    loader = importlib.machinery.SourceFileLoader("tidy", str(ROOT / "tools" / "tidy"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("tidy", loader))
    loader.exec_module(module)
    return module


class TestFlags(unittest.TestCase):
    def setUp(self):
        self.tidy = load()

    def test_are_those_that_decide_what_a_source_means(self):
        found = self.tidy.flags_of(["c++ -DA=1 -Dx_EXPORTS -D_FORTIFY_SOURCE=2 -I/a -isystem /b -O2 -fPIC -Wall -mavx2 "
                                    "-std=c++20 -o x.o -c x.cpp"])
        self.assertEqual(found, [("-DA=1", "-I/a", "-isystem", "/b", "-mavx2", "-std=c++20")])

    def test_are_the_same_where_they_do_not_contradict_each_other(self):
        one, two = self.tidy.flags_of(["c++ -DA=1 -I/a -std=c++20 -c x.cpp", "c++ -DB -I/b -std=c++20 -c y.cpp"])
        self.assertEqual(one, two)
        self.assertEqual(one, ("-DA=1", "-DB", "-I/a", "-I/b", "-std=c++20"))

    def test_differ_by_a_definition_of_another_value_and_by_the_language(self):
        found = self.tidy.flags_of(["c++ -DA=1 -std=c++20 -c x.cpp", "c++ -DA=2 -std=c++20 -c y.cpp",
                                    "c++ -std=c++17 -c z.cpp"])
        self.assertEqual(found, [("-DA=1", "-std=c++20"), ("-DA=2", "-std=c++20"), ("-std=c++17",)])


class TestBatches(unittest.TestCase):
    def setUp(self):
        self.tidy = load()

    def batches(self, texts, flags=None):
        """The batches of sources that have these texts by path, headers among them, each as a list of paths."""
        sources = {self.tidy.Source(path, (flags or {}).get(path, ())) for path in texts if path.endswith(".cpp")}
        made = self.tidy.batches(sources, lambda path: texts.get(path, ""))
        return sorted(sorted(source.path for source in batch) for batch in made)

    def test_have_each_source_once(self):
        texts = {f"a/{i}.cpp": f"namespace {{\n\nint Own{i % 7}() {{\n}}\n\n}}  // namespace\n" for i in range(100)}
        made = self.batches(texts)
        self.assertEqual(sorted(path for batch in made for path in batch), sorted(texts))
        self.assertTrue(all(len(batch) <= self.tidy.MOST_FILES for batch in made))
        self.assertLess(len(made), len(texts))

    def test_are_of_sources_without_a_name_in_common(self):
        hidden = "namespace {{\n\n{}\n\n}}  // namespace\n"
        for text in ("struct Own {", "int Own(int a) {", "constexpr int Own = 1;", "const std::array<int, 2> Own{1, 2};",
                     "template <typename T> void Own(T a) {", "enum class Own { kA };", "[[noreturn]] void Own() {"):
            with self.subTest(text):
                text = hidden.format(text)
                texts = {"a.cpp": text, "b.cpp": text, "c.cpp": "int Other();\n"}
                self.assertEqual(len(self.batches(texts)), 2)
        texts = {"a.cpp": "static int Own() {\n", "b.cpp": "static long Own() {\n"}
        self.assertEqual(len(self.batches(texts)), 2)
        texts = {"a.cpp": "int main() {\n", "b.cpp": "int main(int count, char** words) {\n"}
        self.assertEqual(len(self.batches(texts)), 2)

    def test_keep_a_name_from_sources_that_use_it_for_something_else(self):
        own = "namespace {\n\nstruct Layer {\n};\n\n}  // namespace\n"
        self.assertEqual(len(self.batches({"a.cpp": own, "b.cpp": "void F(Layer layer) {\n"})), 2)
        self.assertEqual(len(self.batches({"a.cpp": own, "b.cpp": "// of a Layer\n"})), 1)
        header = {"x.h": '#include "y.h"\n', "y.h": "struct Layer {\n};\n"}
        self.assertEqual(len(self.batches({"a.cpp": own, "b.cpp": '#include "x.h"\n', **header})), 2)

    def test_have_an_alias_twice_only_if_it_is_the_same(self):
        one, same, other = "using Json = a::json;\n", "using Json = a::json;\n", "using Json = a::ordered_json;\n"
        self.assertEqual(self.batches({"a.cpp": one, "b.cpp": same}), [["a.cpp", "b.cpp"]])
        self.assertEqual(self.batches({"a.cpp": one, "b.cpp": other}), [["a.cpp"], ["b.cpp"]])

    def test_keep_away_a_call_whose_meaning_another_header_changes(self):
        for call in ("sin(a)", "std::max(a, fabs(b))"):
            self.assertEqual(len(self.batches({"a.cpp": f"    return {call};\n", "b.cpp": ""})), 2)
            header = {"x.h": '#include "y.h"\n', "y.h": f"    return {call};\n"}
            self.assertEqual(len(self.batches({"a.cpp": '#include "x.h"\n', "b.cpp": "", **header})), 2)
        for call in ("std::sin(a)", "a.round()", "Round(a)", "// sin(a)"):
            self.assertEqual(len(self.batches({"a.cpp": f"    return {call};\n", "b.cpp": ""})), 1)

    def test_keep_away_a_declaration_that_a_header_may_have(self):
        self.assertEqual(len(self.batches({"a.cpp": "extern int other;\n", "b.cpp": ""})), 2)

    def test_have_one_meaning_of_flags(self):
        self.assertEqual(len(self.batches({"a.cpp": "", "b.cpp": ""}, {"b.cpp": ("-mavx2",)})), 2)

    def test_end_with_a_directive_or_have_no_other(self):
        made = self.tidy.batches({self.tidy.Source(f"{i}.cpp", ()) for i in range(5)},
                                 lambda path: "using namespace a;\n" if path == "0.cpp" else "")
        self.assertEqual([source.path for source in made[0]][-1], "0.cpp")
        self.assertEqual(len(made), 1)
        self.assertEqual(len(self.batches({"a.cpp": "using namespace a;\n", "b.cpp": "using enum b;\n"})), 2)

    def test_do_not_leave_a_macro_to_others(self):
        self.assertEqual(len(self.batches({"a.cpp": "#define A\n", "b.cpp": ""})), 2)
        self.assertEqual(len(self.batches({"a.cpp": "#define A\n#undef A\n", "b.cpp": ""})), 1)


class TestRun(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        self.tidy = load()
        self.tidy.ROOT, self.tidy.BUILD = self.folder, self.folder / "build" / "tidy"
        self.tidy.BUILD.mkdir(parents=True)
        for name, text in (("clang-tidy-14", CLANG_TIDY), ("cmake", "#!/bin/sh\n")):
            (self.folder / name).write_text(text)
            (self.folder / name).chmod(0o755)
        path = mock.patch.dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}")
        path.start()
        self.addCleanup(path.stop)

    def run_tidy(self, texts, arguments=()):
        """(exit code, standard output, standard error, the files that were read) for sources with these texts."""
        entries = []
        for path, text in texts.items():
            (self.folder / path).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / path).write_text(text)
            entries.append({"file": str(self.folder / path), "command": f"c++ -std=c++20 -o a.o -c {path}"})
        (self.tidy.BUILD / "compile_commands.json").write_text(json.dumps(entries))
        out, errors = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(errors), self.assertRaises(SystemExit) as end:
            self.tidy.main(list(arguments))
        log = self.folder / "read.txt"
        read = log.read_text().split() if log.exists() else []
        read = sorted({str(pathlib.Path(file).relative_to(self.folder)) for file in read})
        return end.exception.code, out.getvalue(), errors.getvalue(), read

    def test_reads_every_file_outside_tests_and_those_of_examples(self):
        texts = {f"host/{i}.cpp": "" for i in range(40)}
        (self.folder / "examples" / "a").mkdir(parents=True)
        (self.folder / "examples" / "a" / "a.cpp").write_text("")
        code, out, _, read = self.run_tidy(texts | {"tests/a.cpp": "DEFECT", "build/a.cpp": "DEFECT"})
        self.assertEqual((code, out), (0, ""))
        self.assertEqual(read, sorted([*texts, "examples/a/a.cpp"]))

    def test_refuses_a_build_that_does_not_list_every_source(self):
        joined = "build/tidy/host/CMakeFiles/a.dir/Unity/unity_0_cxx.cxx"
        code, out, _, read = self.run_tidy({"host/a.cpp": "", joined: ""})
        self.assertEqual(
            code,
            f"tools/tidy: {joined} is compiled for several sources, which are not listed; set UNITY_BUILD of its target "
            "to UMBRANT_UNITY",
        )
        self.assertEqual((out, read), ("", []))

    def test_names_each_file_with_a_defect(self):
        texts = {f"host/{i:02}.cpp": "DEFECT" if i in (3, 17, 39) else "" for i in range(40)}
        code, out, _, _ = self.run_tidy(texts)
        self.assertEqual(code, 1)
        defect = f"{self.folder}/host/{{}}.cpp:7:1: error: a defect [bugprone-a,-warnings-as-errors]"
        self.assertEqual(sorted(out.splitlines()), [defect.format(i) for i in ("03", "17", "39")])

    def test_counts_a_warning_only_for_a_file_that_is_read_alone(self):
        texts = {"host/a.cpp": "TOGETHER", "host/b.cpp": ""}
        self.assertEqual(self.run_tidy(texts)[:2], (0, ""))

    def test_divides_what_does_not_compile_together(self):
        texts = {f"host/{i:02}.cpp": "CLASH" if i in (2, 5, 6) else "DEFECT" if i == 4 else "" for i in range(10)}
        code, out, errors, read = self.run_tidy(texts)
        self.assertEqual(code, 1)
        self.assertEqual(read, sorted(texts))
        self.assertEqual(out, f"{self.folder}/host/04.cpp:7:1: error: a defect [bugprone-a,-warnings-as-errors]\n")
        self.assertIn("tools/tidy: 10 files do not compile together and are divided", errors)
        self.assertIn("redefinition of 'a'", errors)

    def test_reports_a_failure_without_words(self):
        code, out, _, _ = self.run_tidy({"host/a.cpp": "SILENT"})
        self.assertEqual((code, out), (1, "host/a.cpp: clang-tidy fails\n"))

    def test_reads_the_files_of_its_arguments_alone(self):
        texts = {"host/a.cpp": "", "host/b.cpp": "", "host/c.cpp": ""}
        code, _, _, read = self.run_tidy(texts, ["host/a.cpp", "host/c.cpp"])
        self.assertEqual((code, read), (0, ["host/a.cpp", "host/c.cpp"]))

    def test_refuses_a_file_that_is_not_compiled(self):
        code, _, _, read = self.run_tidy({"host/a.cpp": ""}, ["host/b.cpp"])
        self.assertEqual(code,
                         "tools/tidy: host/b.cpp is not a source file that is compiled; paths are from the root")
        self.assertEqual(read, [])

    def test_fails_without_sources(self):
        self.assertEqual(self.run_tidy({})[0], "tools/tidy: build/tidy lists no source files")


if __name__ == "__main__":
    unittest.main()
