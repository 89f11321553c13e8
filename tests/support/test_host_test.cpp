// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recording host and its neighbours: what the other tests take for granted.

#include "tests/support/test_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>

#include "entry/suites/suite_handler.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/test_world.h"

namespace {

using ::testing::ElementsAre;

TEST(TestHost, CountsSuitesPerNameAndVersion) {
    TestHost host;
    {
        AEGP_SuiteHandler suites(&host.basic);
        EXPECT_EQ(suites.HandleSuite1(), &host.handleSuite);
        suites.HandleSuite1();
        EXPECT_EQ((host.suiteBalance[{"PF Handle Suite", 2}]), 1);
        EXPECT_FALSE(host.Balanced());
    }
    EXPECT_THAT(host.calls, ElementsAre("AcquireSuite PF Handle Suite 2", "ReleaseSuite PF Handle Suite 2"));
    EXPECT_TRUE(host.Balanced());
    host.basic.ReleaseSuite("PF Handle Suite", 2);
    EXPECT_EQ(host.misuses, 1);
    std::string why;
    EXPECT_FALSE(host.Balanced(&why));
    EXPECT_EQ(why, "PF Handle Suite 2: -1; misuses: 1; ");
}

TEST(TestHost, RefusesOnDemand) {
    TestHost host;
    host.Refuse("PF World Suite", 77);
    const void* suite = &host;
    EXPECT_EQ(host.basic.AcquireSuite("PF World Suite", 2, &suite), 77);
    EXPECT_EQ(suite, nullptr);
    EXPECT_EQ(host.basic.AcquireSuite("PF Handle Suite", 1, &suite), A_Err_MISSING_SUITE) << "another version";
    host.OfferNull("PF Handle Suite", 2);
    EXPECT_EQ(host.basic.AcquireSuite("PF Handle Suite", 2, &suite), kSPNoError);
    EXPECT_EQ(suite, nullptr);
    EXPECT_TRUE(host.Balanced());
}

TEST(TestHost, CountsHandlesAndLocksAndCatchesMisuse) {
    TestHost host;
    host.failNewHandle = 2;
    host.failLock = 2;
    PF_Handle handle = host.handleSuite.host_new_handle(12);
    EXPECT_EQ(host.handleSuite.host_new_handle(12), nullptr);
    EXPECT_EQ(host.handleSuite.host_get_handle_size(handle), 12u);
    EXPECT_EQ(host.handleSuite.host_lock_handle(handle), *handle);
    EXPECT_EQ(host.handleSuite.host_lock_handle(handle), nullptr);
    EXPECT_EQ(host.liveLocks, 1);
    host.handleSuite.host_unlock_handle(handle);
    EXPECT_EQ(host.misuses, 0);
    host.handleSuite.host_unlock_handle(handle);
    EXPECT_EQ(host.misuses, 1) << "unlocked once too often";
    host.handleSuite.host_dispose_handle(handle);
    EXPECT_EQ(host.liveHandles, 0);
    host.handleSuite.host_dispose_handle(handle);
    EXPECT_EQ(host.misuses, 2) << "disposed of twice";
    EXPECT_EQ(host.CountOf("host_new_handle"), 2);
    EXPECT_EQ(host.CountOf("host_new_handle 1"), 0);
}

TEST(TestHost, IteratesOverTheAreaAndReturnsTheFirstError) {
    TestHost host;
    TestWorld world(3, 2, sizeof(PF_Pixel));
    auto count = [](void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out) -> PF_Err {
        EXPECT_EQ(in, out);
        out->alpha = static_cast<A_u_char>(10 * y + x);
        return ++*static_cast<int*>(refcon) == 5 ? 99 : 0;
    };
    int visits = 0;
    EXPECT_EQ(host.iterate8Suite.iterate(&host.inData, 0, 2, &world.world, nullptr, &visits, count, &world.world), 99);
    EXPECT_EQ(visits, 5);
    const PF_Rect area = {1, 1, 3, 2};
    visits = 10;
    host.iterateError = 5;
    EXPECT_EQ(host.iterate8Suite.iterate(&host.inData, 0, 2, &world.world, &area, &visits, count, &world.world), 5);
    EXPECT_EQ(visits, 12);
    EXPECT_EQ(world.At8(2, 1).alpha, 12);
    EXPECT_TRUE(world.PaddingIntact());
}

TEST(TestHost, WorldsAreClearedOnlyWhenAsked) {
    TestHost host;
    PF_EffectWorld clear{};
    PF_EffectWorld dirty{};
    host.worldSuite.PF_NewWorld(nullptr, 2, 1, 1, PF_PixelFormat_ARGB128, &clear);
    host.worldSuite.PF_NewWorld(nullptr, 2, 1, 0, PF_PixelFormat_ARGB32, &dirty);
    EXPECT_EQ(clear.data->alpha, 0);
    EXPECT_NE(dirty.data->alpha, 0);
    EXPECT_GT(clear.rowbytes, 2 * 16);
    EXPECT_EQ(host.liveWorlds, 2);
    host.worldSuite.PF_DisposeWorld(nullptr, &clear);
    host.worldSuite.PF_DisposeWorld(nullptr, &dirty);
    EXPECT_TRUE(host.Balanced());
    host.newWorldError = 4;
    EXPECT_EQ(host.worldSuite.PF_NewWorld(nullptr, 2, 1, 1, PF_PixelFormat_ARGB32, &clear), 4);
}

TEST(TestWorldRows, PaddingThatIsWrittenToIsNoticed) {
    TestWorld world(2, 2, sizeof(PF_Pixel), 1);
    world.At8(1, 1).blue = 1;
    EXPECT_TRUE(world.PaddingIntact());
    world.At8(2, 0).blue = 1;
    EXPECT_FALSE(world.PaddingIntact());
    TestWorld lastRow(2, 2, sizeof(PF_Pixel), 1);
    lastRow.At8(2, 1).blue = 1;
    EXPECT_FALSE(lastRow.PaddingIntact());
    TestWorld below(2, 2, sizeof(PF_Pixel), 1);
    below.At8(0, 2).alpha = 1;
    EXPECT_FALSE(below.PaddingIntact());
    EXPECT_TRUE(TestWorld(0, 0, sizeof(PF_Pixel), 1).PaddingIntact());
}

TEST(CaptureStdoutStreams, CatchesCAndCxx) {
    CaptureStdout out;
    std::cout << "one\n" << std::flush;
    EXPECT_EQ(out.TextWithoutFlush(), "one\n");
    std::printf("two\n");
    EXPECT_EQ(out.Text(), "one\ntwo\n");
}

}  // namespace
