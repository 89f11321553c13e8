# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""Effect, the package's main class."""

import os

from umbrant import _umbrant
from umbrant._arguments import choice, encoded, frame_options, integer, type_name
from umbrant._errors import ArgumentTypeError, UsageError
from umbrant._values import Values, ValueTable, path_of

RENDERERS = ("auto", "gl", "cpu")


def _file(name, value):
    """A file's path as the system has it."""
    try:
        path = os.fsencode(value)
    except (TypeError, UnicodeEncodeError):
        raise ArgumentTypeError(f"{name} is {value!r}; it must be the path of a file") from None
    if b"\0" in path:
        raise UsageError(f"{name} is {value!r}; the path of a file has no null character")
    return path


def _core_of(values):
    if values is None:
        return None
    if isinstance(values, Values):
        return values._core
    raise ArgumentTypeError(f"values is of the type '{type_name(values)}'; it must be umbrant.Values, as "
                            "Effect.current_values() returns them")  # fmt: skip


class Effect(ValueTable):
    """An instance of the effect with its parameters, at their defaults.

        effect = umbrant.Effect()
        effect["style/distance"] = 80
        picture = effect.render(layer)

    module: the file of the effect's module. None: the environment variable UMBRANT_MODULE, else the installed one.
    renderer: "gl", the GPU renderer; "cpu", the CPU renderer; "auto": UMBRANT_RENDERER, else "gl" where OpenGL is
        hardware, else "cpu".
    collapsed: presents layers with "Collapse Transformations" on; radial shadows then grow only by their softness.
    message: called with a str when the effect returned a message with a successful frame (rare), on the thread that drew
        it, after the frame.

    `effect[path]` reads and sets a parameter: a path or a row's index. A value is a text, as `umbrant render --set` takes
    it; a number; True or False; the three numbers of a color, red, green and blue, where 1 is 255 in 8 bits; or the two
    numbers of a point, in pixels of the full-size layer. It is read as int, float or bool where the row is a whole
    number, a number (also an angle, in degrees) or a check box, else as the text. Of a parameter with keyframes this is
    the constant value; setting removes the keyframes. `for path in effect` lists the paths that have a value.

    Every method may be called on any thread, by several at a time; other Python threads run while the effect draws.
    Effects with the CPU renderer work in forked processes. Cannot be pickled.

    Raises ModuleError when there is no module, UsageError for a wrong argument, EffectFailedError when the effect refuses
    to be set up, InternalError when the system refuses a thread.
    """

    def __init__(self, module=None, *, renderer="auto", collapsed=False, message=None):
        if message is not None and not callable(message):
            raise ArgumentTypeError(f"message is of the type '{type_name(message)}'; it must be callable, or None")
        file = b"" if module is None else _file("module", module)
        if module is not None and not file:
            raise UsageError("module is empty; it must be the path of a file, or None")
        self._message = message
        self._rows = None
        super().__init__(_umbrant.Effect(file, choice("renderer", renderer, RENDERERS), bool(collapsed)), self._row_kinds)

    def _row_kinds(self):
        if self._rows is None:
            rows = self.parameters()
            self._rows = {encoded(row.path): row.kind for row in rows} | {b"#%d" % row.index: row.kind for row in rows}
        return self._rows

    def __iter__(self):
        return iter(self.keys())

    def __len__(self):
        return len(self.keys())

    def __contains__(self, path):
        try:
            self._core.get(path_of(path))
        except UsageError:
            return False
        return True

    def keys(self):
        """Returns the paths of all parameters that have a value, in the order of the panel."""
        return [row.path for row in self.parameters() if row.has_value and row.path]

    def items(self):
        """Returns the pairs of path and value of all parameters that have a value."""
        return [(path, self[path]) for path in self.keys()]

    def reset(self):
        """Sets all parameters to their defaults and removes all keyframes."""
        self._core.reset()

    def apply_preset(self, json):
        """Sets the values and keyframes of a preset, a text; other parameters do not change. Raises UsageError with all
        mistakes, their lines and columns."""
        if not isinstance(json, str):
            raise ArgumentTypeError(f"the preset is of the type '{type_name(json)}'; it must be a text. "
                                    "load_preset() takes a file")  # fmt: skip
        self._core.apply_preset(encoded(json))

    def load_preset(self, file):
        """Does the same with a file. Raises FileError when it cannot be read as JSON."""
        self._core.load_preset(_file("the preset", file))

    def preset_text(self):
        """Returns values and keyframes as a preset."""
        return self._core.preset_text()

    def current_values(self):
        """Returns the values and keyframes of this moment as umbrant.Values, to be changed and given to frames."""
        return Values(self._core.current_values(), self._row_kinds)

    def parameters(self):
        """Returns all rows of the panel in its order, a list of umbrant.Parameter."""
        return self._core.parameters()

    def find(self, path):
        """Returns the row of a path or an index, a umbrant.Parameter. Raises UnknownParameterError."""
        name = path_of(path)
        try:
            return self._core.find(name)
        except UsageError as wrong:
            self._explain(name, wrong)
            raise

    def render(self, layer, *, texture=None, texture_at=(0, 0), canvas="grow", seconds=0, rate=24, zero_frame=0,
               downsample=1, scale=1, layer_size=None, pixel_aspect=1, values=None):  # fmt: skip
        """Draws one frame and returns it as a umbrant.Picture of the layer's type.

        layer: an array of height x width x 4 values, uint8 (0 to 255) or float32 (0 to 1): red, green, blue and straight
            alpha. numpy.ndarray, or any object with the buffer protocol; any strides. Each side is from 0 to 30000.
            Arrays whose rows have no gaps between pixels are read where they are, others are copied. The pixels must not
            change during the call.
        texture: the texture of the shadow, such an array of any size and either type, or None.
        texture_at: x and y of its top-left corner, in pixels of the full-size layer.
        canvas: "grow": the picture contains the layer and its shadow; "layer": it has the layer's rectangle.
        seconds: the time, for keyframes and for the effect's clock; from -86400 to 86400.
        rate: frames per second, such as 24 or fractions.Fraction(30000, 1001).
        zero_frame: the frame at 0 s, for keyframes whose times are frames.
        downsample: the resolution of the given layer and texture is 1/downsample, from 1 to 64. Points and distances are
            still in pixels of the full-size layer, results in pixels of the given one.
        scale: their resolution as another ratio, fractions.Fraction(2, 3), or a pair of ratios along x and y. Multiplied
            by 1/downsample; the product is from 1/64 to 1.
        layer_size: width and height of the full-size layer; None: the given size divided by its resolution.
        pixel_aspect: width of a pixel over its height, from 1/100 to 100, for effects that ask for it.
        values: umbrant.Values instead of the effect's own.

        Raises UsageError for an invalid argument, EffectFailedError with the effect's message, InternalError or
        MemoryError when there is not enough memory.
        """
        options = frame_options(canvas, texture_at, downsample, scale, layer_size, seconds, rate, zero_frame, pixel_aspect)
        picture = self._core.render(layer, options, texture, _core_of(values))
        self._report()
        return picture

    def render_into(self, layer, target, *, texture=None, texture_at=(0, 0), canvas="grow", seconds=0, rate=24,
                    zero_frame=0, downsample=1, scale=1, layer_size=None, pixel_aspect=1, values=None):  # fmt: skip
        """Draws one frame into an array and returns its umbrant.Rectangle; arguments and errors are those of `render`.

        target: an array that can be written to, of the layer's type and of the size that `place` returns, which for
            canvas="layer" is the layer's. Any strides; it may be the layer itself. After an error it is unchanged.
        """
        options = frame_options(canvas, texture_at, downsample, scale, layer_size, seconds, rate, zero_frame, pixel_aspect)
        place = self._core.render_into(layer, target, options, texture, _core_of(values))
        self._report()
        return place

    def place(self, width, height, *, texture=None, texture_at=(0, 0), canvas="grow", seconds=0, rate=24, zero_frame=0,
              downsample=1, scale=1, layer_size=None, pixel_aspect=1, values=None):  # fmt: skip
        """Returns the umbrant.Rectangle that `render` would cover for a layer of this size in pixels, without drawing and
        without reading a pixel. Of a texture only the size is used. Arguments and errors are those of `render`."""
        options = frame_options(canvas, texture_at, downsample, scale, layer_size, seconds, rate, zero_frame, pixel_aspect)
        size = integer("the width", width), integer("the height", height)
        return self._core.place(*size, options, texture, _core_of(values))

    @property
    def name(self):
        """The effect's name, as its module registers it."""
        return self._core.name()

    @property
    def module_file(self):
        """The path of the module's file."""
        return os.fsdecode(self._core.module_file())

    @property
    def renderer(self):
        """"gl" or "cpu"."""
        return "gl" if self._core.uses_opengl() else "cpu"

    @property
    def renderer_text(self):
        """The renderer and the reason: "drawn by the CPU renderer: OpenGL is software, llvmpipe"."""
        return self._core.renderer_text()

    def _report(self):
        if self._message is not None:
            for text in _umbrant.take_messages():
                self._message(text)

    def __repr__(self):
        return f"<umbrant.Effect {self.name!r}, {self.renderer_text}>"

    def __reduce_ex__(self, protocol):
        raise TypeError("effects cannot be pickled; create one in each process and pass Effect.preset_text() to it")
