# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""`cmake --install` puts everything where Linux expects it, wherever the prefix is and wherever it is moved to; the
example builds against the installed library alone and draws what the installed program draws."""

import json
import os
import pathlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest
import zlib

from installed_files import EXPECTED, LIBDIR, PYTHON, PYTHON_PACKAGE

BUILD = pathlib.Path(os.environ["BUILD_FOLDER"])
SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
CMAKE = os.environ["CMAKE"]


def run(*command, cwd=None, **environment):
    """Standard output and error of a command that must succeed."""
    inherited = {name: value for name, value in os.environ.items() if not name.startswith("UMBRANT_")}
    done = subprocess.run([str(part) for part in command], cwd=cwd, env=inherited | environment, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)  # fmt: skip
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def install(prefix):
    run(CMAKE, "--install", BUILD, "--prefix", prefix)


def write_png(file, width, height, rgba):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    rows = b"".join(b"\0" + rgba[4 * width * y : 4 * width * (y + 1)] for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    parts = chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")
    file.write_bytes(b"\x89PNG\r\n\x1a\n" + parts)


def files_in(prefix):
    return {path.relative_to(prefix).as_posix() for path in prefix.rglob("*") if path.is_file()}


class Installed(unittest.TestCase):
    """An installation that was moved after it was made."""

    @classmethod
    def setUpClass(cls):
        cls.holder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.holder.name)
        install(cls.root / "first")
        cls.prefix = cls.root / "moved" / "here"
        cls.prefix.parent.mkdir()
        shutil.move(cls.root / "first", cls.prefix)

    @classmethod
    def tearDownClass(cls):
        cls.holder.cleanup()

    def test_files_lie_where_they_belong(self):
        found = files_in(self.prefix)
        self.assertEqual(EXPECTED - found, set())
        # Besides, one file a configuration, and what optional parts of the project bring.
        more = {name for name in found - EXPECTED if "umbrant_host-targets-" not in name and "frei0r" not in name
                and not name.startswith(f"{PYTHON_PACKAGE}/_umbrant.cpython-")}  # fmt: skip
        self.assertEqual(more, set())

    def test_permissions(self):
        for name in files_in(self.prefix):
            mode = (self.prefix / name).stat().st_mode & 0o777
            self.assertIn(mode, {0o755} if name.startswith("bin/") else {0o644, 0o755}, name)

    def test_the_python_package_finds_its_module(self):
        if not PYTHON:
            self.skipTest("the Python package is not built here")
        package = self.prefix / PYTHON_PACKAGE
        said = run(PYTHON, "-B", "-c", "import umbrant; print(umbrant.__file__, umbrant.Effect().module_file)",
                   PYTHONPATH=package.parent)  # fmt: skip
        self.assertEqual(said.split(), [f"{package}/__init__.py", f"{package}/umbrant2.so"])
        self.assertEqual(os.path.realpath(package / "umbrant2.so"), str(self.prefix / LIBDIR / "umbrant/umbrant2.so"))

    def test_the_program_finds_its_module(self):
        self.assertIn("style/distance", run(self.prefix / "bin/umbrant", "params"))

    def test_the_bundle_is_in_order(self):
        bundle = self.prefix / "OFX/Plugins/Umbrant.ofx.bundle"
        said = run(self.prefix / "bin/umbrant", "doctor", "openfx", bundle, UMBRANT_RENDERER="cpu")
        self.assertIn(f"'{bundle}' is in order: ", said)

    def test_the_program_needs_few_libraries(self):
        # Libraries for drawing and for images bring hundreds of others: they are loaded when something needs them.
        needed = run("readelf", "--dynamic", self.prefix / "bin/umbrant")
        for name in ("cairo", "pango", "fontconfig", "freetype", "OpenImageIO", "OpenColorIO", "OpenEXR-", "Imath", "ssl", "crypto",
                     "tiff", "jpeg"):  # fmt: skip
            self.assertNotRegex(needed, rf"NEEDED.*{name}")
        self.assertIn("libpng", needed)
        self.assertIn("libOpenEXRCore", needed)
        self.assertIn("libcairo", run("readelf", "--dynamic", self.prefix / LIBDIR / "umbrant/umbrant_drawing.so"))

    def objects_opened(self, *arguments, names=r"umbrant_(?:color|drawing|http|images)\.so"):
        """Which of the program's shared objects a run of it opens, its child processes included."""
        with tempfile.TemporaryDirectory() as folder:
            # The loader writes into one file a process: a module that is judged must not print.
            run(self.prefix / "bin/umbrant", *arguments, LD_DEBUG="files", LD_DEBUG_OUTPUT=f"{folder}/loaded")
            loaded = "".join(file.read_text(errors="replace") for file in pathlib.Path(folder).iterdir())
        self.assertRegex(loaded, r"calling init: \S*/libpng")
        return set(re.findall(rf"calling init: \S*/({names})", loaded))

    def test_only_what_draws_opens_the_shared_objects(self):
        preset = self.prefix / "share/umbrant/presets/turning-title.json"
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            for name in ("a.1.png", "a.2.png"):
                write_png(folder / name, 1, 1, bytes((255, 0, 0, 255)))
            for arguments in (
                ["--version"],
                ["--help"],
                ["completion", "bash"],
                ["__complete", "--", "render", "--set", ""],
                ["params"],
                ["panel", "--json"],
                ["farm", "parallel", folder / "a.#.png", "-o", folder / "b.#.png", "--frames", "1-2"],
                ["validate", "--list"],
                ["validate", "--strictness", "2"],
                ["curves", "--preset", preset, "--json"],
                ["render", folder / "a.1.png", "-o", folder / "c.png", "--renderer", "cpu"],
                ["render", folder / "a.1.png", "-o", folder / "c.exr", "--renderer", "cpu"],
                ["render", folder / "c.exr", "-o", folder / "d.exr", "--renderer", "cpu"],
            ):
                with self.subTest(arguments[0]):
                    self.assertEqual(self.objects_opened(*arguments), set())
            self.assertEqual(self.objects_opened("panel", "-o", folder / "panel.png"), {"umbrant_drawing.so"})
            self.assertEqual(self.objects_opened("panel", "-o", folder / "panel.tif"),
                             {"umbrant_drawing.so", "umbrant_images.so"})  # fmt: skip

            # The address is printed, and nobody comes.
            self.assertEqual(self.objects_opened("preview", folder / "a.1.png", "--no-open", "--idle-exit", "0.01"),
                             {"umbrant_http.so"})  # fmt: skip

    def test_a_missing_server_library_is_reported(self):
        part = self.prefix / LIBDIR / "umbrant/umbrant_http.so"
        away = part.with_suffix(".away")
        part.rename(away)
        try:
            failed = subprocess.run([self.prefix / "bin/umbrant", "preview", "--no-open"], text=True, capture_output=True)
        finally:
            away.replace(part)
        self.assertEqual((failed.returncode, failed.stdout), (5, ""))
        self.assertEqual(
            failed.stderr,
            "umbrant: cannot serve the page: umbrant_http.so, which serves the preview's page, cannot be loaded: "
            "umbrant_http.so: cannot open shared object file: No such file or directory; install the program again, with the "
            "libraries that it needs\n",
        )

    def test_completion_opens_the_module_for_parameters_only(self):
        for words in ([""], ["render", "--"], ["render", "--canvas", ""], ["panel", "-o", ""], ["validate", ""]):
            with self.subTest(words):
                self.assertEqual(self.objects_opened("__complete", "--", *words, names=r"umbrant\w*\.so"), set())
        self.assertEqual(self.objects_opened("completion", "zsh", names=r"umbrant\w*\.so"), set())
        for words in (["render", "--set", ""], ["panel", "--open", ""]):
            with self.subTest(words):
                self.assertEqual(self.objects_opened("__complete", "--", *words, names=r"umbrant\w*\.so"),
                                 {"umbrant2.so"})  # fmt: skip

    def test_a_missing_drawing_library_is_reported(self):
        preset = self.prefix / "share/umbrant/presets/turning-title.json"
        part = self.prefix / LIBDIR / "umbrant/umbrant_drawing.so"
        away = part.with_suffix(".away")
        advice = "install the program again, with the libraries that it needs"
        loaded = "umbrant_drawing.so, which draws panels and curves, cannot be loaded: "
        reasons = {
            "missing": f"{loaded}umbrant_drawing.so: cannot open shared object file: No such file or directory; {advice}",
            "empty": f"{loaded}{self.prefix}/bin/../{LIBDIR}/umbrant/umbrant_drawing.so: file too short; {advice}",
            "another": "umbrant_drawing.so belongs to another version of the program; install both from the same version",
        }
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            part.rename(away)
            try:
                for state, reason in reasons.items():
                    if state == "empty":
                        part.write_bytes(b"")
                    elif state == "another":
                        shutil.copy(part.with_name("umbrant_shim.so"), part)
                    for what, arguments in {
                        "an image of the panel": ["panel", "-o", "picture.png"],
                        "an image of the curves": ["curves", "--preset", preset, "-o", "picture.png"],
                        "the canvas of a draw event": ["validate", "--strictness", "3"],
                    }.items():
                        with self.subTest(state=state, what=what):
                            failed = subprocess.run([self.prefix / "bin/umbrant", *arguments], cwd=folder, text=True,
                                                    capture_output=True)  # fmt: skip
                            self.assertEqual(failed.returncode, 5)
                            self.assertEqual(
                                failed.stderr.splitlines()[-1],
                                f"umbrant: cannot draw {what}: {reason}",
                            )
                    with self.subTest(state=state, what="the doctor's report"):
                        found = subprocess.run([self.prefix / "bin/umbrant", "doctor", "--json"], cwd=folder, text=True,
                                               capture_output=True)  # fmt: skip
                        panel = [each for each in json.loads(found.stdout)["findings"] if each["subject"] == "panel"]
                        *text, last = reason.split("; ")
                        self.assertEqual(found.returncode, 5)
                        self.assertEqual(panel, [{"subject": "panel", "condition": "problem", "text": "; ".join(text), "advice": last}])
                run(self.prefix / "bin/umbrant", "panel", "--json", cwd=folder)
                run(self.prefix / "bin/umbrant", "validate", "--strictness", "2", cwd=folder)
            finally:
                away.replace(part)
            self.assertEqual(list(folder.iterdir()), [])

    def test_the_program_finds_the_image_library(self):
        umbrant = self.prefix / "bin/umbrant"
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            write_png(folder / "dot.png", 1, 1, bytes((255, 0, 0, 255)))
            draw = [umbrant, "render", "dot.png", "--renderer", "cpu", "-o"]
            run(*draw, "dot.tif", cwd=folder)
            self.assertTrue((folder / "dot.tif").is_file())
            part = self.prefix / LIBDIR / "umbrant/umbrant_images.so"
            away = part.with_suffix(".away")
            part.rename(away)
            try:
                failed = subprocess.run([*draw, "no.tif"], cwd=folder, capture_output=True, text=True)
                run(*draw, "dot2.png", cwd=folder)
            finally:
                away.rename(part)
            self.assertEqual(failed.returncode, 3)
            self.assertIn(
                "umbrant: cannot write 'no.tif': umbrant_images.so, which has the codecs of this format, cannot be "
                "loaded: umbrant_images.so: cannot open shared object file: No such file or directory; "
                "install the program again, with the libraries that it needs\n",
                failed.stderr,
            )
            self.assertEqual(sorted(path.name for path in folder.iterdir()), ["dot.png", "dot.tif", "dot2.png"])

    def test_a_missing_colour_library_is_reported(self):
        umbrant = self.prefix / "bin/umbrant"
        part = self.prefix / LIBDIR / "umbrant/umbrant_color.so"
        away = part.with_suffix(".away")
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            write_png(folder / "dot.png", 1, 1, bytes((255, 0, 0, 255)))
            draw = ["render", folder / "dot.png", "-o", folder / "out.png", "--renderer", "cpu"]
            convert = [*draw, "--input-space", "sRGB", "--output-space", "ACEScg"]
            self.assertEqual(self.objects_opened(*convert), {"umbrant_color.so"})
            (folder / "out.png").unlink()
            part.rename(away)
            try:
                failed = subprocess.run([umbrant, *convert], capture_output=True, text=True)
                self.assertFalse((folder / "out.png").exists())
                run(umbrant, *draw)
            finally:
                away.rename(part)
            self.assertEqual(failed.returncode, 5)
            self.assertEqual(
                failed.stderr,
                "umbrant: cannot convert colours: umbrant_color.so, which converts colours, cannot be loaded: "
                "umbrant_color.so: cannot open shared object file: No such file or directory; install the program again, "
                "with the libraries that it needs\n",
            )

    def test_the_judge_finds_its_parts(self):
        judged = run(self.prefix / "bin/umbrant", "validate", "--strictness", "2")
        self.assertIn(f"findings in '{self.prefix}/{LIBDIR}/umbrant/umbrant2.waivers.json' are accepted", judged)
        self.assertIn(" 0 failed, 0 skipped", judged)

    def test_no_text_names_the_build_or_the_source_folder(self):
        for name in files_in(self.prefix):
            data = (self.prefix / name).read_bytes()
            if b"\0" in data[:4096]:
                continue
            for folder in (BUILD, SOURCE, self.root / "first"):
                self.assertNotIn(str(folder).encode(), data, name)

    def test_the_manual_pages_can_be_read(self):
        if shutil.which("man") is None:
            self.skipTest("there is no man here")
        pages = sorted((self.prefix / "share/man/man1").iterdir())
        self.assertGreater(len(pages), 1)
        for page in pages:
            warnings = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
            self.assertIn("x T utf8", warnings)
            self.assertNotIn("warning", warnings, page.name)

    def build_example(self, folder, *definitions):
        source = self.root / folder
        shutil.copytree(self.prefix / "share/doc/libumbrant-host-dev/examples/render_from_memory", source)
        output = run(CMAKE, "-S", source, "-B", source / "build", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                     *definitions)  # fmt: skip
        run(CMAKE, "--build", source / "build")
        return source / "build", output

    def test_the_example_draws_what_the_program_draws(self):
        build, _ = self.build_example("example")
        # Nothing names the module: `run` hands on no UMBRANT_MODULE.
        said = run(build / "render_from_memory", cwd=build, UMBRANT_RENDERER="cpu")
        header, _, pixels = (build / "shadow.pam").read_bytes().partition(b"ENDHDR\n")
        fields = dict(line.split(" ", 1) for line in header.decode().splitlines() if " " in line)
        width, height = int(fields["WIDTH"]), int(fields["HEIGHT"])
        self.assertEqual(len(pixels), 4 * width * height)
        self.assertIn(f"{width} x {height}, the layer at ", said)

        # The same disc by way of files.
        disc = bytearray(4 * 128 * 128)
        for i in range(128 * 128):
            x, y = i % 128 - 64, i // 128 - 64
            if x * x + y * y < 1600:
                disc[4 * i], disc[4 * i + 3] = 255, 255
        write_png(build / "disc.png", 128, 128, bytes(disc))
        write_png(build / "example.png", width, height, pixels)
        run(self.prefix / "bin/umbrant", "render", "disc.png", "-o", "shadow.png", "--renderer", "cpu", "--set",
            "style/distance=80", cwd=build)  # fmt: skip
        run(self.prefix / "bin/umbrant", "compare", "shadow.png", "example.png", "--straight", "--warn", "1/255",
            "--percent", "0", "--hard", "1/255", cwd=build)  # fmt: skip

    def test_pkg_config_builds_and_runs_the_example_too(self):
        if shutil.which("pkg-config") is None:
            self.skipTest("there is no pkg-config here")
        folder = self.root / "by_pkg_config"
        folder.mkdir()
        files = str(self.prefix / LIBDIR / "pkgconfig")

        def ask(*options):
            return run("pkg-config", *options, "umbrant_host", PKG_CONFIG_PATH=files)

        module = ask("--variable=module").strip()
        self.assertEqual(os.path.realpath(module), str(self.prefix / LIBDIR / "umbrant/umbrant2.so"))
        self.assertEqual(ask("--modversion").strip(), run(self.prefix / "bin/umbrant", "--version").split()[-1])
        example = self.prefix / "share/doc/libumbrant-host-dev/examples/render_from_memory/render_from_memory.cpp"
        flags = " ".join(ask("--cflags", "--libs").split())
        # By a shell, as people type it.
        run("sh", "-euc", f'c++ -std=c++17 "$0" -o render_from_memory {flags}', example, cwd=folder)
        said = run(folder / "render_from_memory", cwd=folder, UMBRANT_RENDERER="cpu")
        self.assertIn(", the layer at ", said)
        self.assertTrue((folder / "shadow.pam").read_bytes().startswith(b"P7\n"))

    def test_a_program_without_a_module_says_what_it_can_do(self):
        build, _ = self.build_example("example_alone")
        # The installation without its module.
        module = self.prefix / LIBDIR / "umbrant/umbrant2.so"
        hidden = module.with_suffix(".hidden")
        module.rename(hidden)
        try:
            done = subprocess.run([build / "render_from_memory"], cwd=build, text=True, capture_output=True, check=False,
                                  env={name: value for name, value in os.environ.items()
                                       if not name.startswith("UMBRANT_")})  # fmt: skip
        finally:
            hidden.rename(module)
        if done.returncode == 0:
            self.skipTest("a module is installed on this machine")
        self.assertEqual(done.returncode, 4)
        self.assertIn("no module was found in '", done.stderr)
        self.assertTrue(
            done.stderr.endswith("; name one with EffectOptions::module or the environment variable UMBRANT_MODULE\n"),
            done.stderr)

    def test_the_package_knows_its_module_and_version(self):
        source = self.root / "asks"
        source.mkdir()
        (source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.18)\nproject(asks LANGUAGES CXX)\nset(CMAKE_MODULE_PATH kept)\n"
            "find_package(umbrant_host ${WANTED} CONFIG QUIET)\n"
            'message(STATUS "found=${umbrant_host_FOUND} module=${umbrant_host_MODULE} path=${CMAKE_MODULE_PATH}")\n',
            encoding="utf-8",
        )

        def ask(wanted):
            return run(CMAKE, "-S", source, "-B", source / wanted, f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DWANTED={wanted}")

        self.assertIn(f"found=1 module={self.prefix}/{LIBDIR}/umbrant/umbrant2.so path=kept", ask("1.0"))
        self.assertIn("found=0", ask("99"))

    def test_the_archive_shows_only_its_own_names(self):
        listed = run("nm", "--demangle", "--defined-only", "--extern-only", self.prefix / LIBDIR / "libumbrant_host.a")
        names = [line.split(" ", 2)[2] for line in listed.splitlines() if " " in line and line.split(" ", 2)[1] in "TDBR"]
        self.assertTrue(any(name.startswith("umbrant::Effect::Render(") for name in names), names)
        self.assertEqual([name for name in names if not name.startswith("umbrant::")], [])
        self.assertEqual([name for name in names if name.startswith("umbrant::host::")], [])

    def test_the_archive_leaves_the_signals_of_its_program_alone(self):
        listed = run("nm", "--undefined-only", self.prefix / LIBDIR / "libumbrant_host.a")
        names = {line.split()[-1].split("@")[0] for line in listed.splitlines() if line.split()}
        self.assertIn("malloc", names)
        self.assertEqual(names & {"pthread_sigmask", "sigprocmask", "sigaction", "signal", "sigwait"}, set())


if __name__ == "__main__":
    unittest.main()
