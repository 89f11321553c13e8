# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Renders long, soft shadows of images with transparency, from array to array.

    import umbrant

    effect = umbrant.Effect()
    effect["style/distance"] = 80
    picture = effect.render(layer)          # a numpy array of height x width x 4, uint8 or float32
    picture.array, picture.place            # the layer with its shadow, and the rectangle that it covers

The pixels are those that the program `umbrant render` writes with the same parameters. Every exception is an
umbrant.Error with one sentence about what is wrong.
"""

import atexit

from umbrant import _umbrant
from umbrant._effect import Effect
from umbrant._errors import (
    ArgumentTypeError,
    EffectFailedError,
    Error,
    FileError,
    InternalError,
    ModuleError,
    UnknownParameterError,
    UsageError,
)
from umbrant._records import Parameter, Rectangle
from umbrant._umbrant import Picture
from umbrant._umbrant import version as __version__
from umbrant._values import Values

__all__ = [
    "ArgumentTypeError",
    "Effect",
    "EffectFailedError",
    "Error",
    "FileError",
    "InternalError",
    "ModuleError",
    "Parameter",
    "Picture",
    "Rectangle",
    "UnknownParameterError",
    "UsageError",
    "Values",
    "__version__",
]

for _each in (Effect, Values, Parameter, Rectangle):
    _each.__module__ = "umbrant"
del _each

# Threads that nobody waits for may still draw when the process ends. They finish their frame and draw no other.
atexit.register(_umbrant.end)
