# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Wrong arrays and options of every kind: one sentence each, and nothing drawn."""

import array
import fractions
import os
import subprocess
import sys

import numpy
import PIL.Image
import pytest
from conftest import disc8, disc_float
from numpy.lib.stride_tricks import as_strided

import umbrant

KIND, VALUE = umbrant.ArgumentTypeError, umbrant.UsageError
LAYER = disc8(20, 10)

WRONG_ARRAYS = {
    "none": (None, KIND, "is of the type 'NoneType'; it must be an array of height x width x 4 values"),
    "a list": (LAYER.tolist(), KIND, "is of the type 'list'; it must be an array"),
    "a text": ("layer.png", KIND, "is of the type 'str'; it must be an array"),
    "a number": (3, KIND, "is of the type 'int'; it must be an array"),
    "an image of Pillow": (PIL.Image.new("RGBA", (4, 4)), KIND, "is of the type 'Image'; it must be an array"),
    "bytes": (LAYER.tobytes(), VALUE, r"has the shape \(800,\); it must be \(height, width, 4\)"),
    "a flat array": (array.array("f", [0] * 8), VALUE, r"has the shape \(8,\)"),
    "a scalar": (numpy.array(3, numpy.uint8), VALUE, r"has the shape \(\)"),
    "grey": (LAYER[..., 0], VALUE, r"has the shape \(10, 20\)"),
    "without alpha": (LAYER[..., :3], VALUE, r"has the shape \(10, 20, 3\)"),
    "channels first": (LAYER.transpose(2, 0, 1), VALUE, r"has the shape \(4, 10, 20\)"),
    "many layers": (LAYER[None], VALUE, r"has the shape \(1, 10, 20, 4\)"),
    "too wide": (numpy.broadcast_to(LAYER[:1, :1], (1, 30001, 4)), VALUE, "is 30001 x 1 pixels; its sides must be from 0"),
    "far too high": (numpy.broadcast_to(LAYER[:1, :1], (2**40, 1, 4)), VALUE, "its sides must be from 0 to 30000"),
    "huge": (numpy.broadcast_to(LAYER[:1, :1], (2**30, 2**30, 4)), VALUE, "its sides must be from 0 to 30000"),
    "huge strides": (as_strided(LAYER, (3, 4, 4), (2**62, 4, 1)), VALUE, "4611686018427387904 bytes along axis 0; 3 steps"),
    "huge pixels": (as_strided(LAYER, (2, 4, 4), (20, -(2**62), 1)), VALUE, "stride of -4611686018427387904 bytes along axis 1"),
    "the longest stride": (as_strided(LAYER, (2, 4, 4), (-(2**63), 4, 1)), VALUE, "do not fit into memory"),
    "records": (numpy.zeros((2, 2, 4), [("a", "u1"), ("b", "u1")]), VALUE, "they must be uint8"),
}  # fmt: skip
TYPES = ["bool", "int8", "uint16", "int32", "int64", "uint64", "float16", "float64", "longdouble", "complex64", "object",
         "S1", "U1", "M8[s]", "m8[s]", ">f4"]  # fmt: skip


@pytest.mark.parametrize("name", WRONG_ARRAYS)
def test_wrong_arrays(effect, name):
    wrong, error, sentence = WRONG_ARRAYS[name]
    target = LAYER.copy()
    for what, call in {
        "layer": lambda: effect.render(wrong),
        "texture": lambda: effect.render(LAYER, texture=wrong),
        "target": lambda: effect.render_into(LAYER, wrong, canvas="layer"),
    }.items():
        if wrong is None and what == "texture":
            continue
        # numpy makes repeated pixels read-only, which is reported before the size.
        wanted = "read-only" if what == "target" and isinstance(wrong, numpy.ndarray) and not wrong.flags.writeable else sentence
        if name == "bytes" and what == "target":
            wanted = sentence
        with pytest.raises(error, match=f"^the {what} .*{wanted}") as caught:
            call()
        assert isinstance(caught.value, TypeError) == (error is KIND) and caught.value.code == 2
        assert "\n" not in str(caught.value)
    with pytest.raises(umbrant.UsageError):
        effect.render_into(wrong, target, canvas="layer")
    assert (target == LAYER).all()


@pytest.mark.parametrize("name", TYPES)
def test_wrong_types_of_values(effect, name):
    wrong = numpy.zeros((3, 5, 4), name)
    with pytest.raises(umbrant.UsageError) as caught:
        effect.render(wrong)
    assert str(caught.value) == (f"the layer has values of the type {wrong.dtype}; they must be uint8 (0 to 255) or float32 "
                                 "(0 to 1), in the byte order of this machine")  # fmt: skip
    with pytest.raises(umbrant.UsageError, match="^the texture has values of the type"):
        effect.place(20, 10, texture=wrong)


def test_wrong_targets(effect):
    read_only = LAYER.copy()
    read_only.flags.writeable = False
    with pytest.raises(umbrant.UsageError, match="^the target is read-only; it must be an array that can be written to$"):
        effect.render_into(LAYER, read_only, canvas="layer")
    with pytest.raises(umbrant.UsageError, match="^the target is read-only"):
        effect.render_into(LAYER, memoryview(LAYER).toreadonly(), canvas="layer")
    with pytest.raises(umbrant.UsageError, match="^the pixel formats of the target and the layer differ"):
        effect.render_into(LAYER, disc_float(20, 10), canvas="layer")
    for shape in ((10, 21, 4), (20, 10, 4), (0, 0, 4)):
        for target in (numpy.full(shape, 5, numpy.uint8), numpy.full(shape, 5, numpy.uint8)[:, ::-1]):
            with pytest.raises(umbrant.UsageError, match=f"^the target is {shape[1]} x {shape[0]} pixels; the image is 20 x 10$"):
                effect.render_into(LAYER, target, canvas="layer")
            assert (target == 5).all()
    with pytest.raises(umbrant.UsageError, match="has a stride of 0 bytes along axis 0, so its pixels share memory"):
        effect.render_into(LAYER, as_strided(LAYER.copy(), LAYER.shape, (0, 4, 1)), canvas="layer")


NAN, INFINITE = float("nan"), float("inf")


@pytest.mark.parametrize(
    "options, error, sentence",
    [
        ({"canvas": "frame"}, VALUE, "canvas is 'frame'; it must be 'grow' or 'layer'"),
        ({"canvas": None}, KIND, "canvas is None; it must be 'grow' or 'layer'"),
        ({"seconds": "1"}, KIND, "seconds is of the type 'str'; it must be a number"),
        ({"seconds": NAN}, VALUE, "the time is nan s; it must be from -86400 to 86400"),
        ({"seconds": 1e6}, VALUE, "the time is 1000000 s; it must be from -86400 to 86400"),
        ({"seconds": 10**400}, VALUE, "seconds is a whole number beyond the range of float64"),
        ({"rate": 0}, VALUE, "the rate is 0 / 1; both must be from 1 to 1000000"),
        ({"rate": INFINITE}, VALUE, "rate is inf; it must be a finite number"),
        ({"rate": "24"}, KIND, "rate is of the type 'str'; it must be a number"),
        ({"rate": 10**12}, VALUE, "rate is 1000000000000; it must be from"),
        ({"rate": fractions.Fraction(10**12, 7)}, VALUE, "the numerator of rate is 1000000000000; it must be from"),
        ({"zero_frame": 1e7}, VALUE, "the frame at 0 s is 10000000; it must be from"),
        ({"downsample": 0}, VALUE, "downsample is 0; it must be from 1 to 64"),
        ({"downsample": 65}, VALUE, "downsample is 65; it must be from 1 to 64"),
        ({"downsample": 2.0}, KIND, "downsample is of the type 'float'; it must be a whole number"),
        ({"downsample": 10**12}, VALUE, "downsample is 1000000000000; it must be from"),
        ({"scale": 2}, VALUE, "the scale along x is 2/1; it must be from 1/64 to 1"),
        ({"scale": (1, 0.001)}, VALUE, "the scale along y is 1/1000; it must be from 1/64 to 1"),
        ({"scale": (1, 1, 1)}, KIND, r"scale is \(1, 1, 1\); it must be a pair"),
        ({"scale": None}, KIND, "the scale along x is of the type 'NoneType'; it must be a number"),
        ({"scale": 0.25, "downsample": 32}, VALUE, "the scale along x is 1/4 and downsample is 32; their product"),
        ({"layer_size": (-1, 4)}, VALUE, "the layer's full size is -1 x 4; it cannot be below 0"),
        ({"layer_size": 5}, KIND, "layer_size is 5; it must be a pair"),
        ({"layer_size": (1.5, 2)}, KIND, "layer_size is of the type 'float'; it must be a whole number"),
        ({"pixel_aspect": 0.001}, VALUE, "the pixel aspect ratio is 1/1000; it must be from 1/100 to 100"),
        ({"texture_at": "12"}, KIND, "texture_at is '12'; it must be a pair"),
        ({"texture_at": (NAN, 0)}, VALUE, "the texture's position is nan,0; both must be from"),
        ({"texture_at": ("a", 0)}, KIND, "texture_at is of the type 'str'; it must be a number"),
        ({"values": {"style/distance": 5}}, KIND, "values is of the type 'dict'; it must be umbrant.Values"),
    ],
)
def test_wrong_options(effect, options, error, sentence):
    target = LAYER.copy()
    for call in (
        lambda: effect.render(LAYER, **options),
        lambda: effect.render_into(LAYER, target, **{"canvas": "layer", **options}),
        lambda: effect.place(20, 10, **options),
    ):
        with pytest.raises(error, match=f"^{sentence}"):
            call()
    assert (target == LAYER).all()


@pytest.mark.parametrize("size", [(-1, 5), (5, 30001), (2**31, 1), (10**20, 1)])
def test_sizes_out_of_range(effect, size):
    with pytest.raises(umbrant.UsageError, match="must be from"):
        effect.place(*size)


def test_calls_with_wrong_names(effect):
    for call in (lambda: effect.render(), lambda: effect.render(LAYER, second=1), lambda: effect.render(LAYER, None)):
        with pytest.raises(TypeError, match=r"^Effect\.render\(\) "):
            call()
    with pytest.raises(TypeError):
        umbrant.Picture()


def test_wrong_effects(tmp_path):
    with pytest.raises(umbrant.UsageError, match="^renderer is 'opengl'; it must be 'auto', 'gl' or 'cpu'$"):
        umbrant.Effect(renderer="opengl")
    with pytest.raises(umbrant.ArgumentTypeError, match="^message is of the type 'str'; it must be callable, or None$"):
        umbrant.Effect(message="hello")
    for module, error in ((5, KIND), ("", VALUE), ("a\0b", VALUE)):
        with pytest.raises(error, match="^module is "):
            umbrant.Effect(module)
    with pytest.raises(umbrant.ModuleError, match="none.so") as caught:
        umbrant.Effect(tmp_path / "none.so")
    assert caught.value.code == 4
    (tmp_path / "text.so").write_text("no module")
    with pytest.raises(umbrant.ModuleError, match="text.so"):
        umbrant.Effect(str(tmp_path / "text.so"))
    assert umbrant.Effect(umbrant.Effect().module_file, renderer="cpu").renderer == "cpu"


def test_a_wrong_environment():
    code = "import umbrant\ntry: umbrant.Effect()\nexcept umbrant.UsageError as error: print(error)"
    done = subprocess.run([sys.executable, "-B", "-c", code], env={**os.environ, "UMBRANT_RENDERER": "vulkan"},
                          capture_output=True, text=True)  # fmt: skip
    assert (done.returncode, done.stderr) == (0, "") and "UMBRANT_RENDERER" in done.stdout


def test_without_a_module(tmp_path):
    code = "import umbrant\ntry: umbrant.Effect()\nexcept umbrant.ModuleError as error: print(error)"
    package = tmp_path / "umbrant"
    package.mkdir()
    for file in os.listdir(os.path.dirname(umbrant.__file__)):
        if file.startswith("_"):
            (package / file).symlink_to(os.path.join(os.path.dirname(umbrant.__file__), file))
    environment = {**os.environ, "UMBRANT_MODULE": str(tmp_path / "none.so"), "PYTHONPATH": str(tmp_path)}
    done = subprocess.run([sys.executable, "-B", "-c", code], env=environment, capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "") and "none.so" in done.stdout


def test_one_hierarchy():
    errors = [getattr(umbrant, name) for name in umbrant.__all__ if name.endswith("Error")]
    assert len(errors) == 8 and all(issubclass(error, umbrant.Error) for error in errors)
    assert {error.code for error in errors} == {1, 2, 3, 4, 5}
    for error, base in ((umbrant.UsageError, ValueError), (umbrant.ArgumentTypeError, TypeError),
                        (umbrant.UnknownParameterError, KeyError), (umbrant.FileError, OSError),
                        (umbrant.Error, RuntimeError)):  # fmt: skip
        assert issubclass(error, base)
        assert str(error("one 'sentence'")) == "one 'sentence'"
