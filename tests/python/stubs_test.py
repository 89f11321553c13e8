# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The stubs agree with the package, and users of the package pass a checker of types."""

import ast
import importlib.util
import inspect
import os
import pathlib
import subprocess
import sys

import pytest

import umbrant

PACKAGE = pathlib.Path(umbrant.__file__).parent
EXAMPLES = pathlib.Path(os.environ["SOURCE_FOLDER"]) / "examples/python"
STUB = ast.parse((PACKAGE / "__init__.pyi").read_text(encoding="utf-8"))
CLASSES = {node.name: node for node in STUB.body if isinstance(node, ast.ClassDef)}
# What every class has, or what data classes and named tuples add.
OWN = {"__module__", "__doc__", "__dict__", "__weakref__", "__init__", "__new__", "__repr__", "__reduce_ex__"}


def public(kind):
    """The names of a class that users see, with those of its private bases."""
    names = set()
    for base in kind.__mro__:
        if base.__module__.startswith("umbrant"):
            names |= {name for name in vars(base) if not name.startswith("_") or name in SPECIAL}
    return names


SPECIAL = {"__getitem__", "__setitem__", "__contains__", "__iter__", "__len__", "__copy__", "__deepcopy__"}


def stub_names(node):
    return {each.name for each in node.body if isinstance(each, ast.FunctionDef)} | {
        each.target.id for each in node.body if isinstance(each, ast.AnnAssign)
    }


def test_the_same_names():
    assert set(CLASSES) | {"__version__"} == set(umbrant.__all__)
    assert all(hasattr(umbrant, name) for name in umbrant.__all__)


@pytest.mark.parametrize("name", ["Effect", "Values", "Picture", "Parameter", "Rectangle"])
def test_the_same_members(name):
    kind = getattr(umbrant, name)
    members = public(kind)
    if name == "Parameter":
        members = set(kind.__dataclass_fields__)
    if name == "Rectangle":
        members = set(kind._fields) | {"width", "height"}
    assert stub_names(CLASSES[name]) - OWN == members


@pytest.mark.parametrize("name", ["Effect", "Values", "Picture"])
def test_the_same_arguments_and_defaults(name):
    for method in CLASSES[name].body:
        if not isinstance(method, ast.FunctionDef) or method.decorator_list:
            continue
        found = inspect.signature(getattr(getattr(umbrant, name), method.name))
        arguments = method.args
        assert list(found.parameters) == [each.arg for each in arguments.args + arguments.kwonlyargs], method.name
        stated = dict(zip([each.arg for each in arguments.kwonlyargs], arguments.kw_defaults))
        stated |= dict(zip([each.arg for each in arguments.args][::-1], arguments.defaults[::-1]))
        for each in found.parameters.values():
            default = ast.literal_eval(stated[each.name]) if stated.get(each.name) is not None else inspect.Parameter.empty
            assert each.default == default, (method.name, each.name)


@pytest.mark.parametrize("name", sorted(set(CLASSES)))
def test_everything_is_documented(name):
    kind = getattr(umbrant, name)
    assert inspect.getdoc(kind) and kind.__module__ == "umbrant"
    for member in public(kind) - SPECIAL - {"code"}:
        documented = getattr(kind, member)
        # Fields of records are in the record's own text.
        assert (inspect.getdoc(documented) if member not in getattr(kind, "__annotations__", {}) else member in kind.__doc__), member


def checker(*arguments):
    if importlib.util.find_spec("mypy") is None:
        pytest.skip("there is no mypy here")
    environment = {**os.environ, "MYPYPATH": str(PACKAGE.parent)}
    return subprocess.run([sys.executable, "-B", "-m", *arguments], env=environment, cwd=PACKAGE.parent,
                          capture_output=True, text=True)  # fmt: skip


# The modules of the package, the effect's module beside them, and objects that only the package makes.
NOT_FOR_USERS = ("umbrant._", "umbrant.umbrant2 ", "umbrant.Values.__init__ ", "umbrant.Picture.__init__ ",
                 "umbrant.Picture is inconsistent, metaclass differs")  # fmt: skip


def test_the_checker_of_stubs(tmp_path):
    settings = tmp_path / "mypy.ini"
    # Only the package has a stub, not the modules that it consists of.
    parts = ",".join(f"umbrant.{name}" for name in sorted({path.name.split(".")[0] for path in PACKAGE.glob("_[a-z]*")}))
    settings.write_text(f"[mypy]\n[mypy-{parts}]\nignore_errors = true\n")
    done = checker("mypy.stubtest", "--concise", "--mypy-config-file", str(settings), "umbrant")
    wrong = [line for line in done.stdout.splitlines() if line and not line.startswith(NOT_FOR_USERS)]
    assert wrong == [], done.stdout + done.stderr


def test_examples_have_the_right_types(tmp_path):
    options = ["--ignore-missing-imports", "--check-untyped-defs", "--cache-dir", str(tmp_path)]
    done = checker("mypy", *options, *map(str, sorted(EXAMPLES.glob("*.py"))[:1]))
    assert done.returncode == 0, done.stdout + done.stderr


def test_wrong_types_are_found(tmp_path):
    user = tmp_path / "user.py"
    user.write_text(
        "import numpy, umbrant\n"
        "effect = umbrant.Effect(renderer='cpu')\n"
        "effect['style/distance'] = 80\n"
        "picture = effect.render(numpy.zeros((4, 4, 4), numpy.uint8), canvas='layer', seconds=0.5)\n"
        "left: int = picture.place.left\n"
        "effect.render(3)\n"
        "effect.render(picture.array, canvas='frame')\n"
        "effect.rendre(picture.array)\n"
        "effect['style/color'] = None\n"
        "text: str = picture.width\n"
    )
    done = checker("mypy", "--strict", "--no-error-summary", "--cache-dir", str(tmp_path / "cache"), str(user))
    lines = [int(line.split(":")[1]) for line in done.stdout.splitlines() if ": error: " in line]
    assert lines == [6, 7, 8, 9, 10], done.stdout + done.stderr
