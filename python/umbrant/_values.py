# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Values of parameters by path or row: what Effect and Values have in common, and Values."""

from umbrant import _umbrant
from umbrant._arguments import encoded, number, type_name
from umbrant._errors import ArgumentTypeError, UnknownParameterError, UsageError

_READ = {"integer": int, "number": float, "angle": float, "check box": lambda text: text == "on"}


def path_of(key):
    """The library's path of a path or a row."""
    if isinstance(key, str):
        return encoded(key)
    if isinstance(key, int) and not isinstance(key, bool):
        return b"#%d" % key
    raise ArgumentTypeError(f"a parameter is named by its path, such as 'style/distance', or its row, not by {key!r}")


def _numbers(value):
    """The numbers of a sequence, or None for anything else."""
    try:
        return [number("", each) for each in value]
    except (TypeError, ValueError):
        return None


class ValueTable:
    """Reading and setting values in square brackets. `_core` has them; `_kinds` has the kind of each row by its path."""

    def __init__(self, core, kinds):
        self._core = core
        self._kinds = kinds

    def __getitem__(self, path):
        text = self.text(path)
        kind = self._kind(path_of(path))
        return _READ.get(kind, str)(text)

    def __setitem__(self, path, value):
        name = path_of(path)
        try:
            self._set(name, value)
        except UsageError as wrong:
            self._explain(name, wrong)
            raise

    def text(self, path):
        """Returns a value as the text that `umbrant render --set` takes; of a color that was set from numbers, the
        nearest 8-bit one. Raises UnknownParameterError."""
        name = path_of(path)
        try:
            return self._core.get(name)
        except UsageError as wrong:
            self._explain(name, wrong)
            raise

    def update(self, values):
        """Sets each parameter of a mapping of paths (or rows) to values. Those before a wrong one remain set."""
        for path, value in values.items():
            self[path] = value

    def _kind(self, name):
        return self._kinds().get(name, "")

    def _explain(self, name, wrong):
        """Raises UnknownParameterError for a failure whose reason is the path."""
        try:
            self._core.get(name)
        except UsageError:
            raise UnknownParameterError(str(wrong)) from None

    def _set(self, name, value):
        if isinstance(value, str):
            self._core.set_text(name, encoded(value))
        elif isinstance(value, bool) or str(getattr(value, "dtype", "")) == "bool" and not getattr(value, "shape", ()):
            self._core.set_text(name, b"on" if value else b"off")
        elif isinstance(value, (bytes, bytearray, dict, set)) or value is None:
            self._refuse(name, value)
        elif hasattr(value, "__float__") or hasattr(value, "__index__"):
            if not getattr(value, "shape", ()):
                self._core.set_number(name, number("the value", value))
            else:
                self._set_numbers(name, value)
        else:
            self._set_numbers(name, value)

    def _set_numbers(self, name, value):
        numbers = _numbers(value)
        if numbers is None:
            self._refuse(name, value)
        if len(numbers) == 3 and self._kind(name) == "color":
            self._core.set_color(name, *numbers)
        else:
            self._core.set_text(name, ",".join(map(repr, numbers)).encode())

    def _refuse(self, name, value):
        self._core.get(name)
        raise ArgumentTypeError(
            f"the value of '{name.decode()}' is of the type '{type_name(value)}'; it must be a text, a number, a truth "
            "value, or the numbers of a color or a point")


class Values(ValueTable):
    """The values of all parameters at one moment, with their keyframes; Effect.current_values() makes one.

        values = effect.current_values()
        values["style/distance"] = 40
        picture = effect.render(layer, values=values)

    Independent of its effect afterwards: neither sees what is set in the other. Valid for every effect of the same module.
    `values[path]` is read and set as `effect[path]`. Threads may draw with one object while another changes it: a frame
    has the values at the time of the call. Cannot be pickled.
    """

    def __init__(self, core, kinds):
        super().__init__(core, kinds)

    def copy(self):
        """Returns independent values that are equal; takes about a microsecond in the library."""
        return Values(_umbrant.Values(self._core), self._kinds)

    __copy__ = copy

    def __deepcopy__(self, memo):
        return self.copy()

    def __reduce_ex__(self, protocol):
        raise TypeError("values cannot be pickled; pickle a preset, Effect.preset_text(), or the values of paths")
