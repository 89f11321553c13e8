# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""`pip install --no-build-isolation .` in a virtual environment, without network: what it installs, and that it draws
what the program draws."""

import os
import pathlib
import subprocess
import sys
import zipfile

import pytest
from conftest import SMALL, disc8, save

SOURCE = pathlib.Path(os.environ["SOURCE_FOLDER"])
BUILD = pathlib.Path(os.environ["BUILD_FOLDER"])


def run(*command, cwd=None, **environment):
    # No proxy and no index: what would need a network fails at once.
    kept = {name: value for name, value in os.environ.items() if not name.startswith(("UMBRANT", "PYTHON", "PIP_"))}
    done = subprocess.run([str(part) for part in command], cwd=cwd, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, env={**kept, "PIP_NO_INDEX": "1", **environment})  # fmt: skip
    assert done.returncode == 0, done.stdout
    return done.stdout


@pytest.fixture(scope="module")
def wheel_build():
    """The environment of a build: of the files that the tests' own build folder has, as compiling them again takes longer than
    all other tests of the package; with WHEEL_COMPILES=1, of files compiled as for a user."""
    if os.environ.get("WHEEL_COMPILES") != "1":
        return {"UMBRANT_WHEEL_BUILD": str(BUILD), "UMBRANT_WHEEL_BUILT": "1"}
    launcher = os.environ.get("COMPILER_LAUNCHER", "")
    return {"UMBRANT_WHEEL_BUILD": str(BUILD.with_name(BUILD.name + "-wheel")), "CXX": os.environ["CXX"],
            "CMAKE_ARGS": f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}" if launcher else ""}


@pytest.fixture(scope="module")
def environment(tmp_path_factory, wheel_build):
    folder = tmp_path_factory.mktemp("venv")
    run(sys.executable, "-m", "venv", "--system-site-packages", folder)
    run(folder / "bin/python", "-m", "pip", "install", "--no-build-isolation", ".", cwd=SOURCE, **wheel_build)
    return folder


def test_what_is_installed(environment):
    facts = run(environment / "bin/python", "-c",
                "import umbrant; print(umbrant.__file__); print(umbrant.Effect().module_file); print(umbrant.__version__)")
    file, module, version = facts.split("\n")[:3]
    assert pathlib.Path(file).is_relative_to(environment) and pathlib.Path(module) == pathlib.Path(file).parent / "umbrant2.so"
    names = {path.name for path in pathlib.Path(file).parent.iterdir()} - {"__pycache__"}
    assert {"__init__.py", "__init__.pyi", "py.typed", "umbrant2.so"} <= names
    assert {name for name in names if not name.startswith("_")} == {"py.typed", "umbrant2.so"}
    shown = run(environment / "bin/python", "-m", "pip", "show", "umbrant")
    assert f"Version: {version}\n" in shown and "Requires: numpy\n" in shown


def test_it_draws_what_the_program_draws(environment, program):
    layer = disc8()
    expected = program.render(layer, *SMALL)
    save(program.folder / "layer.png", layer)
    (program.folder / "draw.py").write_text(
        "import numpy, PIL.Image, umbrant\n"
        "effect = umbrant.Effect(renderer='cpu')\n"
        "effect.update({'style/distance': 40, 'style/softness': 12, 'style/color': '#203060'})\n"
        "numpy.save('drawn.npy', effect.render(numpy.asarray(PIL.Image.open('layer.png'))).array)\n"
    )
    run(environment / "bin/python", "draw.py", cwd=program.folder)
    import numpy

    drawn = numpy.load(program.folder / "drawn.npy")
    assert drawn.shape == expected.shape and drawn.tobytes() == expected.tobytes()


def test_the_wheel(environment, wheel_build, tmp_path):
    run(environment / "bin/python", "-m", "pip", "wheel", "--no-build-isolation", "--no-deps", "-w", tmp_path, ".",
        cwd=SOURCE, **wheel_build)  # fmt: skip
    (wheel,) = tmp_path.glob("*.whl")
    tag = f"cp{sys.version_info[0]}{sys.version_info[1]}"
    assert f"-{tag}-{tag}-linux_" in wheel.name
    with zipfile.ZipFile(wheel) as archive:
        names = archive.namelist()
        assert all(name.startswith("umbrant") for name in names), names
        extension = next(name for name in names if name.startswith("umbrant/_umbrant.") and name.endswith(".so"))
        for name in (extension, "umbrant/umbrant2.so"):
            data = archive.read(name)
            assert data[:4] == b"\x7fELF" and str(SOURCE).encode() not in data and b".debug_info" not in data, name


def test_it_can_be_removed(environment):
    """And the source folder is as it was: what the build writes is in build/."""
    run(environment / "bin/python", "-m", "pip", "uninstall", "--yes", "umbrant")
    done = subprocess.run([environment / "bin/python", "-c", "import umbrant"], capture_output=True, text=True,
                          env={name: value for name, value in os.environ.items() if name != "PYTHONPATH"})  # fmt: skip
    assert "No module named 'umbrant'" in done.stderr
    assert not list(SOURCE.glob("*.egg-info")) and not list((SOURCE / "python").glob("**/*.so"))
