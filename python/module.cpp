// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The extension module umbrant._umbrant. Users see the package around it, in the folder umbrant.

#include <pybind11/pybind11.h>
#include <umbrant/effect.h>

#include "python/call_gate.h"
#include "python/core_effect.h"
#include "python/errors.h"
#include "python/interpreter_lock.h"
#include "python/picture.h"

namespace {

/// For the interpreter's exit functions. Other threads may still draw then; that of a sub-interpreter is not the end.
void End() {
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) return;
    PyThreadState* state = PyEval_SaveThread();
    umbrant::python::CloseGate();
    umbrant::python::TakeLock(state);
}

}  // namespace

PYBIND11_MODULE(_umbrant, module) {
    using namespace umbrant::python;
    pybind11::options options;
    options.disable_function_signatures();
    module.doc() = "What umbrant's Python code calls of the library; no interface of its own.";
    module.attr("version") = umbrant::Version();
    module.def("end", End);
    WatchForks();
    TranslateErrors();
    AddPicture(module);
    AddFrameOptions(module);
    AddValues(module);
    AddEffect(module);
}
