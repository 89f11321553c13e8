// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How the output is divided for drawing changes no byte of it.

#include <gtest/gtest.h>

#include <algorithm>

#include "cpu/coarse/decimation.h"
#include "cpu/patch_size.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/processor_scene.h"
#include "tests/support/sanitized.h"

namespace umbrant::effect {

namespace {

class Patches : public testing::Test, protected SceneRenderer {
 protected:
    Patches() {
        fake::Reset();
        fake::Renderer() = RendererChoice::kProcessor;
    }
    ~Patches() override {
        SetPatchSize({});
        SetDrawsExactly(false);
        EndProcessorThreads();
        fake::Reset();
    }

    void ExpectSameInEverySize(unsigned number) {
        SetPatchSize({1 << 20, 1 << 20});
        const Plane whole = Draw(MakeRandomScene(number));
        for (const PatchSize size : {PatchSize{64, 48}, PatchSize{7, 200}, PatchSize{333, 5}}) {
            SetPatchSize(size);
            const RandomScene scene = MakeRandomScene(number);
            const Plane patches = Draw(scene);
            EXPECT_TRUE(whole.values == patches.values) << scene.words << ", " << size.width << " x " << size.height;
        }
    }
};

TEST_F(Patches, ChangeNoByte) {
    for (unsigned number = 0; number < ScenesToDraw(kIsSanitized ? 12 : 60); ++number) ExpectSameInEverySize(number);
}

TEST_F(Patches, ChangeNoByteOnWholeGrids) {
    SetDrawsExactly(true);
    for (unsigned number = 100; number < 100 + ScenesToDraw(kIsSanitized ? 8 : 40); ++number) {
        ExpectSameInEverySize(number);
    }
}

// In low patches no blur counts as short, and each sample is blurred for itself.
TEST_F(Patches, SamplesThatShareTheirCopyLookAsWithoutSharing) {
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) {
        for (const double samples : {2.0, 21.0, 120.0}) {
            RandomScene scene = MakeRandomScene(5);
            scene.type = type;
            scene.panel.samples = samples;
            scene.panel.softness = 0;
            scene.panel.distance = 60;
            scene.panel.opacityStart = scene.panel.opacityEnd = 40;
            SetPatchSize({64, 64});
            const Plane shared = Draw(scene);
            SetPatchSize({64, 1});
            EXPECT_TRUE(shared.values == Draw(scene).values) << type << ", " << samples << " samples";
        }
    }
}

TEST_F(Patches, MoreSamplesThanAGroupHolds) {
    RandomScene scene = MakeRandomScene(3);
    scene.type = SHADOW_NORMAL;
    scene.panel.samples = 130;
    scene.panel.softness = 12;
    SetPatchSize({1 << 20, 1 << 20});
    const Plane whole = Draw(scene);
    EXPECT_NE(*std::max_element(whole.values.begin(), whole.values.end()), 0) << scene.words;
    SetPatchSize({50, 40});
    EXPECT_TRUE(whole.values == Draw(scene).values) << scene.words;
}

}  // namespace

}  // namespace umbrant::effect
