# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Failures and messages of the effect itself: those of a module that fails as it is told to, of tests/modules."""

import os
import pathlib

import pytest
from conftest import disc8

import umbrant

LAYER = disc8(12, 9)


def painter(message=None):
    return umbrant.Effect(pathlib.Path(os.environ["TEST_MODULES"]) / "painter.so", renderer="cpu", message=message)


@pytest.mark.parametrize(
    "flaw, sentence",
    [
        ("error-with-message", "No paint 4"),
        ("pre-render-error", ""),
        ("throw", ""),
        ("too-large", "requests an image larger than 30000 x 30000 pixels"),
    ],
)
def test_the_effect_fails(flaw, sentence):
    effect = painter()
    effect["flaw"] = flaw
    target = LAYER.copy()
    for call in (lambda: effect.render(LAYER), lambda: effect.render_into(LAYER, target, canvas="layer")):
        with pytest.raises(umbrant.EffectFailedError) as caught:
            call()
        assert sentence in str(caught.value) and caught.value.code == 1
    assert (target == LAYER).all()
    effect["flaw"] = "none"
    effect.render(LAYER)


def test_a_message_is_handed_on():
    said = []
    effect = painter(said.append)
    effect.render(LAYER)
    assert said == []
    effect["flaw"] = "long-message"
    effect.render(LAYER)
    effect.render_into(LAYER, LAYER.copy(), canvas="layer")
    assert len(said) == 2 and said[0].startswith("mmmm") and said[0] == said[1]


def test_a_message_of_a_frame_that_nobody_asked_for_is_not_kept():
    silent, said = painter(), []
    silent["flaw"] = "long-message"
    silent.render(LAYER)
    painter(said.append).render(LAYER)
    assert said == []


def test_an_error_of_the_function_for_messages_reaches_the_caller():
    def refuse(text):
        raise ZeroDivisionError

    effect = painter(refuse)
    effect["flaw"] = "long-message"
    with pytest.raises(ZeroDivisionError):
        effect.render(LAYER)


def test_values_of_another_module():
    values = umbrant.Effect(renderer="cpu").current_values()
    with pytest.raises(umbrant.UsageError, match="^the values belong to an effect with other parameters"):
        painter().render(LAYER, values=values)
