// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Work without the interpreter's lock, so that other Python threads run at the same time.

#include <cxxabi.h>
#include <pybind11/pybind11.h>

#include <exception>
#include <optional>
#include <type_traits>
#include <utility>

#include "python/call_gate.h"

namespace umbrant::python {

/// Takes the interpreter's lock again. Once the interpreter ends, it ends every other thread that asks for the lock, by
/// unwinding its stack, where destructors would release Python objects without the lock. Such a thread stops here
/// instead, until the process ends.
inline void TakeLock(PyThreadState* state) {
    try {
        PyEval_RestoreThread(state);
    } catch (const abi::__forced_unwind&) {
        WaitForTheEnd();
    }
}

/// Returns what `work` returns, a call of the library, which is made without the lock and must not use Python objects.
template <typename Work>
auto WithoutLock(const Work& work) {
    using Value = decltype(work());
    using Kept = std::conditional_t<std::is_void_v<Value>, bool, Value>;
    std::exception_ptr failure;
    std::optional<Kept> value;
    PyThreadState* state = PyEval_SaveThread();
    try {
        const CallInProgress call;
        if constexpr (std::is_void_v<Value>) {
            work();
        } else {
            value.emplace(work());
        }
    } catch (...) {
        failure = std::current_exception();
    }
    TakeLock(state);
    if (failure) std::rethrow_exception(failure);
    if constexpr (!std::is_void_v<Value>) return std::move(*value);
}

}  // namespace umbrant::python
