# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Parameters, presets and values: what is set is read again, and mistakes have the library's sentences."""

import copy
import fractions
import json
import os
import pickle
import subprocess

import numpy
import pytest
from conftest import PROGRAM

import umbrant
from umbrant import _values


@pytest.fixture(params=["effect", "values"])
def table(request, effect):
    return effect if request.param == "effect" else effect.current_values()


@pytest.mark.parametrize(
    "path, value, read, text",
    [
        ("style/distance", 80, 80, "80"),
        ("style/distance", 80.5, 80.5, "80.5"),
        ("style/distance", "80", 80, "80"),
        ("style/distance", numpy.float32(2.5), 2.5, "2.5"),
        ("style/distance", numpy.int64(7), 7, "7"),
        ("style/distance", numpy.array(7.5), 7.5, "7.5"),
        ("style/distance", fractions.Fraction(1, 4), 0.25, "0.25"),
        (17, 12, 12, "12"),
        ("#17", 12, 12, "12"),
        ("style/angle", "1x45", 405, "405"),
        ("style/angle", -30, -30, "-30"),
        ("style/shadow-type", "inner", "inner", "inner"),
        ("style/shadow-type", 3, "radial", "radial"),
        ("style/color", "#203060", "#203060", "#203060"),
        ("style/color", "rebeccapurple", "#663399", "#663399"),
        ("style/color", (1, 0.5, 0), "#ff8000", "#ff8000"),
        ("style/color", [0, 0, 1], "#0000ff", "#0000ff"),
        ("style/color", numpy.array([0, 1, 0], numpy.float32), "#00ff00", "#00ff00"),
        ("style/origin", (10, 20.5), "10,20.5", "10,20.5"),
        ("style/origin", "25%,75%", "25%,75%", "25%,75%"),
    ],
)
def test_what_is_set_is_read(table, path, value, read, text):
    table[path] = value
    assert table[path] == read and type(table[path]) is type(read if isinstance(read, str) else float(read))
    assert table.text(path) == text


class Switch:
    """The library's side of a row that Umbrant 2 does not have."""

    value = "off"

    def get(self, path):
        return self.value

    def set_text(self, path, text):
        self.value = text.decode()


def test_check_boxes():
    table = _values.ValueTable(Switch(), lambda: {b"a/switch": "check box"})
    for value in (True, "off", numpy.bool_(True), False, numpy.array(True), "on"):
        table["a/switch"] = value
        assert table["a/switch"] is (str(value) in ("on", "True"))
        assert table.text("a/switch") == ("on" if table["a/switch"] else "off")


@pytest.mark.parametrize(
    "path, value, sentence",
    [
        ("style/distnce", 80, "there is no parameter 'style/distnce'; closest: 'style/distance'"),
        ("#999", 80, "there is no parameter '#999'; the effect has #0 to #"),
        (-1, 80, "there is no parameter '#-1'"),
        ("", 80, "there is no parameter ''"),
        ("style/dist\ud800", 80, "there is no parameter 'style/dist"),
        ("style/distance\0", 80, "there is no parameter 'style/distance"),
    ],
)
def test_unknown_paths(table, path, value, sentence):
    for call in (lambda: table.__setitem__(path, value), lambda: table[path], lambda: table.text(path)):
        with pytest.raises(umbrant.UnknownParameterError) as caught:
            call()
        assert str(caught.value).startswith(sentence)
        assert isinstance(caught.value, (KeyError, ValueError)) and caught.value.code == 2


@pytest.mark.parametrize(
    "path, value",
    [
        ("style/distance", "far"),
        ("style/distance", True),
        ("style/distance", (1, 2, 3)),
        ("style/distance", 99999),
        ("style/distance", -1),
        ("style/distance", float("nan")),
        ("style/distance", float("inf")),
        ("style/distance", 10**400),
        ("style/shadow-type", "inward"),
        ("style/shadow-type", 99),
        ("style/shadow-type", 1.5),
        ("style/color", "#12345"),
        ("style/color", (1, 2)),
        ("style/color", (1, 2, float("nan"))),
        ("style/color", (1e6, 0, 0)),
        ("style/color", 3),
        ("style/origin", (1, 2, 3)),
        ("style/origin", (float("inf"), 0)),
        ("style/origin", 1),
        ("style", 1),
        ("texture/layer", "file.png"),
    ],
)
def test_values_that_are_refused(table, path, value):
    before = table.text("style/distance"), table.text("style/color"), table.text("style/shadow-type")
    with pytest.raises(umbrant.UsageError) as caught:
        table[path] = value
    assert not isinstance(caught.value, (umbrant.UnknownParameterError, TypeError))
    sentence = str(caught.value)
    assert sentence and "\n" not in sentence and len(sentence) < 400, sentence
    assert (table.text("style/distance"), table.text("style/color"), table.text("style/shadow-type")) == before


@pytest.mark.parametrize("value", [None, b"80", {}, {1}, object(), 1j, ["far"], [None], (1, "2")])
def test_values_of_wrong_types(table, value):
    with pytest.raises(umbrant.ArgumentTypeError, match="^the value of 'style/distance' is of the type '"):
        table["style/distance"] = value
    with pytest.raises(umbrant.UnknownParameterError, match="closest: 'style/distance'"):
        table["style/distnce"] = value


@pytest.mark.parametrize("path", [None, 1.5, True, b"style/distance", ("style", "distance"), object()])
def test_paths_of_wrong_types(table, path):
    for call in (lambda: table[path], lambda: table.__setitem__(path, 1), lambda: table.text(path)):
        with pytest.raises(umbrant.ArgumentTypeError, match="^a parameter is named by its path, such as"):
            call()


def test_the_sentence_is_the_programs(effect):
    for setting, call in {
        "style/distance=far": lambda: effect.__setitem__("style/distance", "far"),
        "style/distnce=1": lambda: effect.__setitem__("style/distnce", 1),
        "style/distance=99999": lambda: effect.__setitem__("style/distance", 99999),
    }.items():
        with pytest.raises(umbrant.UsageError) as caught:
            call()
        done = subprocess.run([PROGRAM, "params", "--values", "--json", "--set", setting], capture_output=True, text=True)
        assert done.returncode == caught.value.code == 2
        assert str(caught.value) in done.stderr


def test_rows(effect):
    rows = effect.parameters()
    listed = json.loads(subprocess.run([PROGRAM, "params", "--json"], capture_output=True, text=True, check=True).stdout)
    named = [row["path"] for row in listed if row["path"]]
    assert [row.path for row in rows if row.path] == named
    distance = effect.find("style/distance")
    assert distance == effect.find(17) == rows[[row.path for row in rows].index("style/distance")]
    assert (distance.kind, distance.minimum, distance.maximum, distance.slider_maximum) == ("number", 0, 2000, 200)
    assert (distance.default_text, distance.default_numbers) == ("250", (250,))
    kind = effect.find("style/shadow-type")
    assert (kind.kind, kind.items, kind.can_vary) == ("popup", ("normal", "inner", "radial"), False)
    with pytest.raises(umbrant.UnknownParameterError, match="closest"):
        effect.find("style/distnce")
    with pytest.raises(AttributeError):
        distance.minimum = 5


def test_an_effect_as_a_mapping(effect):
    assert list(effect) == effect.keys() and len(effect) == len(effect.keys()) > 20
    assert "style/distance" in effect and "style/distnce" not in effect and 17 in effect
    assert dict(effect) == dict(effect.items()) and dict(effect)["style/distance"] == 40
    other = umbrant.Effect(renderer="cpu")
    settable = {path: value for path, value in effect.items() if path.startswith(("style", "opacity"))}
    other.update(settable)
    assert {path: other[path] for path in settable} == settable
    effect.reset()
    assert effect["style/distance"] == 250


def test_presets(effect, tmp_path):
    text = effect.preset_text()
    other = umbrant.Effect(renderer="cpu")
    other.apply_preset(text)
    assert other["style/distance"] == 40 and other.preset_text() == text
    for file in (tmp_path / "a.json", str(tmp_path / "b.json"), os.fsencode(tmp_path / "c.json")):
        with open(file, "w") as out:
            out.write(text)
        other.reset()
        other.load_preset(file)
        assert other["style/distance"] == 40


def test_presets_that_are_wrong(effect, tmp_path):
    with pytest.raises(umbrant.FileError) as caught:
        effect.load_preset(tmp_path / "none.json")
    assert "none.json" in str(caught.value) and isinstance(caught.value, OSError) and caught.value.code == 3
    with pytest.raises(umbrant.FileError):
        effect.load_preset(os.fsencode(tmp_path) + b"/\xff.json")
    with pytest.raises(umbrant.UsageError, match="closest: 'style/distance'"):
        effect.apply_preset('{"version": 1, "values": {"style/distnce": 5}}')
    for json_text in ("", "{", "[]", "null", "\ud800", "\0"):
        with pytest.raises(umbrant.UsageError):
            effect.apply_preset(json_text)
    for value in (None, b"{}", {}, 5):
        with pytest.raises(umbrant.ArgumentTypeError, match="^the preset is of the type"):
            effect.apply_preset(value)
    for value in (None, 1.5, {}, []):
        with pytest.raises(umbrant.ArgumentTypeError, match="it must be the path of a file$"):
            effect.load_preset(value)
    with pytest.raises(umbrant.UsageError, match="no null character"):
        effect.load_preset("a\0b")
    assert effect["style/distance"] == 40


def test_values_are_independent(effect):
    values = effect.current_values()
    twin, deep = copy.copy(values), copy.deepcopy(values)
    twin["style/distance"] = 1
    deep["style/distance"] = 2
    effect["style/distance"] = 3
    assert [each["style/distance"] for each in (values, twin, deep, effect)] == [40, 1, 2, 3]
    del effect
    assert values["style/angle"] == 135


def test_nothing_is_pickled_by_mistake(effect):
    picture = effect.render(numpy.zeros((4, 4, 4), numpy.uint8))
    for thing in (effect, effect.current_values()):
        for act in (pickle.dumps, *([copy.copy, copy.deepcopy] if thing is effect else [])):
            with pytest.raises(TypeError, match="cannot be pickled; "):
                act(thing)
    with pytest.raises(TypeError, match="cannot pickle"):
        pickle.dumps(picture)
    for thing in (picture.place, effect.find(17)):
        assert pickle.loads(pickle.dumps(thing)) == thing
    for error in (umbrant.UsageError("a"), umbrant.FileError("b"), umbrant.UnknownParameterError("c")):
        again = pickle.loads(pickle.dumps(error))
        assert type(again) is type(error) and str(again) == str(error)


def test_descriptions(effect):
    assert effect.find("style/softness").description.startswith("The blur at the end of the shadow, in pixels")
    for parameter in effect.parameters():
        assert bool(parameter.description) == bool(parameter.path), parameter.path
