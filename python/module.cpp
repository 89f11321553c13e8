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

void Fill(pybind11::module_& module) {
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

}  // namespace

// PYBIND11_MODULE with a check before it: pybind11 waits forever for the interpreter's lock where a sub-interpreter is
// the first to initialise it. One that comes later shares what the main interpreter has initialised.
PYBIND11_PLUGIN_IMPL(_umbrant) {
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(
            PyExc_ImportError,
            "umbrant cannot be imported in a sub-interpreter first; import it in the main interpreter before");
        return nullptr;
    }
    PYBIND11_CHECK_PYTHON_VERSION
    PYBIND11_ENSURE_INTERNALS_READY
    static pybind11::module_::module_def definition;
    auto module = pybind11::module_::create_extension_module("_umbrant", nullptr, &definition);
    try {
        Fill(module);
        return module.ptr();
    }
    PYBIND11_CATCH_INIT_EXCEPTIONS
}
