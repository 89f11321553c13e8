// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The parts of a check that is many small runs, each in a fork of the check's process: a crash, a hang or a call of
// exit() is a result like any other.

#include <functional>
#include <string>
#include <vector>

#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// One small run inside a check.
struct SubCheck {
    std::string name;  ///< begins the findings that its end gives: "with PF_NewWorld refused"
    std::function<void(CheckRun&)> run;
    std::string repeat{};      ///< options that run this part alone
    int moreMilliseconds = 0;  ///< beyond the usual limit
    bool warnOnly = false;     ///< whatever it finds is worth a warning and no more
};

/// Runs the parts in forks of this process, as many at a time as there are processors, and merges what they find.
/// The module must not have been loaded here, so that every part begins from nothing. In-process trials run them in
/// turn.
void RunSubChecks(CheckRun& run, const std::vector<SubCheck>& subChecks);
/// The same, with the results apart, in the parts' order.
std::vector<CheckResult> RunSubChecksApart(const CheckRun& run, const std::vector<SubCheck>& subChecks);

/// Runs one part in a fork and gives its result, merged into nothing.
CheckResult RunSubCheck(const CheckRun& run, const SubCheck& part);

/// For a process that checks or parts of them run in: it ends with its parent, and its crashes leave no files.
void BecomeChild();

/// The processors that this process may use.
int ProcessorCount();

/// Runs a check's function, its early end included.
CheckResult RunToEnd(const std::function<void(CheckRun&)>& check, const CheckRunOptions& options);

}  // namespace umbrant::host
