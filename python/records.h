// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The library's records as those of umbrant/_records.py.

#include <pybind11/pybind11.h>
#include <umbrant/image.h>
#include <umbrant/parameter.h>

#include <string_view>

namespace umbrant::python {

/// A str, also of bytes that are not UTF-8.
pybind11::str StrOf(std::string_view text);

/// A umbrant.Rectangle.
pybind11::object RectangleOf(const Rectangle& place);

/// A umbrant.Parameter.
pybind11::object ParameterOf(const Parameter& parameter);

}  // namespace umbrant::python
