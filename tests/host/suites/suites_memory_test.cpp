// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Handles and temporary worlds: given, counted, taken back, and never twice.

#include <cstring>
#include <limits>

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

TEST_F(SuitesTest, AHandleHoldsItsBytes) {
    const PF_Handle handle = kHandleSuite.host_new_handle(300000);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(Open(Resource::kHandle), 1);
    EXPECT_EQ(kHandleSuite.host_get_handle_size(handle), 300000u);
    const char* before = *handle;
    EXPECT_NE(before, nullptr) << "an unlocked handle leads to its bytes";
    auto* bytes = static_cast<unsigned char*>(kHandleSuite.host_lock_handle(handle));
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(static_cast<void*>(*handle), bytes);
    EXPECT_NE(bytes[0], 0) << "fresh bytes are not zero";
    EXPECT_NE(bytes[299999], 0);
    EXPECT_EQ(kHandleSuite.host_lock_handle(handle), bytes) << "locks are counted";
    EXPECT_EQ(Open(Resource::kLock), 2);
    kHandleSuite.host_unlock_handle(handle);
    kHandleSuite.host_unlock_handle(handle);
    EXPECT_EQ(*handle, before) << "and they do not move";
    EXPECT_EQ(Open(Resource::kLock), 0);
    kHandleSuite.host_dispose_handle(handle);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
    EXPECT_TRUE(services.Misbehaviour().empty());
}

TEST_F(SuitesTest, ANullHandleIsHarmless) {
    EXPECT_EQ(kHandleSuite.host_lock_handle(nullptr), nullptr);
    kHandleSuite.host_unlock_handle(nullptr);
    kHandleSuite.host_dispose_handle(nullptr);
    EXPECT_EQ(kHandleSuite.host_get_handle_size(nullptr), 0u);
    EXPECT_EQ(kHandleSuite.host_resize_handle(4, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_TRUE(services.Misbehaviour().empty());
}

TEST_F(SuitesTest, AHandleCanBeEmptyButNotEndless) {
    const PF_Handle handle = kHandleSuite.host_new_handle(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(kHandleSuite.host_lock_handle(handle), nullptr);
    kHandleSuite.host_unlock_handle(handle);
    kHandleSuite.host_dispose_handle(handle);
    EXPECT_EQ(kHandleSuite.host_new_handle(std::numeric_limits<A_HandleSize>::max()), nullptr);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
}

TEST_F(SuitesTest, MisusedHandlesAreReported) {
    PF_Handle handle = kHandleSuite.host_new_handle(4);
    kHandleSuite.host_unlock_handle(handle);
    kHandleSuite.host_lock_handle(handle);
    EXPECT_EQ(kHandleSuite.host_resize_handle(8, &handle), PF_Err_BAD_CALLBACK_PARAM);
    kHandleSuite.host_dispose_handle(handle);
    kHandleSuite.host_dispose_handle(handle);
    char* stranger = nullptr;
    EXPECT_EQ(kHandleSuite.host_lock_handle(&stranger), nullptr);
    EXPECT_EQ(kHandleSuite.host_get_handle_size(&stranger), 0u);
    EXPECT_THAT(
        services.Misbehaviour(),
        ElementsAre("a handle was unlocked that was not locked", "a locked handle was resized",
                    "a handle was disposed of while it was locked", "an invalid or released handle was disposed of",
                    "a lock of an invalid handle was requested", "the size of an invalid handle was requested"));
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
}

TEST_F(SuitesTest, AHandleGrowsAndShrinksWithItsBytes) {
    PF_Handle handle = kHandleSuite.host_new_handle(4);
    std::memcpy(kHandleSuite.host_lock_handle(handle), "abc", 4);
    kHandleSuite.host_unlock_handle(handle);
    ASSERT_EQ(utilCallbacks.host_resize_handle(100, &handle), PF_Err_NONE);
    EXPECT_EQ(utilCallbacks.host_get_handle_size(handle), 100u);
    EXPECT_STREQ(static_cast<char*>(utilCallbacks.host_lock_handle(handle)), "abc");
    utilCallbacks.host_unlock_handle(handle);
    ASSERT_EQ(utilCallbacks.host_resize_handle(2, &handle), PF_Err_NONE);
    EXPECT_EQ(utilCallbacks.host_get_handle_size(handle), 2u);
    utilCallbacks.host_dispose_handle(handle);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
}

struct WorldCase {
    const char* name;
    A_long width;
    A_long height;
    PF_PixelFormat format;
    PF_Err error;
};

class NewWorlds : public SuitesTest, public ::testing::WithParamInterface<WorldCase> {};

TEST_P(NewWorlds, AreMadeOrRefused) {
    const WorldCase& row = GetParam();
    PF_EffectWorld world{};
    ASSERT_EQ(kWorldSuite.PF_NewWorld(ref, row.width, row.height, 1, row.format, &world), row.error);
    EXPECT_EQ(Open(Resource::kWorld), row.error ? 0 : 1);
    if (row.error) return;
    EXPECT_EQ(world.width, row.width);
    EXPECT_EQ(world.height, row.height);
    EXPECT_GT(world.rowbytes, row.width * 4) << "rows are longer than their pixels";
    EXPECT_EQ(world.rowbytes % 16, 0);
    EXPECT_TRUE(Same(world.extent_hint, {0, 0, row.width, row.height}));
    EXPECT_EQ(world.data->alpha, 0) << "clear";
    PF_PixelFormat format{};
    const PF_EffectWorld byValue = world;
    EXPECT_EQ(kWorldSuite.PF_GetPixelFormat(&byValue, &format), PF_Err_NONE);
    EXPECT_EQ(format, row.format);
    EXPECT_EQ(kWorldSuite.PF_DisposeWorld(ref, &world), PF_Err_NONE);
    EXPECT_EQ(world.data, nullptr);
    EXPECT_EQ(Open(Resource::kWorld), 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, NewWorlds,
    ::testing::Values(WorldCase{"Bits8", 5, 3, PF_PixelFormat_ARGB32, 0},
                      WorldCase{"Bits16", 5, 3, PF_PixelFormat_ARGB64, 0},
                      WorldCase{"Bits32", 1, 1, PF_PixelFormat_ARGB128, 0},
                      WorldCase{"NoWidth", 0, 3, PF_PixelFormat_ARGB32, PF_Err_BAD_CALLBACK_PARAM},
                      WorldCase{"NegativeHeight", 3, -1, PF_PixelFormat_ARGB32, PF_Err_BAD_CALLBACK_PARAM},
                      WorldCase{"TooWide", 30001, 1, PF_PixelFormat_ARGB32, PF_Err_BAD_CALLBACK_PARAM},
                      WorldCase{"OtherFormat", 3, 3, PF_PixelFormat_BGRA32, PF_Err_BAD_CALLBACK_PARAM}),
    [](const auto& row) { return row.param.name; });

TEST_F(SuitesTest, AnUnclearedWorldIsNeitherTransparentNorBlack) {
    PF_EffectWorld world{};
    ASSERT_EQ(kWorldSuite.PF_NewWorld(ref, 2, 2, 0, PF_PixelFormat_ARGB32, &world), PF_Err_NONE);
    EXPECT_NE(world.data->alpha, 0);
    EXPECT_NE(world.data->red, 0);
    kWorldSuite.PF_DisposeWorld(ref, &world);
}

TEST_F(SuitesTest, MisusedWorldsAreReported) {
    PF_EffectWorld world{};
    ASSERT_EQ(kWorldSuite.PF_NewWorld(ref, 2, 2, 1, PF_PixelFormat_ARGB32, &world), PF_Err_NONE);
    PF_EffectWorld copy = world;
    EXPECT_EQ(kWorldSuite.PF_DisposeWorld(ref, &world), PF_Err_NONE);
    EXPECT_EQ(kWorldSuite.PF_DisposeWorld(ref, &copy), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kWorldSuite.PF_DisposeWorld(ref, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kWorldSuite.PF_NewWorld(nullptr, 2, 2, 1, PF_PixelFormat_ARGB32, &world), PF_Err_BAD_CALLBACK_PARAM);
    PF_PixelFormat format{};
    const PF_EffectWorld stranger{};
    EXPECT_EQ(kWorldSuite.PF_GetPixelFormat(&stranger, &format), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_THAT(services.Misbehaviour(), ElementsAre("a world was disposed of that the effect does not own",
                                                     "PF_NewWorld was called with an invalid effect reference"));
    EXPECT_EQ(Open(Resource::kWorld), 0);
}

TEST_F(SuitesTest, TheUtilitiesMakeWorldsToo) {
    PF_EffectWorld world{};
    ASSERT_EQ(utilCallbacks.new_world(ref, 3, 2, PF_NewWorldFlag_DEEP_PIXELS, &world), PF_Err_NONE);
    EXPECT_EQ(PixelFormatOf(world), PF_PixelFormat_ARGB64);
    PF_Pixel16* deep = nullptr;
    PF_Pixel8* shallow = nullptr;
    EXPECT_EQ(utilCallbacks.get_pixel_data16(&world, nullptr, &deep), PF_Err_NONE);
    EXPECT_EQ(utilCallbacks.get_pixel_data8(&world, nullptr, &shallow), PF_Err_NONE);
    EXPECT_EQ(static_cast<void*>(deep), world.data);
    EXPECT_EQ(shallow, nullptr);
    EXPECT_EQ(utilCallbacks.dispose_world(ref, &world), PF_Err_NONE);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
}

}  // namespace

}  // namespace umbrant::host
