# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""What the tests of the Python package share: layers, effects, and the program's images."""

import os
import pathlib
import subprocess

import float_tiff
import numpy
import PIL.Image
import pytest

import umbrant

PROGRAM = os.environ["UMBRANT"]


def disc8(width=120, height=90, seed=7):
    """A disc of noise with a soft edge, uint8."""
    y, x = numpy.mgrid[0:height, 0:width]
    distance = numpy.hypot(x - width / 2, y - height / 2)
    layer = numpy.random.default_rng(seed).integers(0, 256, (height, width, 4), numpy.uint8)
    layer[..., 3] = numpy.clip(255 * (min(width, height) / 3 - distance) / 4 + 128, 0, 255)
    return layer


def disc_float(width=120, height=90, seed=8):
    """The same in float32, with colours outside of 0 to 1 too."""
    layer = disc8(width, height, seed).astype(numpy.float32) / 255
    layer[..., :3] = layer[..., :3] * 3 - 1
    return layer


def save(file, array):
    if array.dtype == numpy.uint8:
        PIL.Image.fromarray(array, "RGBA").save(file)
    else:
        float_tiff.write(file, array)


def load(file):
    if file.suffix == ".png":
        return numpy.asarray(PIL.Image.open(file).convert("RGBA"))
    return float_tiff.read(file)


class Program:
    """The program `umbrant` in a folder."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)

    def render(self, layer, *arguments, texture=None, renderer="cpu"):
        """The image that `umbrant render` writes of a layer."""
        suffix = ".png" if layer.dtype == numpy.uint8 else ".tif"
        save(self.folder / f"in{suffix}", layer)
        options = ["--compression", "none"] if suffix == ".tif" else []
        if texture is not None:
            file = "texture.png" if texture.dtype == numpy.uint8 else "texture.tif"
            save(self.folder / file, texture)
            options += ["--texture", file]
        command = [PROGRAM, "render", f"in{suffix}", "-o", f"out{suffix}", "--renderer", renderer, *options, *arguments]
        done = subprocess.run(command, cwd=self.folder, capture_output=True, text=True)
        assert done.returncode == 0, done.stderr
        return load(self.folder / f"out{suffix}")


@pytest.fixture
def program(tmp_path):
    return Program(tmp_path)


@pytest.fixture
def effect():
    """An effect at its defaults but for a shadow that is small enough to be drawn at once."""
    made = umbrant.Effect(renderer="cpu")
    made.update({"style/distance": 40, "style/softness": 12, "style/color": "#203060"})
    return made


SMALL = ["--set", "style/distance=40", "--set", "style/softness=12", "--set", "style/color=#203060"]
