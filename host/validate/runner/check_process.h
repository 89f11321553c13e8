// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Processes for checks, so that a crash, a hang or a call of exit() is a result like any other: whole checks run in a
// new copy of the program, their parts in forks of it (host/validate/runner/processes.h).

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "host/process/child_process.h"
#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// A child process that was started and has not been waited for.
struct Child {
    std::unique_ptr<ChildProcess> process{};  ///< null when it could not be started
    int results = -1;                         ///< the reading end of its result's pipe
    std::string output;                       ///< a file with what it printed
    std::string received;                     ///< the result so far
    long long deadline = 0;                   ///< milliseconds of the steady clock
    ProcessEnd end{};
    bool timedOut = false;
};

/// A child's deadline so many milliseconds from now.
long long DeadlineIn(int milliseconds);

/// Waits for the first of the children to end, or to pass its deadline (it is then killed), and gives its place.
std::size_t WaitForOne(std::vector<Child>& children);

/// The result that a child left, or what its end means when it left none.
CheckResult ResultOf(const Child& child, const std::string& what);

/// Starts a copy of this program with these arguments and additions to the environment. The option `--result-fd N` is
/// added. Its two outputs go to the file `output`. `process` is null when it cannot be started.
Child StartCopy(std::vector<std::string> arguments, const std::vector<std::string>& environment,
                const std::string& output, int timeoutMilliseconds);

/// Writes a result where StartCopy's caller waits for it.
void SendResult(int descriptor, const CheckResult& result);

}  // namespace umbrant::host
