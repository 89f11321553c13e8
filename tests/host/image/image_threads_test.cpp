// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How many threads the image library is given.

#include "host/image/image_threads.h"

#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

TEST(ImageThreads, FollowTheCoresTheWishAndWhatCanBeHad) {
    const struct {
        const char* name;
        int wanted, cores;
        bool areScarce;
        int threads;
    } rows[] = {
        {"one a core", 0, 4, false, 4},
        {"not more than gain", 0, 128, false, 16},
        {"fewer where they are wanted", 2, 4, false, 2},
        {"more wanted than there are cores", 99999, 4, false, 4},
        {"scarce", 0, 4, true, 1},
        {"scarce, and a number wanted", 8, 4, true, 1},
        {"unknown cores", 0, 0, false, 1},
    };
    for (const auto& row : rows) EXPECT_EQ(ImageThreads(row.wanted, row.cores, row.areScarce), row.threads) << row.name;
}

}  // namespace

}  // namespace umbrant::host
