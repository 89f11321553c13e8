// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Calls to the host that must not let an exception through: in destructors, which may run while another exception is
// being handled, and between several things that must all be given back. A host's function throws only when the host
// itself is faulty; the module then returns an error and keeps nothing.

namespace umbrant::effect {

/// Calls `action` and drops what it throws.
template <typename Action>
void WithoutThrowing(Action action) noexcept {
    try {
        action();
    } catch (...) {
        // There is no one to report to: the command's result is already decided.
    }
}

/// Calls both, `second` also when `first` throws. What is thrown first leaves this function.
template <typename First, typename Second>
void RunBoth(First first, Second second) {
    try {
        first();
    } catch (...) {
        WithoutThrowing(second);
        throw;
    }
    second();
}

}  // namespace umbrant::effect
