// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The children that run, so that an interruption ends them before the program ends.

namespace umbrant::host {

/// A place among the children that run, for the length of a child's life. Any thread, one for each object.
class RunningChild {
 public:
    /// Takes a place for a child that is about to be started; an interruption waits until it is known. While there is
    /// one, this does not return. When all places are taken, an interruption does not find the child.
    RunningChild();
    ~RunningChild();
    RunningChild(const RunningChild&) = delete;
    RunningChild& operator=(const RunningChild&) = delete;

    /// The child has been started.
    void Begin(int process);
    /// The child has ended or was not started. To be called before it is waited for: its id may then be another's.
    void End();

 private:
    int place_ = -1;
};

/// Ends all children, with their process groups, and waits for them, before the program ends; none is started any more.
/// Any thread.
void EndChildProcesses() noexcept;

}  // namespace umbrant::host
