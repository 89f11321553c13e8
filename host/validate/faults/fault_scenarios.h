// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a session does while host calls fail in it: frames, the panel, set-up and set-down, each run with one fault or
// with none, and what came of it.

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/validate/faults/fault_fixture.h"

namespace umbrant::host {

/// Counts the calls of the host that it is asked about, and refuses one of them.
class FaultSwitch {
 public:
    PF_Err Ask(std::string_view call) {
        if (!armed_) return PF_Err_NONE;
        int& count = counts[std::string(call)];
        ++count;
        if (call != plan_.callee || count != plan_.call) return PF_Err_NONE;
        reached = true;
        return plan_.error;
    }
    void Arm(const FaultPlan& plan) {
        plan_ = plan;
        counts.clear();
        reached = false;
        armed_ = true;
    }
    void Disarm() { armed_ = false; }

    std::map<std::string, int> counts;
    bool reached = false;

 private:
    bool armed_ = false;
    FaultPlan plan_;
};

/// A session in which faults happen.
class FaultFixture {
 public:
    explicit FaultFixture(CheckRun& run) : fixture(run, Options()) { fixture.Cheapen(); }

    FaultSwitch faults;
    bool messageEnded = true;
    std::string lastMessage;
    CheckFixture fixture;

 private:
    SessionOptions Options();
};

/// Something that a session does; gives the digest of what was drawn.
struct FaultScenario {
    std::string name;
    std::function<std::uint64_t(FaultFixture&)> run;
    bool fromDown = false;  ///< begins with a session that is not set up, and ends with one
};

/// The scenarios of the fixture's module, always in the same order.
std::vector<FaultScenario> ScenariosOf(FaultFixture& fixture);

/// Runs a scenario with a fault, or with none, and writes down what came of it.
FaultOutcome RunScenario(FaultFixture& fixture, const FaultScenario& scenario, const FaultPlan& plan,
                         std::uint64_t* digest);

}  // namespace umbrant::host
