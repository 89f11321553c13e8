// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A recording host for unit tests of the module: it hands out suites, answers a few of their calls, counts what must be
// balanced and fails on demand. It is not a host: what it does not answer stays a null slot. One instance at a time;
// its calls may come from any thread.

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "hostapi/commands.h"
#include "hostapi/suites/ansi_suite.h"
#include "hostapi/suites/handle_suite.h"
#include "hostapi/suites/iterate8_suite.h"
#include "hostapi/suites/iterate_float_suite.h"
#include "hostapi/suites/world_suite.h"

class TestHost {
 public:
    using SuiteKey = std::pair<std::string, int32_t>;  ///< name, version

    /// Offers the handle, iterate, world and ANSI suites below.
    TestHost();
    ~TestHost();
    TestHost(const TestHost&) = delete;
    TestHost& operator=(const TestHost&) = delete;

    /// The records that go with every command. `inData.pica_basicP` and `inData.utils` are set.
    PF_InData inData{};
    PF_OutData outData{};
    PF_UtilCallbacks utils{};  ///< only `ansi.sprintf` answers
    SPBasicSuite basic{};

    /// The answering suites; a test may replace any slot.
    PF_HandleSuite1 handleSuite{};              ///< all six slots
    PF_Iterate8Suite1 iterate8Suite{};          ///< iterate
    PF_iterateFloatSuite1 iterateFloatSuite{};  ///< iterate
    PF_WorldSuite2 worldSuite{};                ///< all three slots
    PF_ANSICallbacksSuite1 ansiSuite{};         ///< all slots

    /// Offers a suite, in place of any of the same name and version. The table is not owned.
    void Offer(const std::string& name, int32_t version, const void* suite);
    /// Makes `AcquireSuite` return `error` for every version of the name.
    void Refuse(const std::string& name, SPErr error = A_Err_MISSING_SUITE);
    /// Takes a refusal back.
    void Allow(const std::string& name) { refused_.erase(name); }
    /// Makes `AcquireSuite` succeed with a null pointer.
    void OfferNull(const std::string& name, int32_t version) { Offer(name, version, nullptr); }

    // What to fail. Counts are 1-based, from the construction or `RestartCounts` on; 0 is never.
    int failNewHandle = 0;  ///< the k-th `host_new_handle` returns null
    int failLock = 0;       ///< the k-th `host_lock_handle` returns null
    void RestartCounts() { newHandleCalls_ = lockCalls_ = 0; }
    PF_Err iterateError = 0;                             ///< returned by `iterate` of both depths, after the walk
    PF_Err newWorldError = 0;                            ///< returned by `PF_NewWorld`
    PF_Err pixelFormatError = 0;                         ///< returned by `PF_GetPixelFormat`
    PF_PixelFormat pixelFormat = PF_PixelFormat_ARGB32;  ///< what `PF_GetPixelFormat` answers

    /// Every answered call in order: "AcquireSuite PF Handle Suite 2", "host_new_handle 12", "host_lock_handle",
    /// "iterate8 0 4", "PF_NewWorld 3 2", ... Tests may add their own lines with `Log`.
    std::vector<std::string> calls;
    void Log(const std::string& line);
    /// Called with every logged line before the call does anything; what it throws leaves the call.
    std::function<void(const std::string&)> onCall;
    /// How often a call with exactly this text, or starting with it and a blank, was logged.
    int CountOf(const std::string& call) const;

    /// What the last `iterate` was given.
    struct IterateCall {
        PF_InData* inData;
        A_long progressBase;
        A_long progressFinal;
        PF_EffectWorld* source;
        const PF_Rect* area;
        PF_EffectWorld* destination;
        void* refcon;
    };
    IterateCall lastIterate{};

    // Balances.
    std::map<SuiteKey, int> suiteBalance;  ///< acquired minus released, per suite ever asked for
    int liveHandles = 0;
    int liveLocks = 0;  ///< locks minus unlocks
    int liveWorlds = 0;
    int misuses = 0;  ///< unlock without lock, dispose of an unknown handle, release of an unacquired suite, ...
    /// Whether all of the above are zero; otherwise `why` names what is not.
    bool Balanced(std::string* why = nullptr) const;

    /// Allocates a handle outside the counts, as the host's own (global data, ...); zeroed.
    PF_Handle MakeHandle(size_t bytes);
    /// The bytes of a handle, locked or not.
    void* BytesOf(PF_Handle handle);
    /// From now on `*handle` is `pointer` while a handle is not locked, as on a host that moves its memory. Without
    /// this call it is always the address of the bytes.
    void PointUnlockedHandlesTo(char* pointer);

    /// The instance that the callbacks answer for.
    static TestHost& Current();

 private:
    friend struct TestHostCalls;
    struct Block;
    std::map<SuiteKey, const void*> offered_;
    std::map<std::string, SPErr> refused_;
    std::vector<Block*> blocks_;
    int newHandleCalls_ = 0;
    int lockCalls_ = 0;
    bool pointsElsewhere_ = false;
    char* elsewhere_ = nullptr;
    mutable std::recursive_mutex mutex_;
};
