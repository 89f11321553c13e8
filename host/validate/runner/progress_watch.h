// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Distinguishes a process whose threads all wait for each other from one that is merely slow, whatever else the machine
// does.

#include <functional>

namespace umbrant::host {

/// How a wait ended.
enum class WaitEnd {
    kDone,   ///< what was waited for came
    kStuck,  ///< no other thread of this process has run for a while, nor is any about to
    kLate,   ///< the deadline passed, with threads still at work
};

/// Waits on this thread until `isDone`. Polls, so `isDone` should be cheap.
WaitEnd WaitUnlessStuck(const std::function<bool()>& isDone, int timeoutMilliseconds);

}  // namespace umbrant::host
