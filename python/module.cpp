// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The extension module umbrant._umbrant. Users see the package around it, in the folder umbrant.

#include <pybind11/pybind11.h>
#include <umbrant/effect.h>

#include "python/core_effect.h"
#include "python/errors.h"
#include "python/picture.h"

PYBIND11_MODULE(_umbrant, module) {
    using namespace umbrant::python;
    pybind11::options options;
    options.disable_function_signatures();
    module.doc() = "What umbrant's Python code calls of the library; no interface of its own.";
    module.attr("version") = umbrant::Version();
    TranslateErrors();
    AddPicture(module);
    AddFrameOptions(module);
    AddValues(module);
    AddEffect(module);
}
