// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pre-render against a recording host: what is asked, in which order, with which ids, and what comes back when the host
// fails.

#include "render/pre_render/pre_render.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "tests/render/pre_render/pre_render_fixture.h"
#include "tests/support/thrown_code.h"

namespace {

thread_local bool failNothrowNew = false;
thread_local void* watched = nullptr;  ///< of which `freed` counts the releases
thread_local int freed = 0;
thread_local int freedInAll = 0;

void NoteFreed(void* memory) {
    if (!memory) return;
    ++freedInAll;
    if (memory == watched) ++freed;
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
// The record is allocated with the non-throwing form, which nothing else in this program depends on.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return failNothrowNew ? nullptr : std::malloc(size > 0 ? size : 1);
}
// Not inlined: the compiler would see malloc's memory freed and take it for a mismatch.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    NoteFreed(memory);
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    NoteFreed(memory);
    std::free(memory);
}

namespace umbrant::effect {

namespace {

TEST_F(PreRenderTest, AsksInOrder) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    std::vector<std::string> expected = {"AcquireSuite AEGP PF Interface Suite 1", "AcquireSuite AEGP Layer Suite 13",
                                         "AEGP_GetEffectLayer", "AEGP_GetLayerFlags"};
    for (int i = 1; i <= 60; ++i) {
        if (i == 39) continue;
        expected.push_back("checkout_param " + std::to_string(i));
        expected.push_back("checkin_param");
    }
    expected.insert(expected.end(), {"checkout_layer 0", "checkout_layer 39", "ReleaseSuite AEGP PF Interface Suite 1",
                                     "ReleaseSuite AEGP Layer Suite 13"});
    // The order of the two releases is nobody's business.
    EXPECT_THAT(host_.calls, ::testing::UnorderedElementsAreArray(expected));
    host_.calls.resize(host_.calls.size() - 2);
    expected.resize(expected.size() - 2);
    EXPECT_EQ(host_.calls, expected);
}

TEST_F(PreRenderTest, RequestsCopyTheHostsFieldsAndTimes) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    ASSERT_EQ(host_.layerRequests.size(), 2u);
    for (const RenderHost::LayerRequest& r : host_.layerRequests) {
        EXPECT_EQ(r.request.field, PF_Field_UPPER);
        EXPECT_EQ(r.request.channel_mask, PF_ChannelMask_ARGB);
        EXPECT_EQ(r.request.preserve_rgb_of_zero_alpha, 1);
        EXPECT_EQ(r.time, 7);
        EXPECT_EQ(r.step, 2);
        EXPECT_EQ(r.scale, 25u);
    }
    EXPECT_EQ(host_.layerRequests[0].index, 0);
    EXPECT_GT(host_.layerRequests[0].id, 0);
    EXPECT_NE(host_.layerRequests[0].id, 39);
    EXPECT_EQ(host_.layerRequests[1].index, 39);
    EXPECT_EQ(host_.layerRequests[1].id, 39);
}

TEST_F(PreRenderTest, InputRequestIsCutToTheLayerAndGrown) {
    host_.preInput.output_request.rect = {-100, -50, 500, 20};
    Slide(PARAM_BUFFER_EXPANSION, 7);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.layerRequests[0].request.rect, -4, -4, 44, 24);
}

TEST_F(PreRenderTest, NormalReportsRectanglesRecordAndFlag) {
    Slide(PARAM_DISTANCE, 10);
    Slide(PARAM_SOFTNESS, 8);
    Slide(PARAM_OFFSET_SHADOW, 0);
    host_.panel[PARAM_ANGLE].u.ad.value = 90 << 16;
    host_.preOutput.flags = 4;
    ASSERT_EQ(Run(), PF_Err_NONE);
    // The cosine of a right angle comes out slightly negative and its ceiling is 0.
    ExpectRect(host_.preOutput.result_rect, -2, -6, 56, 36);
    ExpectRect(host_.preOutput.max_result_rect, -2, -6, 56, 36);
    EXPECT_EQ(host_.preOutput.flags, 4 | PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS);
    EXPECT_EQ(host_.preOutput.delete_pre_render_data_func, DisposePreRenderData);
    EXPECT_EQ(Record().originDeltaX, 2);
    EXPECT_EQ(Record().originDeltaY, 6);
    EXPECT_EQ(Record().layerOffset2X, (40 - 56) + 2);
    EXPECT_EQ(Record().layerOffset2Y, (30 - 36) + 6);
    EXPECT_EQ(Record().centreOffsetX, -7);
    EXPECT_EQ(Record().centreOffsetY, 0);
    EXPECT_EQ(Record().innerGrowLeft, 0);
    ExpectRect(host_.layerRequests[1].request.rect, -2, -6, 56, 36);
}

TEST_F(PreRenderTest, UnitesIntoWhatTheOutputHolds) {
    host_.preOutput.result_rect = {-300, 5, -290, 6};
    host_.preOutput.max_result_rect = {100, 100, 900, 800};
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_SOFTNESS, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, -300, 0, 40, 30);
    ExpectRect(host_.preOutput.max_result_rect, 0, 0, 900, 800);
    EXPECT_EQ(Record().layerOffset2X, 40 - 900);
}

TEST_F(PreRenderTest, EmptyInputStaysAsTheHostGaveIt) {
    host_.layerGranted.result_rect = {5, 6, 5, 6};
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, 5, 6, 5, 6);
    EXPECT_LT(host_.preOutput.max_result_rect.left, 0);
}

TEST_F(PreRenderTest, NoReachLeavesOnlySoftnessAndIsSymmetric) {
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    Slide(PARAM_SOFTNESS, 50);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.max_result_rect, -37, -37, 77, 67);
    ExpectRect(host_.preOutput.result_rect, -37, -37, 77, 67);
}

TEST_F(PreRenderTest, HalfResolutionUsesTheHorizontalFactorOnly) {
    host_.inData.downsample_x = {1, 2};
    host_.inData.downsample_y = {1, 1};
    host_.layerGranted.result_rect = {0, 0, 20, 30};
    host_.layerGranted.max_result_rect = {0, 0, 20, 30};
    host_.preInput.output_request.rect = {0, 0, 20, 30};
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    Slide(PARAM_SOFTNESS, 50);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.layerRequests[0].request.rect, 0, 0, 20, 15);
    ExpectRect(host_.preOutput.max_result_rect, -18, -18, 38, 33);
}

TEST_F(PreRenderTest, InnerStoresItsGrowth) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 2;
    host_.panel[PARAM_ANGLE].u.ad.value = 45 << 16;
    Slide(PARAM_DISTANCE, 60);
    Slide(PARAM_SOFTNESS, 20);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Record().innerGrowLeft, 44);
    EXPECT_EQ(Record().innerGrowTop, 10);
    EXPECT_EQ(Record().innerGrowRight, 10);
    EXPECT_EQ(Record().innerGrowBottom, 44);
    EXPECT_EQ(Record().centreOffsetX, 0);
    ExpectRect(host_.preOutput.result_rect, -44, -10, 50, 74);
    ExpectRect(host_.layerRequests[1].request.rect, -44, -10, 50, 74);
}

TEST_F(PreRenderTest, RadialTextureCoversTheMaxRectangle) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 3;
    host_.panel[PARAM_ORIGIN].u.td.x_value = 20 << 16;
    host_.panel[PARAM_ORIGIN].u.td.y_value = 15 << 16;
    Slide(PARAM_DISTANCE, 100);
    Slide(PARAM_SOFTNESS, 0);
    host_.preOutput.max_result_rect = {-500, -500, -400, -400};
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, -20, -15, 60, 45);
    ExpectRect(host_.preOutput.max_result_rect, -500, -500, 60, 45);
    ExpectRect(host_.layerRequests[1].request.rect, -500, -500, 60, 45);
    EXPECT_EQ(Record().centreOffsetX, -20);
    EXPECT_EQ(Record().centreOffsetY, -15);
}

TEST(PreRenderFailures, MissingSuitesThrow516) {
    for (const char* name : {"AEGP PF Interface Suite", "AEGP Layer Suite"}) {
        SCOPED_TRACE(name);
        RenderHost host;
        host.Refuse(name);
        try {
            PreRender(&host.inData, &host.outData, &host.preExtra);
            ADD_FAILURE() << "nothing thrown";
        } catch (PF_Err err) {
            EXPECT_EQ(err, 516);
        }
        EXPECT_TRUE(host.Balanced());
    }
    RenderHost host;
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(ThrownBy([&] { PreRender(&host.inData, &host.outData, &host.preExtra); }), 516);
}

TEST(PreRenderFailures, FirstCheckoutErrorEnds) {
    for (int k : {1, 30, 59}) {
        SCOPED_TRACE(k);
        RenderHost host;
        host.failCheckoutParam = k;
        EXPECT_EQ(PreRender(&host.inData, &host.outData, &host.preExtra), RenderHost::kInjected);
        EXPECT_EQ(host.paramsOut, 0);
        EXPECT_EQ(host.CountOf("checkout_param"), k);
        EXPECT_TRUE(host.layerRequests.empty());
    }
    RenderHost host;
    host.failCheckinParam = 2;
    EXPECT_EQ(PreRender(&host.inData, &host.outData, &host.preExtra), RenderHost::kInjected);
}

TEST_F(PreRenderTest, LayerCheckoutErrorsEnd) {
    host_.failCheckoutLayer = 1;
    EXPECT_EQ(Run(), RenderHost::kInjected);
    EXPECT_EQ(host_.preOutput.pre_render_data, nullptr);
}

TEST_F(PreRenderTest, RecordIsTheHostsWhenTheTextureFails) {
    host_.failCheckoutLayer = 2;
    EXPECT_EQ(Run(), RenderHost::kInjected);
    EXPECT_NE(host_.preOutput.pre_render_data, nullptr);
}

TEST_F(PreRenderTest, NoMemoryForTheRecord) {
    failNothrowNew = true;
    const PF_Err err = Run();
    failNothrowNew = false;
    EXPECT_EQ(err, PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(host_.preOutput.pre_render_data, nullptr);
}

TEST_F(PreRenderTest, TheRecordIsReleasedAndNothingElse) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    watched = host_.preOutput.pre_render_data;
    freed = freedInAll = 0;
    DisposePreRenderData(host_.preOutput.pre_render_data);
    EXPECT_EQ(freed, 1);
    EXPECT_EQ(freedInAll, 1);
    host_.preOutput.pre_render_data = watched = nullptr;
    DisposePreRenderData(nullptr);
    EXPECT_EQ(freedInAll, 1);
}

TEST_F(PreRenderTest, TheMaxRectangleComesFromTheCheckoutsMaxResult) {
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_SOFTNESS, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    host_.panel[PARAM_ANGLE].u.ad.value = 0;
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) {
        SCOPED_TRACE(type);
        host_.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
        host_.preOutput = {};
        host_.layerGranted.result_rect = {10, 11, 20, 21};
        host_.layerGranted.max_result_rect = {2, 3, 38, 29};
        ASSERT_EQ(Run(), PF_Err_NONE);
        ExpectRect(host_.preOutput.max_result_rect, 2, 3, 38, 29);
        if (type == SHADOW_INNER) ExpectRect(host_.preOutput.result_rect, 10, 11, 20, 21);
        DisposePreRenderData(host_.preOutput.pre_render_data);
        host_.preOutput.pre_render_data = nullptr;
    }
}

TEST_F(PreRenderTest, TheResultIsUnitedWithTheInputsResultRectangle) {
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_SOFTNESS, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    host_.layerGranted.result_rect = {-7, 5, 25, 44};
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, -7, 0, 40, 44);
    ExpectRect(host_.preOutput.max_result_rect, 0, 0, 40, 30);
}

TEST_F(PreRenderTest, FractionsOfTheAngleCount) {
    Slide(PARAM_DISTANCE, 1000);
    Slide(PARAM_SOFTNESS, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    host_.panel[PARAM_ANGLE].u.ad.value = (90 << 16) + 0x8000;
    ASSERT_EQ(Run(), PF_Err_NONE);
    // The cosine of 90.5 degrees is -0.0087.
    ExpectRect(host_.preOutput.result_rect, 0, 0, 1040, 38);
}

TEST_F(PreRenderTest, FractionsOfTheOriginCount) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = SHADOW_RADIAL;
    Slide(PARAM_DISTANCE, 200);
    Slide(PARAM_SOFTNESS, 0);
    host_.panel[PARAM_ORIGIN].u.td.x_value = (20 << 16) + 0x8000;
    host_.panel[PARAM_ORIGIN].u.td.y_value = (15 << 16) + 0x8000;
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, -41, -31, 79, 59);
}

}  // namespace

}  // namespace umbrant::effect
