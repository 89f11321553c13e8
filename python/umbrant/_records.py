# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Records that the package returns."""

import collections
import dataclasses


class Rectangle(collections.namedtuple("Rectangle", ["left", "top", "right", "bottom"])):
    """A rectangle in pixels of the layer, whose top-left corner is (0, 0); right and bottom are exclusive."""

    __slots__ = ()

    @property
    def width(self):
        """Right minus left."""
        return self.right - self.left

    @property
    def height(self):
        """Bottom minus top."""
        return self.bottom - self.top


@dataclasses.dataclass(frozen=True)
class Parameter:
    """A row of the effect's panel.

    index: its position in the panel; 17 and "#17" name row 17.
    path: "style/distance"; empty for a row that only has an index.
    name: as the panel shows it.
    kind: "group", "integer", "number", "angle" (degrees), "check box", "popup", "color", "point" ("x,y" in pixels of the
        full-size layer, or "x%,y%" of its size), "3D point", "layer", "button" or "other".
    has_value: whether it can be set.
    can_vary: whether a preset may have keyframes for it.
    is_hidden: whether the panel hides it with the current values.
    is_percent: whether its numbers are percentages.
    precision: decimals that the panel shows, for "number".
    depth: number of enclosing groups.
    minimum, maximum: the valid range of "integer" and "number".
    slider_minimum, slider_maximum: the range of the panel's slider, which may be larger.
    items: of a "popup", the texts that it can be set to; an empty text is a separator line.
    item_names: of a "popup", as the panel shows them.
    default_text: the default as a text; empty for a row without a value.
    default_numbers: the default as numbers: red, green and blue from 0 to 255 for "color", x and y in percent of the
        layer's size for "point", the item's number, from 1, for "popup", 0 or 1 for "check box".
    description: what it does to the picture, in English sentences; empty for a row without a path.
    """

    index: int
    path: str
    name: str
    kind: str
    has_value: bool
    can_vary: bool
    is_hidden: bool
    is_percent: bool
    precision: int
    depth: int
    minimum: float
    maximum: float
    slider_minimum: float
    slider_maximum: float
    items: tuple
    item_names: tuple
    default_text: str
    default_numbers: tuple
    description: str
