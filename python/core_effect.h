// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The library's Effect, Values and FrameOptions as classes of the extension module. umbrant/_effect.py gives them the
// form that users see; arguments of the wrong form end there.

#include <pybind11/pybind11.h>

namespace umbrant::python {

void AddFrameOptions(pybind11::module_& module);
void AddValues(pybind11::module_& module);
void AddEffect(pybind11::module_& module);

}  // namespace umbrant::python
