// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The temporary world: what it asks of the host, what it prints, and that it gives everything back.

#include "pixel/effect_world.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/capture_stdout.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

PF_ProgPtr EffectRef() {
    return reinterpret_cast<PF_ProgPtr>(0x1234);
}

struct EffectWorldTest : ::testing::Test {
    EffectWorldTest() { host.inData.effect_ref = EffectRef(); }
    void TearDown() override {
        std::string why;
        EXPECT_TRUE(host.Balanced(&why)) << why;
    }
    TestHost host;
    PF_LayerDef like{};
};

TEST_F(EffectWorldTest, ConstructionAsksForTheFormatAlone) {
    host.pixelFormat = PF_PixelFormat_ARGB128;
    HV_EffectWorld world(&host.inData, like);
    EXPECT_EQ(world.in_data, &host.inData);
    EXPECT_EQ(world.effect_ref, EffectRef());
    EXPECT_EQ(world.status, 0);
    EXPECT_EQ(world.world.data, nullptr);
    EXPECT_FALSE(world.initialised);
    EXPECT_EQ(world.format, PF_PixelFormat_ARGB128);
    EXPECT_EQ(world.width, 0);
    EXPECT_EQ(world.height, 0);
    EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF World Suite 2", "PF_GetPixelFormat",
                                                    "ReleaseSuite PF World Suite 2"}));
}

TEST_F(EffectWorldTest, ActuallyInitMakesAClearedWorldOfTheSize) {
    CaptureStdout output;
    {
        HV_EffectWorld world(&host.inData, like);
        world.width = 3;
        world.height = 2;
        host.calls.clear();
        EXPECT_EQ(world.actuallyInit(), 0);
        EXPECT_TRUE(world.initialised);
        EXPECT_EQ(world.world.width, 3);
        EXPECT_EQ(world.world.height, 2);
        EXPECT_NE(world.world.data, nullptr);
        EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF World Suite 2", "PF_NewWorld 3 2 1",
                                                        "ReleaseSuite PF World Suite 2"}));
        EXPECT_EQ(host.liveWorlds, 1);
        host.calls.clear();
    }
    EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF World Suite 2", "PF_DisposeWorld",
                                                    "ReleaseSuite PF World Suite 2"}));
    EXPECT_EQ(output.Text(), "");
}

TEST_F(EffectWorldTest, NeverMadeIsNeverDisposed) {
    { HV_EffectWorld world(&host.inData, like); }
    EXPECT_EQ(host.CountOf("PF_DisposeWorld"), 0);
    EXPECT_EQ(host.CountOf("AcquireSuite PF World Suite 2"), 2) << "the destructor asks for the suite all the same";
}

TEST_F(EffectWorldTest, SecondInitKeepsTheFirstWorld) {
    HV_EffectWorld world(&host.inData, like);
    world.width = world.height = 4;
    ASSERT_EQ(world.actuallyInit(), 0);
    const PF_PixelPtr first = world.world.data;
    CaptureStdout output;
    EXPECT_EQ(world.actuallyInit(), 0);
    // Written through at once, so that it is on the log when the host dies next.
    EXPECT_EQ(output.TextWithoutFlush(), "Error: tried to init already initialised HV_EffectWorld\n");
    EXPECT_EQ(world.world.data, first);
    EXPECT_EQ(host.CountOf("PF_NewWorld"), 1);
}

TEST_F(EffectWorldTest, ZeroSizesPrintAndMakeNothing) {
    const struct {
        int32_t width, height;
        const char* message;
    } rows[] = {
        {0, 100, "Error initialising world, invalid dims: 0 100\n"},
        {100, 0, "Error initialising world, invalid dims: 100 0\n"},
        {0, 0, "Error initialising world, invalid dims: 0 0\n"},
        {-5, 0, "Error initialising world, invalid dims: -5 0\n"},
    };
    for (const auto& row : rows) {
        HV_EffectWorld world(&host.inData, like);
        world.width = row.width;
        world.height = row.height;
        CaptureStdout output;
        EXPECT_EQ(world.actuallyInit(), 0) << row.message;
        EXPECT_EQ(output.TextWithoutFlush(), row.message);
        EXPECT_FALSE(world.initialised);
    }
    EXPECT_EQ(host.CountOf("PF_NewWorld"), 0);
    EXPECT_EQ(host.CountOf("PF_DisposeWorld"), 0);
}

int ThrownByInit(HV_EffectWorld* world) {
    try {
        world->actuallyInit();
    } catch (PF_Err err) {
        return err;
    }
    return 0;
}

TEST_F(EffectWorldTest, NegativeSizesAreTheHosts) {
    HV_EffectWorld world(&host.inData, like);
    world.width = -5;
    world.height = 7;
    CaptureStdout output;
    EXPECT_EQ(ThrownByInit(&world), PF_Err_BAD_CALLBACK_PARAM) << "the test host refuses them";
    EXPECT_EQ(host.CountOf("PF_NewWorld -5 7 1"), 1);
    EXPECT_EQ(output.Text(), "");
}

TEST_F(EffectWorldTest, TheHostsErrorIsThrown) {
    HV_EffectWorld world(&host.inData, like);
    world.width = world.height = 4;
    host.newWorldError = 4711;
    EXPECT_EQ(ThrownByInit(&world), 4711);
    EXPECT_FALSE(world.initialised);
}

TEST_F(EffectWorldTest, AStatusOfTheCallersIsOutOfMemory) {
    HV_EffectWorld world(&host.inData, like);
    world.width = 6;
    world.height = 5;
    world.status = 1;
    CaptureStdout output;
    EXPECT_EQ(world.actuallyInit(), 4);
    EXPECT_EQ(output.TextWithoutFlush(), "Error initialising world of dims: 6 5\n");
    EXPECT_FALSE(world.initialised);
    EXPECT_EQ(host.liveWorlds, 0) << "nobody owns it, so it is given back";
    world.status = 0;
    EXPECT_EQ(world.actuallyInit(), 0) << "and can be made again";
    EXPECT_TRUE(world.initialised);
}

TEST_F(EffectWorldTest, MissingSuiteThrows13) {
    host.Refuse("PF World Suite");
    int thrown = 0;
    try {
        HV_EffectWorld world(&host.inData, like);
    } catch (PF_Err err) {
        thrown = err;
    }
    EXPECT_EQ(thrown, 13);
    EXPECT_EQ(host.outData.out_flags, 0) << "no message: there is no out data";
}

TEST_F(EffectWorldTest, TheFormatsErrorIsThrown) {
    host.pixelFormatError = 512;
    int thrown = 0;
    try {
        HV_EffectWorld world(&host.inData, like);
    } catch (PF_Err err) {
        thrown = err;
    }
    EXPECT_EQ(thrown, 512);
    EXPECT_EQ(host.calls, (std::vector<std::string>{"AcquireSuite PF World Suite 2", "PF_GetPixelFormat",
                                                    "ReleaseSuite PF World Suite 2"}));
}

TEST(EffectWorldDeathTest, MissingSuiteInTheDestructorEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            TestHost host;
            HV_EffectWorld world(&host.inData, PF_LayerDef{});
            host.Refuse("PF World Suite");
        },
        "terminat");
}

TEST(EffectWorldInit, MissingSuiteThrows13) {
    TestHost host;
    auto* world = new HV_EffectWorld(&host.inData, PF_LayerDef{});
    world->width = world->height = 1;
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(ThrownByInit(world), 13);
    host.inData.pica_basicP = &host.basic;
    delete world;
    EXPECT_TRUE(host.Balanced());
}

static_assert(!std::is_copy_constructible_v<HV_EffectWorld> && !std::is_move_constructible_v<HV_EffectWorld>);
static_assert(!std::is_copy_assignable_v<HV_EffectWorld> && !std::is_move_assignable_v<HV_EffectWorld>);

}  // namespace

}  // namespace umbrant::effect
