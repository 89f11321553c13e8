# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Builds the Python package for pyproject.toml: CMake compiles the extension module and the effect's module, and installs
them with the Python code (component `wheel`).

UMBRANT_WHEEL_BUILD names CMake's build folder, build/wheel-... without it; CMAKE_ARGS has more arguments for CMake.
UMBRANT_WHEEL_BUILT=1: that folder is configured and built already, for the Python that runs this.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import sysconfig

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


def version():
    text = (ROOT / "entry/version.h").read_text(encoding="utf-8")
    return ".".join(re.search(rf"kVersion{part} = (\d+)", text)[1] for part in ("Major", "Minor", "BugFix"))


def cmake_arguments():
    # As the preset `release` compiles; what is installed is stripped.
    arguments = ["-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG", "-DUMBRANT_TESTS=OFF",
                 "-DUMBRANT_BENCH=OFF", "-DUMBRANT_FREI0R=OFF", "-DUMBRANT_PYTHON=ON",
                 f"-DUMBRANT_PYTHON_PROGRAM={sys.executable}"]
    if shutil.which("ninja"):
        arguments += ["-G", "Ninja"]
    try:
        import pybind11
        arguments.append(f"-Dpybind11_DIR={pybind11.get_cmake_dir()}")
    except ImportError:  # CMake looks for the system's.
        pass
    return arguments + shlex.split(os.environ.get("CMAKE_ARGS", ""))


class BuildByCMake(build_ext):
    def run(self):
        tag = f"wheel-{sys.implementation.cache_tag}-{sysconfig.get_platform()}"
        build = pathlib.Path(os.environ.get("UMBRANT_WHEEL_BUILD") or ROOT / "build" / tag).resolve()
        target = pathlib.Path(self.get_ext_fullpath("umbrant._umbrant")).resolve().parent.parent

        def cmake(*arguments):
            subprocess.run(["cmake", *map(str, arguments)], check=True)

        if os.environ.get("UMBRANT_WHEEL_BUILT") != "1":
            cmake("-S", ROOT, "-B", build, *cmake_arguments())
            cmake("--build", build, "--parallel", os.cpu_count() or 1, "--target", "umbrant_python", "umbrant2")
        cmake("--install", build, "--component", "wheel", "--strip", "--prefix", target)


# What setuptools writes goes here, which git ignores.
(ROOT / "build").mkdir(exist_ok=True)
setup(
    version=version(),
    packages=[],
    ext_modules=[Extension("umbrant._umbrant", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
    options={"egg_info": {"egg_base": "build"}},
)
