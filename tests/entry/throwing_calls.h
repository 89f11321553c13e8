// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A command against a host each of whose calls throws in its turn. A command runs once undisturbed, to count its calls,
// and then once per call and kind of exception. The throwing call does nothing but throw. Whatever is thrown, the
// command returns an error, and everything that it took is given back.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "hostapi/errors.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

using Lines = std::vector<std::string>;

struct ThrownKind {
    const char* name;
    void (*raise)();
    PF_Err result;  ///< what the command makes of it
};

inline const ThrownKind kThrownKinds[] = {
    {"an integer", [] { throw PF_Err{4711}; }, 4711},
    {"a standard exception", [] { throw std::runtime_error("inside the host"); }, 512},
    {"something else", [] { throw 3.5; }, 512},
};

/// Whether a call gives something back. One that throws has been made all the same, and is not made again.
inline bool GivesBack(const std::string& call) {
    const char* const names[] = {"ReleaseSuite ", "host_unlock_handle", "host_dispose_handle", "PF_DisposeWorld",
                                 "checkin_",      "DisposeEffect",      "DisposeStream ",      "ReleaseObject"};
    return std::any_of(std::begin(names), std::end(names), [&](const char* name) { return call.starts_with(name); });
}

/// What the host has open, by the calls that close it.
inline std::map<std::string, int> OpenThings(const TestHost& host) {
    std::map<std::string, int> open;
    const auto add = [&](const std::string& call, int count) {
        if (count != 0) open[call] = count;
    };
    for (const auto& [key, count] : host.suiteBalance) {
        add("ReleaseSuite " + key.first + " " + std::to_string(key.second), count);
    }
    add("host_unlock_handle", host.liveLocks);
    add("host_dispose_handle", host.liveHandles);
    add("PF_DisposeWorld", host.liveWorlds);
    // A handle whose unlock throws may be disposed of with its lock.
    add("misuse", std::max(0, host.misuses - host.liveLocks));
    return open;
}

inline void ForgetOpenThings(TestHost* host) {
    host->suiteBalance.clear();
    host->liveLocks = host->liveHandles = host->liveWorlds = host->misuses = 0;
    host->calls.clear();
    host->outData = {};
}

/// A command and what belongs to it.
struct Trial {
    TestHost* host;
    std::function<PF_Err()> command;
    std::function<void()> prepare = [] {};  ///< before each run, with a host that throws nothing
    /// After each run: other balances. The call that threw is given.
    std::function<void(const std::string& call)> check = [](const std::string&) {};
    std::function<bool(const Lines& calls, size_t at, bool fromThereOn)> leftOut = [](const Lines&, size_t, bool) {
        return false;
    };
};

/// Sends the command with each of its calls throwing in its turn: the call alone, and every call from it on.
inline void ThrowInEveryCall(const Trial& trial) {
    TestHost* host = trial.host;
    ForgetOpenThings(host);
    trial.prepare();
    host->calls.clear();
    const PF_Err undisturbed = trial.command();
    const Lines calls = host->calls;
    ASSERT_FALSE(calls.empty());
    ForgetOpenThings(host);

    for (size_t at = 0; at < calls.size(); ++at) {
        for (const ThrownKind& kind : kThrownKinds) {
            for (const bool fromThereOn : {false, true}) {
                if (trial.leftOut(calls, at, fromThereOn)) continue;
                const std::string& call = calls[at];
                SCOPED_TRACE(call + ", call " + std::to_string(at) + (fromThereOn ? " and all after it" : "") +
                             ", throws " + kind.name);
                trial.prepare();
                host->calls.clear();
                size_t count = 0;
                host->onCall = [&](const std::string&) {
                    ++count;
                    if (fromThereOn ? count > at : count == at + 1) kind.raise();
                };
                PF_Err result = 0;
                EXPECT_NO_THROW(result = trial.command());
                host->onCall = nullptr;
                EXPECT_GT(count, at) << "the call was made";
                EXPECT_TRUE(result == kind.result || (GivesBack(call) && result == undisturbed)) << result;
                if (!fromThereOn) {
                    std::map<std::string, int> expected;
                    if (GivesBack(call) && OpenThings(*host).count(call)) expected[call] = 1;
                    EXPECT_EQ(OpenThings(*host), expected);
                    trial.check(call);
                }
                ForgetOpenThings(host);
            }
        }
    }
}

inline int LoggedSprintf(A_char*, const A_char*, ...) {
    TestHost::Current().Log("sprintf");
    return 0;
}

}  // namespace umbrant::effect
