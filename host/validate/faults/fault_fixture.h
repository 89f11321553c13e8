// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where host calls are made to fail, one at a time: a first run of a scenario counts its calls, then the scenario is
// run once for every call, with that call refused, and what comes back is checked.

#include <functional>
#include <string>
#include <vector>

#include "host/accounting/ledger.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

/// What one fault led to.
struct FaultOutcome {
    FaultPlan plan;
    std::string scenario;
    bool reached = false;        ///< the call was made, so the fault happened
    PF_Err error = PF_Err_NONE;  ///< of the command in which it happened
    std::string command;
    std::string message;            ///< the effect's message
    bool messageEnded = true;       ///< the message field holds a NUL
    bool samePixels = false;        ///< the frame came out as without the fault
    std::string laterCall;          ///< the first host call after it, in the same command, that gives nothing back
    std::vector<LedgerRow> uneven;  ///< what was left open
    std::vector<std::string> misbehaviour;
};

/// Which calls are refused, with what, and how the outcome is checked.
struct FaultRules {
    /// Callees as the fault hook names them: "interact.checkout_param", "AcquireSuite:PF World Suite".
    std::function<bool(const std::string& callee)> isMeant;
    std::vector<PF_Err> errors;
    std::function<void(CheckRun&, const FaultOutcome&)> judge;
};

/// Runs every fault that the rules mean, in forks; a crash or a hang is a finding that names the fault.
void InjectFaults(CheckRun& run, const FaultRules& rules);

/// Calls by which an effect gives back what it has; they are allowed after a refusal, and may be refused without harm.
bool GivesBack(const std::string& callee);
/// Of these callees the one that is most like a name, of which the suite may be left out; empty when there are none.
std::string ClosestCall(const std::string& name, const std::vector<std::string>& callees);
/// Calls whose result is no error code.
bool ReturnsNoError(const std::string& callee);

}  // namespace umbrant::host
