# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""From the arguments of a frame to the library's options. The library checks ranges; this only checks forms."""

import fractions
import math
import numbers
import operator

from umbrant import _umbrant
from umbrant._errors import ArgumentTypeError, UsageError

# What the library's whole numbers can hold.
LARGEST = 2**31 - 1
LARGEST_DENOMINATOR = 1000000


def type_name(value):
    return type(value).__name__


def integer(name, value):
    """A whole number that the library can take."""
    try:
        number = operator.index(value)
    except TypeError:
        raise ArgumentTypeError(f"{name} is of the type '{type_name(value)}'; it must be a whole number") from None
    if abs(number) > LARGEST:
        raise UsageError(f"{name} is {number}; it must be from -{LARGEST} to {LARGEST}")
    return number


def number(name, value):
    """A number as a float; not a text, which float() would read."""
    try:
        if isinstance(value, (str, bytes, bytearray)):
            raise TypeError
        return float(value)
    except (TypeError, ValueError):
        raise ArgumentTypeError(f"{name} is of the type '{type_name(value)}'; it must be a number") from None
    except OverflowError:
        raise UsageError(f"{name} is a whole number beyond the range of float64") from None


def ratio(name, value):
    """Numerator and denominator of a number, such as fractions.Fraction(2, 3); of a float, those of the nearest ratio
    with a denominator up to a million."""
    if type(value) is int:
        return integer(name, value), 1
    if isinstance(value, numbers.Rational):
        exact = fractions.Fraction(int(value.numerator), int(value.denominator))
    else:
        value = number(name, value)
        if not math.isfinite(value):
            raise UsageError(f"{name} is {value}; it must be a finite number")
        exact = fractions.Fraction(value)
    nearest = exact.limit_denominator(LARGEST_DENOMINATOR)
    return integer(f"the numerator of {name}", nearest.numerator), nearest.denominator


def pair(name, value):
    """Two values."""
    if not isinstance(value, (str, bytes)):
        try:
            first, second = value
            return first, second
        except (TypeError, ValueError):
            pass
    raise ArgumentTypeError(f"{name} is {value!r}; it must be a pair")


def choice(name, value, texts):
    """The place of a text among the valid ones."""
    if isinstance(value, str) and value in texts:
        return texts.index(value)
    wanted = ", ".join(f"'{text}'" for text in texts[:-1]) + f" or '{texts[-1]}'"
    kind = UsageError if isinstance(value, str) else ArgumentTypeError
    raise kind(f"{name} is {value!r}; it must be {wanted}")


def encoded(text):
    """A text for the library. Lone surrogates, which no path or value has, stay readable in its sentences."""
    return text.encode("utf-8", "backslashreplace")


def frame_options(canvas, texture_at, downsample, scale, layer_size, seconds, rate, zero_frame, pixel_aspect):
    """The options of Effect.render."""
    options = _umbrant.FrameOptions()
    options.set_canvas(choice("canvas", canvas, ("grow", "layer")) == 1)
    x, y = pair("texture_at", texture_at)
    options.set_texture_at(number("texture_at", x), number("texture_at", y))
    options.set_downsample(integer("downsample", downsample))
    scale_x, scale_y = pair("scale", scale) if isinstance(scale, (tuple, list)) else (scale, scale)
    options.set_scale_x(*ratio("the scale along x", scale_x))
    options.set_scale_y(*ratio("the scale along y", scale_y))
    if layer_size is not None:
        width, height = pair("layer_size", layer_size)
        options.set_layer_size(integer("layer_size", width), integer("layer_size", height))
    options.set_time(number("seconds", seconds), number("zero_frame", zero_frame))
    options.set_rate(*ratio("rate", rate))
    options.set_pixel_aspect(*ratio("pixel_aspect", pixel_aspect))
    return options
