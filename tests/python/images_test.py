# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The package draws what the program draws, to the byte, whatever arrays it is given."""

import fractions
import json

import numpy
import pytest
from conftest import SMALL, disc8, disc_float

import umbrant

LAYERS = {"8-bit": disc8, "float": disc_float}


def same(one, other):
    return one.dtype == other.dtype and one.shape == other.shape and one.tobytes() == other.tobytes()


@pytest.mark.parametrize("kind", LAYERS)
@pytest.mark.parametrize("canvas", ["grow", "layer"])
def test_the_program_draws_the_same(effect, program, kind, canvas):
    layer = LAYERS[kind]()
    picture = effect.render(layer, canvas=canvas)
    assert same(picture.array, program.render(layer, *SMALL, "--canvas", canvas))
    assert (picture.place == (0, 0, 120, 90)) == (canvas == "layer")
    assert (picture.height, picture.width, 4) == picture.array.shape
    assert (picture.place.width, picture.place.height) == (picture.width, picture.height)


def test_gl_draws_the_same_as_the_program(program):
    effect = umbrant.Effect(renderer="gl")
    effect.update({"style/distance": 40, "style/softness": 12, "style/color": "#203060"})
    assert effect.renderer == "gl"
    assert same(effect.render(disc8()).array, program.render(disc8(), *SMALL, renderer="gl"))


@pytest.mark.parametrize("kind", LAYERS)
@pytest.mark.parametrize("texture_kind", LAYERS)
def test_a_texture(effect, program, kind, texture_kind):
    layer, texture = LAYERS[kind](), LAYERS[texture_kind](64, 150, seed=3)
    effect["texture/blend-mode"] = "normal"
    picture = effect.render(layer, texture=texture, texture_at=(12, -7))
    arguments = [*SMALL, "--set", "texture/blend-mode=normal", "--texture-at", "12,-7"]
    expected = program.render(layer, *arguments, texture=texture)
    assert same(picture.array, expected)
    assert not same(effect.render(layer).array, expected)


def test_keyframes_over_seconds(effect, program, tmp_path):
    keys = [{"frame": 0, "value": 0, "out": "ease"}, {"frame": 60, "value": 100}]
    (tmp_path / "preset.json").write_text(json.dumps({"version": 2, "keyframes": {"style/distance": keys}}))
    effect.load_preset(tmp_path / "preset.json")
    sizes = set()
    for seconds in (0, 0.5, 1.25, 2):
        picture = effect.render(disc8(), seconds=seconds, rate=fractions.Fraction(30000, 1001), zero_frame=2)
        expected = program.render(disc8(), *SMALL[2:], "--preset", "preset.json", "--time", str(seconds), "--rate",
                                  "30000/1001", "--zero-frame", "2")  # fmt: skip
        assert same(picture.array, expected), seconds
        sizes.add(picture.array.shape)
    assert len(sizes) == 4


def test_a_part_of_the_resolution(effect):
    layer = disc8()
    ratio = fractions.Fraction(2, 3)
    whole, half = effect.place(240, 180), effect.place(120, 90, downsample=2)
    assert all(abs(a - b / 2) <= 2 for a, b in zip(half, whole)) and half != effect.place(120, 90)
    whole = effect.place(180, 135)
    part = effect.render(layer, scale=ratio)
    assert abs(part.place.right - whole.right * ratio) <= 2
    assert same(effect.render(layer, scale=0.5).array, effect.render(layer, downsample=2).array)
    assert same(effect.render(layer, scale=(ratio, 1)).array, effect.render(layer, scale=(2 / 3, 1.0)).array)
    assert effect.place(120, 90, scale=(ratio, 1)) != effect.place(120, 90, scale=(1, ratio))


def strided(layer):
    """Views with the same values as the layer, by what is special about them."""
    height, width, _ = layer.shape
    wide = numpy.zeros((2 * height, 3 * width, 4), layer.dtype)
    wide[::2, ::3] = layer
    gaps = numpy.zeros((height, width + 5, 4), layer.dtype)
    gaps[:, 2:-3] = layer
    planes = numpy.ascontiguousarray(layer.transpose(2, 0, 1))
    five = numpy.zeros((height, width, 5), layer.dtype)
    five[..., 1:] = layer
    unaligned = numpy.zeros(layer.nbytes + 1, numpy.uint8)[1:].view(layer.dtype).reshape(layer.shape)
    unaligned[...] = layer
    return {
        "gaps between rows": gaps[:, 2:-3],
        "rows from the bottom": layer[::-1].copy()[::-1],
        "columns from the right": layer[:, ::-1].copy()[:, ::-1],
        "channels from alpha on": layer[..., ::-1].copy()[..., ::-1],
        "every third column of every second row": wide[::2, ::3],
        "planes": planes.transpose(1, 2, 0),
        "columns first": numpy.asfortranarray(layer),
        "a fifth channel": five[..., 1:],
        "at an odd address": unaligned,
        "a memoryview": memoryview(layer),
    }


def test_every_stride_is_read(effect):
    for layer in (disc8(), disc_float()):
        expected = effect.render(layer).array
        for name, view in strided(layer).items():
            assert same(numpy.asarray(view), layer), name
            assert same(effect.render(view).array, expected), name


def test_every_stride_is_written(effect):
    for layer in (disc8(), disc_float()):
        expected = effect.render(layer, canvas="layer")
        for name, view in strided(layer).items():
            numpy.asarray(view)[...] = layer
            array = numpy.asarray(view)
            whole = array if array.base is None or not isinstance(array.base, numpy.ndarray) else array.base
            # Also where the layer is the target.
            assert effect.render_into(view, view, canvas="layer") == expected.place
            assert same(array, expected.array), name
            # Around the view everything is still zero.
            array[...] = 0
            assert not whole.any(), name


def test_repeated_rows_and_pixels(effect):
    row = disc8()[40]
    repeated = numpy.broadcast_to(row, (30, *row.shape))
    assert repeated.strides[0] == 0
    assert same(effect.render(repeated).array, effect.render(repeated.copy()).array)
    pixel = numpy.broadcast_to(numpy.array([9, 8, 7, 255], numpy.uint8), (20, 30, 4))
    assert same(effect.render(pixel).array, effect.render(pixel.copy()).array)
    # Rows that overlap in memory can be read.
    overlapping = numpy.lib.stride_tricks.as_strided(disc8().ravel(), (20, 30, 4), (8, 4, 1))
    assert same(effect.render(overlapping).array, effect.render(overlapping.copy()).array)


def test_the_array_is_the_pictures_memory(effect):
    picture = effect.render(disc8())
    array = picture.array
    assert array.flags.writeable and not array.flags.owndata
    array[3, 4] = (1, 2, 3, 4)
    assert picture.array[3, 4].tolist() == [1, 2, 3, 4]
    assert numpy.shares_memory(array, picture.array) and numpy.shares_memory(array, numpy.asarray(picture))
    assert memoryview(picture).format == "B" and memoryview(picture).shape == array.shape
    kept = array.copy()
    del picture
    effect.render(disc8())
    assert same(array, kept)
    # A picture can be the layer of the next frame.
    assert effect.render(effect.render(disc_float())).array.dtype == numpy.float32


def test_a_target_of_the_size_of_place(effect):
    for layer in (disc8(), disc_float()):
        place = effect.place(120, 90)
        target = numpy.full((place.height, place.width, 4), 7, layer.dtype)
        assert effect.render_into(layer, target) == place
        picture = effect.render(layer)
        assert picture.place == place and same(target, picture.array)
        assert isinstance(place, umbrant.Rectangle) and place.left <= 0 < 120 <= place.right


@pytest.mark.parametrize("shape", [(0, 0, 4), (0, 7, 4), (7, 0, 4)])
def test_layers_without_pixels(effect, shape):
    picture = effect.render(numpy.zeros(shape, numpy.float32))
    assert picture.array.shape == shape and picture.array.dtype == numpy.float32
    target = numpy.zeros(shape, numpy.uint8)
    effect.render_into(target, target, canvas="layer")


def test_values_of_a_frame(effect):
    values = effect.current_values()
    expected = effect.render(disc8()).array
    effect["style/distance"] = 5
    assert same(effect.render(disc8(), values=values).array, expected)
    changed = values.copy()
    changed["style/distance"] = 5
    assert values["style/distance"] == 40 and changed["style/distance"] == 5
    assert same(effect.render(disc8(), values=changed).array, effect.render(disc8()).array)
    assert effect.place(120, 90, values=values) != effect.place(120, 90)
    # Of another effect, which is gone.
    assert same(umbrant.Effect(renderer="cpu").render(disc8(), values=values).array, expected)


def test_a_colour_above_one(effect):
    effect["style/color"] = (2.5, 0.5, 0)
    layer = disc_float()
    layer[..., :3] = 0
    picture = effect.render(layer).array
    assert picture[..., 0].max() == pytest.approx(2.5, rel=1e-3)
    assert effect["style/color"] == "#ff8000"
