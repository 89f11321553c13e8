// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// umbrant.Picture: an image that the effect drew, with its rectangle.

#include <pybind11/pybind11.h>

namespace umbrant::python {

void AddPicture(pybind11::module_& module);

}  // namespace umbrant::python
