# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
"""The exceptions. `code` is the exit code that the program `umbrant` has for the same failure."""


class Error(RuntimeError):
    """Base of all exceptions of this package. Its text is one sentence: what failed, why, and what would work.

    `code` is the program's exit code for such a failure, from 1 to 5. A call that raises has changed nothing.
    """

    code = 5

    # Also where a class derives from KeyError, whose text is in quotation marks.
    __str__ = RuntimeError.__str__


class EffectFailedError(Error):
    """The effect returned an error, or OpenGL cannot be used."""

    code = 1


class UsageError(Error, ValueError):
    """A wrong argument or value; the sentence names the range or the closest match."""

    code = 2


class ArgumentTypeError(UsageError, TypeError):
    """An argument of a type that cannot be used, such as a list instead of an array."""


class UnknownParameterError(UsageError, KeyError):
    """The effect has no parameter of this path; the sentence suggests the closest ones."""


class FileError(Error, OSError):
    """A file cannot be read."""

    code = 3


class ModuleError(Error):
    """The effect's module cannot be found or loaded."""

    code = 4


class InternalError(Error):
    """There is not enough memory, or the system refused a thread."""

    code = 5


BY_CODE = {each.code: each for each in (EffectFailedError, UsageError, FileError, ModuleError, InternalError)}

for _each in (ArgumentTypeError, UnknownParameterError, Error, *BY_CODE.values()):
    _each.__module__ = "umbrant"
