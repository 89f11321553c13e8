// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The library's calls in progress, so that a process does not end under threads that draw: a driver that is being
// unloaded would crash them. Every function may be called on any thread, without the interpreter's lock.

namespace umbrant::python {

/// Exists for the time of a call of the library. Once the gate is closed, the constructor stops every thread but the
/// one that closed it, until the process ends.
class CallInProgress {
 public:
    CallInProgress();
    ~CallInProgress();
    CallInProgress(const CallInProgress&) = delete;
    CallInProgress& operator=(const CallInProgress&) = delete;
};

/// Closes the gate and returns when no other thread is in a call.
void CloseGate();

/// Lets forked children forget the calls of threads that they do not have. Once in a process, before the first call.
void WatchForks();

/// Stops the calling thread until the process ends.
[[noreturn]] void WaitForTheEnd();

}  // namespace umbrant::python
