// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which stage of a render the time of a host call counts for.

#include <gtest/gtest.h>

#include <thread>

#include "host/accounting/stage_clock.h"
#include "host/suites/services.h"
#include "host/suites/timed_call.h"

namespace umbrant::host {

namespace {

constexpr double kLong = 5;  // milliseconds

void Spend(PixelCall call) {
    const TimedCall timed(call);
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(kLong));
}

StageTimes After(const std::vector<PixelCall>& calls) {
    Services services;
    CommandNotes notes;
    const ServiceScope scope(&services, &notes);
    for (const PixelCall call : calls) Spend(call);
    return notes.stages.Snapshot();
}

TEST(StageClock, TellsTheStagesApartByTheirOrder) {
    using enum PixelCall;
    const struct {
        const char* name;
        std::vector<PixelCall> calls;
        int upload, readBack, composite;
    } rows[] = {
        {"nothing", {}, 0, 0, 0},
        {"a layer fetched and walked over", {kFetch, kWalk}, 2, 0, 0},
        {"a fill is compositing wherever it comes", {kFill, kFetch, kWalk, kFill}, 2, 0, 2},
        {"the second walk reads back", {kWalk, kWalk, kTransfer}, 1, 1, 1},
        {"walks and copies after a transfer composite", {kWalk, kWalk, kTransfer, kWalk, kFetch}, 1, 1, 3},
        {"a transfer alone", {kTransfer, kWalk}, 0, 0, 2},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const StageTimes times = After(row.calls);
        EXPECT_GE(times.upload, row.upload * kLong);
        EXPECT_GE(times.readBack, row.readBack * kLong);
        EXPECT_GE(times.composite, row.composite * kLong);
        if (row.upload == 0) {
            EXPECT_EQ(times.upload, 0);
        }
        if (row.readBack == 0) {
            EXPECT_EQ(times.readBack, 0);
        }
        if (row.composite == 0) {
            EXPECT_EQ(times.composite, 0);
        }
    }
}

TEST(StageClock, ACallInsideACallCountsOnce) {
    Services services;
    CommandNotes notes;
    const ServiceScope scope(&services, &notes);
    {
        const TimedCall outer(PixelCall::kWalk);
        Spend(PixelCall::kTransfer);
    }
    const StageTimes times = notes.stages.Snapshot();
    EXPECT_GE(times.upload, kLong);
    EXPECT_EQ(times.composite, 0);
}

}  // namespace

}  // namespace umbrant::host
