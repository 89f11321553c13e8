// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Processes for checks, so that a crash, a hang or a call of exit() is a result like any other: whole checks run in a
// new copy of the program, and the parts of a check that is many small runs in forks of its process.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/process/child_process.h"
#include "host/validate/runner/trial.h"

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

/// One small run inside a check.
struct Part {
    std::string name;  ///< begins the findings that its end gives: "with PF_NewWorld refused"
    std::function<void(Trial&)> run;
    std::string repeat{};      ///< options that run this part alone
    int moreMilliseconds = 0;  ///< beyond the usual limit
    bool warnOnly = false;     ///< whatever it finds is worth a warning and no more
};

/// Runs the parts in forks of this process, as many at a time as there are processors, and merges what they find. The
/// module must not have been loaded here, so that every part begins from nothing. In-process trials run them in turn.
void RunParts(Trial& trial, const std::vector<Part>& parts);
/// The same, with the results apart, in the parts' order.
std::vector<CheckResult> RunPartsApart(const Trial& trial, const std::vector<Part>& parts);

/// Runs one part in a fork and gives its result, merged into nothing.
CheckResult RunPart(const Trial& trial, const Part& part);

/// For a process that checks or parts of them run in: it ends with its parent, and its crashes leave no files.
void BecomeChild();

/// The processors that this process may use.
int ProcessorCount();

/// Runs a check's function, its early end included.
CheckResult RunToEnd(const std::function<void(Trial&)>& run, const TrialOptions& options);
