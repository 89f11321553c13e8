// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The CPU renderer's ways out are the GPU passes' own: the same messages, errors and host calls, and no call to GL.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/renderer_choice_fake.h"
#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class ProcessorRoads : public SmartRenderTest {
 protected:
    ProcessorRoads() {
        fake::Renderer() = RendererChoice::kProcessor;
        fake::ClearCalls();
    }
    ~ProcessorRoads() override { EXPECT_THAT(fake::Calls(), IsEmpty()) << "no call to GL or CGL"; }

    void Type(int type) { host_.panel[PARAM_SHADOW_TYPE].u.pd.value = type; }
    void Clear() {
        host_.outData.return_msg[0] = '\0';
        host_.calls.clear();
        host_.transfers.clear();
        host_.ResetFailures();
        Soil();
    }
};

TEST_F(ProcessorRoads, TheHostIsCalledInTheSameOrder) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_THAT(
        HostCalls(),
        ElementsAre("checkout_layer_pixels 1", "checkout_layer_pixels 39", "checkout_output", "fill clear whole",
                    "AcquireSuite PF ColorParamSuite 1", "PF_GetFloatingPointColorFromColorDef",
                    "AcquireSuite Umbrant Host Suite 1", "AcquireSuite PF Handle Suite 2", "host_lock_handle",
                    "host_unlock_handle", "host_new_handle 1200", "host_lock_handle",
                    "AcquireSuite PF Iterate8 Suite 1", "iterate8 0 30", "host_unlock_handle", "host_dispose_handle",
                    "host_new_handle 3000", "host_lock_handle", "iterate8 0 50", "host_unlock_handle",
                    "host_dispose_handle", "AcquireSuite PF World Transform Suite 1", "transfer_rect 2",
                    "checkin_layer_pixels 39", "checkin_layer_pixels 1"));
    EXPECT_EQ(host_.global->rendererRecorded, 1);
    EXPECT_THAT(host_.global->gl_renderer, StartsWith("Processor ("));
}

TEST_F(ProcessorRoads, TheRendererIsRecordedUnderALock) {
    host_.PointUnlockedHandlesTo(nullptr);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(host_.global->rendererRecorded, 1);
}

TEST_F(ProcessorRoads, ZeroSizesAreToldAndLeaveTheOutputTransparent) {
    const struct {
        int type;
        const char* message;
        size_t transfers;  ///< only the inner shadow does not go on to the composite
    } rows[] = {{SHADOW_NORMAL, "UM2 Error: in/out FBO too small", 1},
                {SHADOW_RADIAL, "UM2 Radial Error: in/out FBO too small", 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        Clear();
        Type(row.type);
        input_.world.width = 0;
        EXPECT_EQ(Run(), PF_Err_NONE);
        EXPECT_EQ(Message(), row.message);
        EXPECT_TRUE(Transparent());
        EXPECT_EQ(host_.transfers.size(), row.transfers);
        input_.world.width = 40;
    }
    // A fifth of the output's four columns is none.
    Clear();
    Type(SHADOW_INNER);
    host_.panel[PARAM_RESOLUTION].u.pd.value = 1;
    output_.world.width = 4;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Inner Error: in/out FBO too small");
    EXPECT_TRUE(host_.transfers.empty());
    output_.world.width = 60;
}

TEST_F(ProcessorRoads, SixteenBitsAreRefused) {
    host_.renderInput.bitdepth = 16;
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) {
        Clear();
        Type(type);
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_THAT(Message(), StartsWith("Init world called on PF_EffectWorld of incompatible depth, likely 16bpc"));
        EXPECT_TRUE(host_.transfers.empty());
    }
}

TEST_F(ProcessorRoads, FailingTransfersComeBack) {
    for (const int type : {SHADOW_NORMAL, SHADOW_RADIAL}) {
        SCOPED_TRACE(type);
        Type(type);
        for (const int handle : {1, 2}) {
            Clear();
            host_.RestartCounts();
            host_.failNewHandle = handle;
            EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY) << "handle " << handle;
            EXPECT_TRUE(host_.transfers.empty());
            host_.failNewHandle = 0;
        }
        Clear();
        host_.iterateError = 777;
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY) << "the upload's own error is not passed on";
        host_.iterateError = 0;
    }
}

TEST_F(ProcessorRoads, BuffersThatCannotBeHad) {
    // A layer that claims so many pixels that no memory holds its copies.
    for (const int type : {SHADOW_NORMAL, SHADOW_RADIAL}) {
        SCOPED_TRACE(type);
        Clear();
        Type(type);
        Slide(PARAM_SOFTNESS, 40000);
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_THAT(Message(), StartsWith("FBO bad, res: "));
        EXPECT_TRUE(Transparent());
    }
}

TEST_F(ProcessorRoads, NoSamplesAndEmptyLayersDrawNothing) {
    Slide(PARAM_SAMPLES, 0);
    Soil();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Transparent());
    EXPECT_EQ(host_.transfers.size(), 1u);

    Slide(PARAM_SAMPLES, 36);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) input_.At8(x, y) = {0, 9, 9, 9};
    }
    for (const int type : {SHADOW_NORMAL, SHADOW_RADIAL}) {
        Clear();
        Type(type);
        EXPECT_EQ(Run(), PF_Err_NONE);
        for (int y = 0; y < 50; ++y) {
            for (int x = 0; x < 60; ++x) ASSERT_EQ(output_.At8(x, y).alpha, 0);
        }
    }
}

TEST_F(ProcessorRoads, MissingSuitesThrow516AndLeakNothing) {
    for (const char* name : {"PF Handle Suite", "PF Iterate8 Suite", "PF World Transform Suite"}) {
        SCOPED_TRACE(name);
        host_.Refuse(name);
        try {
            Run();
            ADD_FAILURE() << "nothing thrown";
        } catch (PF_Err err) {
            EXPECT_EQ(err, 516);
        }
        host_.Allow(name);
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_EQ(host_.layersOut, 0);
    }
}

TEST_F(ProcessorRoads, ARefusedWishFailsTheFrame) {
    fake::Renderer() = RendererChoice::kRefused;
    Soil();
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_TRUE(Transparent());
    EXPECT_EQ(local_render_data, nullptr);
}

TEST_F(ProcessorRoads, NoContextIsNeeded) {
    DeleteContext(host_.global->context);
    host_.global->context = nullptr;
    fake::ClearCalls();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(local_render_data, nullptr) << "no thread state is made";
    EXPECT_NE(output_.At8(20, 30).alpha, 0);
}

}  // namespace

}  // namespace umbrant::effect
