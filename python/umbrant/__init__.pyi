# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
# What the package offers, for checkers of types and for editors. tests/python compares it with the package.

import os
from collections.abc import Callable, Iterator, Mapping, Sequence
from dataclasses import dataclass
from fractions import Fraction
from typing import Any, Literal, NamedTuple, Union

import numpy
from numpy.typing import NDArray

__version__: str

# Height x width x 4 values, uint8 or float32.
_Pixels = Union[NDArray[numpy.uint8], NDArray[numpy.float32], memoryview]
_Number = Union[int, float, Fraction]
_Value = Union[str, bool, _Number, Sequence[_Number], NDArray[Any]]
_Canvas = Literal["grow", "layer"]
_Kind = Literal[
    "group", "integer", "number", "angle", "check box", "popup", "color", "point", "3D point", "layer", "button", "other"
]

class Error(RuntimeError):
    code: int

class EffectFailedError(Error): ...
class UsageError(Error, ValueError): ...
class ArgumentTypeError(UsageError, TypeError): ...
class UnknownParameterError(UsageError, KeyError): ...
class FileError(Error, OSError): ...
class ModuleError(Error): ...
class InternalError(Error): ...

class Rectangle(NamedTuple):
    left: int
    top: int
    right: int
    bottom: int
    @property
    def width(self) -> int: ...
    @property
    def height(self) -> int: ...

@dataclass(frozen=True)
class Parameter:
    index: int
    path: str
    name: str
    kind: _Kind
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
    items: tuple[str, ...]
    item_names: tuple[str, ...]
    default_text: str
    default_numbers: tuple[float, ...]
    description: str

class Picture:
    @property
    def array(self) -> NDArray[Any]: ...
    @property
    def place(self) -> Rectangle: ...
    @property
    def width(self) -> int: ...
    @property
    def height(self) -> int: ...

class Values:
    def __getitem__(self, path: str | int) -> int | float | bool | str: ...
    def __setitem__(self, path: str | int, value: _Value) -> None: ...
    def text(self, path: str | int) -> str: ...
    def update(self, values: Mapping[str, _Value]) -> None: ...
    def copy(self) -> Values: ...
    def __copy__(self) -> Values: ...
    def __deepcopy__(self, memo: dict[int, Any]) -> Values: ...

class Effect:
    def __init__(
        self,
        module: str | bytes | os.PathLike[str] | None = None,
        *,
        renderer: Literal["auto", "gl", "cpu"] = "auto",
        collapsed: bool = False,
        message: Callable[[str], object] | None = None,
    ) -> None: ...
    def __getitem__(self, path: str | int) -> int | float | bool | str: ...
    def __setitem__(self, path: str | int, value: _Value) -> None: ...
    def __contains__(self, path: object) -> bool: ...
    def __iter__(self) -> Iterator[str]: ...
    def __len__(self) -> int: ...
    def text(self, path: str | int) -> str: ...
    def update(self, values: Mapping[str, _Value]) -> None: ...
    def keys(self) -> list[str]: ...
    def items(self) -> list[tuple[str, int | float | bool | str]]: ...
    def reset(self) -> None: ...
    def apply_preset(self, json: str) -> None: ...
    def load_preset(self, file: str | bytes | os.PathLike[str]) -> None: ...
    def preset_text(self) -> str: ...
    def current_values(self) -> Values: ...
    def parameters(self) -> list[Parameter]: ...
    def find(self, path: str | int) -> Parameter: ...
    def render(
        self,
        layer: _Pixels,
        *,
        texture: _Pixels | None = None,
        texture_at: tuple[float, float] = (0, 0),
        canvas: _Canvas = "grow",
        seconds: float = 0,
        rate: _Number = 24,
        zero_frame: float = 0,
        downsample: int = 1,
        scale: _Number | tuple[_Number, _Number] = 1,
        layer_size: tuple[int, int] | None = None,
        pixel_aspect: _Number = 1,
        values: Values | None = None,
    ) -> Picture: ...
    def render_into(
        self,
        layer: _Pixels,
        target: _Pixels,
        *,
        texture: _Pixels | None = None,
        texture_at: tuple[float, float] = (0, 0),
        canvas: _Canvas = "grow",
        seconds: float = 0,
        rate: _Number = 24,
        zero_frame: float = 0,
        downsample: int = 1,
        scale: _Number | tuple[_Number, _Number] = 1,
        layer_size: tuple[int, int] | None = None,
        pixel_aspect: _Number = 1,
        values: Values | None = None,
    ) -> Rectangle: ...
    def place(
        self,
        width: int,
        height: int,
        *,
        texture: _Pixels | None = None,
        texture_at: tuple[float, float] = (0, 0),
        canvas: _Canvas = "grow",
        seconds: float = 0,
        rate: _Number = 24,
        zero_frame: float = 0,
        downsample: int = 1,
        scale: _Number | tuple[_Number, _Number] = 1,
        layer_size: tuple[int, int] | None = None,
        pixel_aspect: _Number = 1,
        values: Values | None = None,
    ) -> Rectangle: ...
    @property
    def name(self) -> str: ...
    @property
    def module_file(self) -> str: ...
    @property
    def renderer(self) -> Literal["gl", "cpu"]: ...
    @property
    def renderer_text(self) -> str: ...
