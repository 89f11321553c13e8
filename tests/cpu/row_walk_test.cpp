// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pixels to and from this project's own host, by rows: the same picture as by iterating, in fewer calls.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "hostapi/suites/umbrant_host_suite.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/processor_scene.h"
#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

PF_Err walkError = PF_Err_NONE;
int failWalk = 0;  // which walk fails, from 1
int walks = 0;

PF_Err ChooseProcessor(PF_ProgPtr, UMBRANT_Renderer* renderer) {
    *renderer = UMBRANT_Renderer_PROCESSOR;
    return PF_Err_NONE;
}

PF_Err WalkRows(PF_ProgPtr effect_ref, PF_EffectWorld* world, void* refcon, UMBRANT_RowFunction function) {
    EXPECT_EQ(effect_ref, TestHost::Current().inData.effect_ref);
    TestHost::Current().Log("WalkRows " + std::to_string(world->height));
    if (++walks == failWalk) return walkError;
    for (A_long y = world->height - 1; y >= 0; --y) {
        char* row = reinterpret_cast<char*>(world->data) + ptrdiff_t{y} * world->rowbytes;
        if (const PF_Err error = function(refcon, y, row)) return error;
    }
    return PF_Err_NONE;
}

const UMBRANT_HostSuite1 kFirst{ChooseProcessor};
const UMBRANT_HostSuite2 kSecond{ChooseProcessor, WalkRows};

void Offer(TestHost& host) {
    host.Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1, &kFirst);
    host.Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion2, &kSecond);
}

class RowWalk : public SmartRenderTest {
 protected:
    RowWalk() {
        walks = 0;
        failWalk = 0;
        walkError = PF_Err_NONE;
        fake::Renderer() = RendererChoice::kProcessor;
    }
    void Type(int type) { host_.panel[PARAM_SHADOW_TYPE].u.pd.value = type; }
};

TEST_F(RowWalk, TakesThePlaceOfIterating) {
    Offer(host_);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_THAT(
        HostCalls(),
        ElementsAre("checkout_layer_pixels 1", "checkout_layer_pixels 39", "checkout_output", "fill clear whole",
                    "AcquireSuite PF ColorParamSuite 1", "PF_GetFloatingPointColorFromColorDef",
                    "AcquireSuite Umbrant Host Suite 1", "AcquireSuite PF Handle Suite 2", "host_lock_handle",
                    "host_unlock_handle", "host_new_handle 1200", "host_lock_handle",
                    "AcquireSuite Umbrant Host Suite 2", "WalkRows 30", "host_unlock_handle", "host_dispose_handle",
                    "AcquireSuite Umbrant Host Suite 2", "WalkRows 50", "AcquireSuite PF World Transform Suite 1",
                    "transfer_rect 2", "checkin_layer_pixels 39", "checkin_layer_pixels 1"));
}

TEST_F(RowWalk, AHostOfTheFirstVersionIteratesAsEver) {
    host_.Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1, &kFirst);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(host_.CountOf("iterate8 0 30"), 1);
    EXPECT_EQ(host_.CountOf("iterate8 0 50"), 1);
}

TEST_F(RowWalk, MakesTheInnerShadowsGroundOpaque) {
    Offer(host_);
    Type(SHADOW_INNER);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(walks, 3);
    EXPECT_EQ(host_.CountOf("iterate8"), 0);
    walks = 0;
    failWalk = 3;
    walkError = 778;
    EXPECT_EQ(Run(), 778);
}

TEST_F(RowWalk, ErrorsAreReturned) {
    Offer(host_);
    walkError = 777;
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) {
        SCOPED_TRACE(type);
        Type(type);
        walks = 0;
        failWalk = 1;
        EXPECT_EQ(Run(), 777) << "other than that of an upload by iterating";
        walks = 0;
        failWalk = 2;
        EXPECT_EQ(Run(), 777);
        EXPECT_EQ(walks, 2);
    }
}

class RowWalkScenes : public testing::Test, protected SceneRenderer {
 protected:
    RowWalkScenes() {
        fake::Reset();
        fake::Renderer() = RendererChoice::kProcessor;
    }
    ~RowWalkScenes() override {
        EndProcessorThreads();
        fake::Reset();
    }
};

TEST_F(RowWalkScenes, GiveTheSamePicture) {
    std::vector<Plane> iterated;
    for (unsigned number = 0; number < 24; ++number) iterated.push_back(Draw(MakeRandomScene(number)));
    Offer(Host());
    walks = 0;
    failWalk = 0;
    for (unsigned number = 0; number < 24; ++number) {
        const RandomScene scene = MakeRandomScene(number);
        EXPECT_TRUE(Draw(scene).values == iterated[number].values) << scene.words;
        if (scene.type == SHADOW_INNER) {
            EXPECT_THAT(AlphaOf(output_->world).values, Each(1)) << scene.words << ": what the shadow is laid over";
        }
    }
    EXPECT_GE(walks, 24);
}

}  // namespace

}  // namespace umbrant::effect
