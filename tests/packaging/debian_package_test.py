# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""CPack makes the Debian packages of this build folder: their fields, their files and what lintian says. How they
install and run in a fresh Debian is tried by packaging/debian/try."""

import gzip
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

BUILD = pathlib.Path(os.environ["BUILD_FOLDER"])
SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
MANUAL = sorted((SOURCE / "docs/man").glob("*.1"))
CPACK = os.environ["CPACK"]
LIBDIR = os.environ["LIBDIR"]
PYTHON = os.environ.get("PYTHON_PACKAGE") == "1"
DIST_PACKAGES = "/usr/lib/python3/dist-packages/umbrant"


def setUpModule():
    for tool in ("dpkg-deb", "dpkg-shlibdeps"):
        if shutil.which(tool) is None:
            raise unittest.SkipTest(f"there is no {tool} here")


def output(*command):
    done = subprocess.run([str(part) for part in command], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False)  # fmt: skip
    if done.returncode != 0:
        raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


def version():
    text = (SOURCE / "entry/version.h").read_text(encoding="utf-8")
    return ".".join(re.search(rf"kVersion{part} = (\d+)", text)[1] for part in ("Major", "Minor", "BugFix"))


class DebianPackages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.holder = tempfile.TemporaryDirectory()
        cls.folder = pathlib.Path(cls.holder.name)
        output(CPACK, "-G", "DEB", "-B", cls.folder, "--config", BUILD / "CPackConfig.cmake")
        cls.packages = {path.name.split("_")[0]: path for path in cls.folder.glob("*.deb")}

    @classmethod
    def tearDownClass(cls):
        cls.holder.cleanup()

    def field(self, package, name):
        return output("dpkg-deb", "--field", self.packages[package], name).strip()

    def contents(self, package):
        """Mode and owner of each file by its name."""
        lines = output("dpkg-deb", "--contents", self.packages[package]).splitlines()
        return {line.split(None, 5)[5].removeprefix("."): line.split()[:2] for line in lines}

    def unpacked(self, package):
        folder = self.folder / f"{package}.unpacked"
        if not folder.exists():
            output("dpkg-deb", "--extract", self.packages[package], folder)
        return folder

    def test_which_there_are(self):
        # The Python package only where its headers are.
        optional = {"umbrant-frei0r"} & set(self.packages) | ({"python3-umbrant"} if PYTHON else set())
        self.assertEqual(set(self.packages), {"umbrant", "libumbrant-host-dev", "umbrant-openfx", "umbrant-effect-dev", "umbrant-doc"} | optional)

    def test_fields(self):
        for package in self.packages:
            with self.subTest(package):
                self.assertRegex(self.field(package, "Version"), rf"^{re.escape(version())}-\w+$")
                self.assertRegex(self.field(package, "Maintainer"), r"^.+ <.+@.+>$")
                self.assertEqual(self.field(package, "Priority"), "optional")
                description = self.field(package, "Description").splitlines()
                self.assertLess(len(description[0]), 80)
                self.assertGreater(len(description), 3)
        self.assertEqual(self.field("umbrant", "Section"), "graphics")
        self.assertEqual(self.field("libumbrant-host-dev", "Section"), "libdevel")
        for package, section in {"umbrant-effect-dev": "devel", "umbrant-doc": "doc"}.items():
            self.assertEqual((self.field(package, "Section"), self.field(package, "Architecture")), (section, "all"))
            self.assertEqual(self.field(package, "Depends"), "")

    def test_dependencies(self):
        depends = self.field("umbrant", "Depends")
        for library in ("libc6", "libstdc++6", "libopenimageio2.4", "libcairo2", "libopencolorio2.1", "libcpp-httplib0.11",
                        "libfmt9", "libegl1", "libopengl0"):  # fmt: skip
            self.assertRegex(depends, rf"(^|, ){re.escape(library)}\b")
        self.assertIn("ffmpeg", self.field("umbrant", "Recommends"))
        full = self.field("umbrant", "Version")
        self.assertEqual(self.field("libumbrant-host-dev", "Depends"), f"umbrant (= {full}), libfmt-dev")

        # The bundle brings its own module, and nothing that draws or reads images.
        plugin = self.field("umbrant-openfx", "Depends")
        self.assertEqual({word.split()[0] for word in plugin.split(", ")} - {"libgcc-s1", "libstdc++6"},
                         {"libc6", "libegl1", "libopengl0"})  # fmt: skip

    def test_the_python_package(self):
        if not PYTHON:
            self.skipTest("the Python package is not built here")
        package = "python3-umbrant"
        self.assertEqual(self.field(package, "Section"), "python")
        depends = self.field(package, "Depends")
        for name in (f"umbrant \\(= {re.escape(self.field('umbrant', 'Version'))}\\)", "python3-numpy", r"python3 \(>= 3\.\d+~\)",
                     r"python3 \(<< 3\.\d+\)", "libc6", "libstdc\\+\\+6", "libfmt9"):  # fmt: skip
            self.assertRegex(depends, rf"(^|, ){name}")
        for library in ("libopenimageio", "libcairo", "libegl", "libpython"):
            self.assertNotIn(library, depends)
        folder = self.unpacked(package)
        module = folder / DIST_PACKAGES.lstrip("/") / "umbrant2.so"
        self.assertTrue(module.is_symlink())
        # The link leads to the file of the package umbrant, wherever both are.
        self.assertEqual(os.path.normpath(f"{DIST_PACKAGES}/{os.readlink(module)}"), f"/usr/{LIBDIR}/umbrant/umbrant2.so")
        (extension,) = module.parent.glob("_umbrant.cpython-3*.so")
        self.assertNotIn(".debug_info", output("readelf", "--sections", extension))
        self.assertNotIn("RUNPATH", output("readelf", "--dynamic", extension))
        self.assertNotIn(str(BUILD).encode(), extension.read_bytes())
        exported = [line.split()[-1] for line in output("nm", "-D", "--defined-only", extension).splitlines()]
        self.assertEqual(exported, ["PyInit__umbrant"])
        control = folder.with_name("control")
        output("dpkg-deb", "--control", self.packages[package], control)
        for script in ("postinst", "prerm"):
            self.assertIn("py3c", (control / script).read_text())

    def test_files(self):
        expected = {
            "umbrant": [
                "/usr/bin/umbrant", f"/usr/{LIBDIR}/umbrant/umbrant2.so", f"/usr/{LIBDIR}/umbrant/umbrant_shim.so",
                f"/usr/{LIBDIR}/umbrant/umbrant_drawing.so", f"/usr/{LIBDIR}/umbrant/umbrant_http.so",
                f"/usr/{LIBDIR}/umbrant/umbrant_images.so", f"/usr/{LIBDIR}/umbrant/umbrant_color.so",
                *(f"/usr/share/man/man1/{page.name}.gz" for page in MANUAL), "/usr/share/bash-completion/completions/umbrant",
                "/usr/share/zsh/vendor-completions/_umbrant", "/usr/share/fish/vendor_completions.d/umbrant.fish",
                "/usr/share/doc/umbrant/copyright", "/usr/share/doc/umbrant/changelog.gz",
                "/usr/share/doc/umbrant/changelog.Debian.gz",
            ],
            "libumbrant-host-dev": [
                "/usr/include/umbrant/effect.h", f"/usr/{LIBDIR}/libumbrant_host.a",
                f"/usr/{LIBDIR}/cmake/umbrant_host/umbrant_host-config.cmake",
                "/usr/share/doc/libumbrant-host-dev/copyright",
                "/usr/share/doc/libumbrant-host-dev/examples/render_from_memory/render_from_memory.cpp",
            ],
            "umbrant-openfx": [
                "/usr/OFX/Plugins/Umbrant.ofx.bundle/Contents/Info.plist",
                "/usr/OFX/Plugins/Umbrant.ofx.bundle/Contents/Linux-x86-64/Umbrant.ofx",
                "/usr/OFX/Plugins/Umbrant.ofx.bundle/Contents/Linux-x86-64/umbrant2.so",
                "/usr/share/doc/umbrant-openfx/copyright",
            ],
            "umbrant-effect-dev": [
                "/usr/include/umbrant-effect/hostapi/hostapi.h", "/usr/include/umbrant-effect/hostapi/suites/basic_suite.h",
                "/usr/share/pkgconfig/umbrant_effect.pc", "/usr/share/doc/umbrant-effect-dev/copyright",
            ],
            "umbrant-doc": [
                *(f"/usr/share/doc/umbrant-doc/{name}" for name in (
                    "README.md", "docs/parameters.md", "docs/images/parameters/style-softness.png", "assets/layers/title.png",
                    "assets/presets/soft-drop.json", "examples/python/contact_sheet.py", "bench/results/README.md", "copyright")),
            ],
        }  # fmt: skip
        if PYTHON:
            expected["python3-umbrant"] = [
                *(f"{DIST_PACKAGES}/{name}" for name in ("__init__.py", "__init__.pyi", "py.typed", "_effect.py")),
                "/usr/share/doc/python3-umbrant/copyright", "/usr/share/doc/python3-umbrant/changelog.Debian.gz",
                "/usr/share/doc/python3-umbrant/examples/contact_sheet.py",
            ]  # fmt: skip
        for package, names in expected.items():
            contents = self.contents(package)
            for name in names:
                self.assertIn(name, contents)
            for name, (mode, owner) in contents.items():
                self.assertEqual(owner, "root/root", name)
                self.assertTrue(name.startswith("/usr/"), name)
                if mode.startswith("l"):
                    continue
                executable = name.endswith("/") or name == "/usr/bin/umbrant"
                self.assertEqual(mode[1:], "rwxr-xr-x" if executable else "rw-r--r--", name)

    def test_documents(self):
        folder = self.unpacked("umbrant") / "usr/share"
        for page in MANUAL:
            self.assertEqual(gzip.decompress((folder / f"man/man1/{page.name}.gz").read_bytes()), page.read_bytes())
        changes = gzip.decompress((folder / "doc/umbrant/changelog.gz").read_bytes())
        self.assertEqual(changes, (SOURCE / "CHANGELOG.md").read_bytes())
        entry = gzip.decompress((folder / "doc/umbrant/changelog.Debian.gz").read_bytes()).decode()
        self.assertTrue(entry.startswith(f"umbrant ({self.field('umbrant', 'Version')}) "), entry)
        # The licence, word for word, within the form that machines read.
        rights = (folder / "doc/umbrant/copyright").read_text(encoding="utf-8")
        self.assertIn("Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/", rights)
        licence = (SOURCE / "LICENSE").read_text(encoding="utf-8").partition("All rights reserved.")[2]
        self.assertIn(" ".join(licence.split()), " ".join(rights.replace("\n .\n", "\n").split()))

    def test_programs_are_stripped_and_carry_no_path_of_the_build(self):
        for name in ("bin/umbrant", f"{LIBDIR}/umbrant/umbrant2.so"):
            file = self.unpacked("umbrant") / "usr" / name
            self.assertNotIn(".debug_info", output("readelf", "--sections", file))
            self.assertNotIn("RUNPATH", output("readelf", "--dynamic", file))
            self.assertNotIn(str(BUILD).encode(), file.read_bytes())

    def test_the_documents_lead_to_files_that_are_there(self):
        folder = self.unpacked("umbrant-doc") / "usr/share/doc/umbrant-doc"
        missing = []
        for page in sorted(folder.rglob("*.md")):
            for link in re.findall(r"\]\(([^)#:\s]+)(?:#[^)]*)?\)", page.read_text(encoding="utf-8")):
                if not (page.parent / link).exists():
                    missing.append(f"{page.relative_to(folder)}: {link}")
        # What another package has, and two pages of the source.
        self.assertEqual(missing, ["README.md: ../umbrant/changelog.gz", "README.md: frei0r/LICENSE.md",
                                   "docs/frei0r.md: ../frei0r/LICENSE.md",
                                   "docs/openfx.md: ../openfx/parameters/parameter_names.txt"])  # fmt: skip

    def test_lintian_has_nothing_to_say(self):
        if shutil.which("lintian") is None:
            self.skipTest("there is no lintian here")
        said = output("lintian", "--allow-root", "--fail-on", "error,warning", *self.packages.values())
        self.assertEqual([line for line in said.splitlines() if re.match(r"[EW]:", line)], [])
        # It is asked to pass over one thing: the folder that OpenFX hosts look in.
        said = output("lintian", "--allow-root", "--show-overrides", self.packages["umbrant-openfx"])
        passed_over = {line for line in said.splitlines() if line.startswith("O:")}
        self.assertTrue(passed_over)
        self.assertEqual({line for line in passed_over if "[usr/OFX/" not in line}, set())


if __name__ == "__main__":
    unittest.main()
