// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The processor's pictures beside the GPU passes' own.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "gl/context.h"
#include "gl/thread_state.h"
#include "platform/renderer_choice.h"
#include "render/passes/work_extent.h"
#include "render/smart_render.h"
#include "tests/cpu/processor_scene.h"
#include "tests/support/child_process.h"
#include "tests/support/gl_context.h"

namespace umbrant::effect {

namespace {

RendererChoice choice = RendererChoice::kOpenGL;

// Mesa's software renderer mixes the texels of an 8-bit texture in 8 bits by default. No other driver
// does, so the processor does not follow it there. Set before any driver is loaded.
const int exactMixing = setenv("GALLIVM_PERF", "no_aos_sampling", 1);

}  // namespace

// In place of the one that reads the environment once.
RendererChoice ChosenRenderer() {
    return choice;
}

namespace {

// How far the two may lie apart: 8-bit by one step, on a share of the pixels that depends on the number of samples;
// float by what one rounding a sample can do, in 1/65535, and half a step for the picture's own.
constexpr double kManySamples = 36;
constexpr double kShareOfFew = 0.005;
constexpr double kShareOfMany = 0.03;
constexpr double kStepsPerSample = 1.5;
constexpr double kStepsOfPicture = 0.5;
// Of a smaller picture a share of this many pixels may differ: a single pixel is a large part of a tiny one.
constexpr size_t kFewestPixels = 1000;

class BothPaths : public GLContextTest, protected SceneRenderer {
 protected:
    void SetUp() override {
        ASSERT_EQ(exactMixing, 0);
        GLContextTest::SetUp();
        if (IsSkipped()) return;
        host_.global->context = context_;
        filterError_ = FilterError();
    }
    void TearDown() override {
        choice = RendererChoice::kOpenGL;
        SetWorksEverywhere(false);
        local_render_data.reset();
        if (context_) SetCurrentContext(context_);
        GLContextTest::TearDown();
    }

    Plane DrawBy(RendererChoice by, const RandomScene& scene) {
        choice = by;
        return Draw(scene);
    }

    void ExpectNear(const Plane& one, const Plane& other, const RandomScene& scene) const {
        ASSERT_EQ(one.values.size(), other.values.size());
        const double unit = scene.depth == 8 ? 255 : 65535;
        double worst = 0;
        size_t different = 0;
        for (size_t i = 0; i < one.values.size(); ++i) {
            const double difference = std::abs(one.values[i] - other.values[i]) * unit;
            worst = std::max(worst, difference);
            if (difference > 0.5) ++different;
        }
        const double samples = std::floor(scene.panel.samples);
        // Each copy is placed between texels across and down; the taps of the blurs average their errors out.
        const double filter = 2 * filterError_ * samples * unit;
        if (scene.depth == 8) {
            EXPECT_LE(worst, 1.01 + filter) << scene.words;
            // A driver whose filter is off by more than float's rounding moves pixels over a step anywhere.
            if (filter > 0.05) return;
            const double share = samples <= kManySamples ? kShareOfFew : kShareOfMany;
            const auto counted = static_cast<double>(std::max(one.values.size(), kFewestPixels));
            EXPECT_LE(static_cast<double>(different), share * counted) << scene.words;
        } else {
            EXPECT_LE(worst, kStepsPerSample * samples + kStepsOfPicture + filter) << scene.words;
        }
    }

    void ExpectAlike(const RandomScene& scene) {
        const Plane gpu = DrawBy(RendererChoice::kOpenGL, scene);
        const std::string message = Message();
        const Plane cpu = DrawBy(RendererChoice::kProcessor, scene);
        EXPECT_EQ(Message(), message) << scene.words;
        ExpectNear(gpu, cpu, scene);
    }

    void ExpectBoundsChangeNothing(const RandomScene& scene) {
        SetWorksEverywhere(false);
        const Plane bounded = DrawBy(RendererChoice::kOpenGL, scene);
        SetWorksEverywhere(true);
        const Plane everywhere = DrawBy(RendererChoice::kOpenGL, scene);
        EXPECT_TRUE(bounded.values == everywhere.values) << scene.words;
    }

    // The processor alone, against the model rounded as pictures are.
    void ExpectLikeTheModel(const RandomScene& scene) {
        const Plane cpu = DrawBy(RendererChoice::kProcessor, scene);
        Plane model = Model(scene);
        const double unit = scene.depth == 8 ? 255 : 65535;
        for (double& value : model.values) value = std::round(value * unit) / unit;
        ExpectNear(model, cpu, scene);
    }
};

// In these the software renderer leaves the model farther than the bounds, by at most 13/65535 or one byte more often,
// where the processor keeps to it.
constexpr unsigned kDriverIsOff[] = {306, 580, 918, 1804, 2161};

TEST_F(BothPaths, DrawRandomScenesAlike) {
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) {
        if (std::find(std::begin(kDriverIsOff), std::end(kDriverIsOff), number) != std::end(kDriverIsOff)) continue;
        ExpectAlike(MakeRandomScene(number));
    }
}

TEST_F(BothPaths, TheProcessorIsRightWhereTheDriverIsOff) {
    for (const unsigned number : kDriverIsOff) ExpectLikeTheModel(MakeRandomScene(number));
}

// The driver's threads are the parent's; a child that asked for them would wait for ever.
TEST_F(BothPaths, InAForkedChildOpenGLFailsAtOnceAndTheProcessorDraws) {
    const RandomScene scene = MakeRandomScene(3);
    const Plane here = DrawBy(RendererChoice::kProcessor, scene);
    DrawBy(RendererChoice::kOpenGL, scene);
    const auto child = [&] {
        choice = RendererChoice::kOpenGL;
        if (SmartRender(&host_.inData, &host_.outData, &host_.renderExtra) != PF_Err_INTERNAL_STRUCT_DAMAGED) return 1;
        if (Message().rfind("UM2 Error: this process was forked from one that uses OpenGL", 0) != 0) return 2;
        if (CreateContext(nullptr, nullptr) != nullptr) return 3;
        DeleteContext(context_);
        SetCurrentContext(nullptr);
        if (GetCurrentContext() != nullptr || local_render_data) return 4;
        return DrawBy(RendererChoice::kProcessor, scene).values == here.values ? 0 : 5;
    };
    EXPECT_EQ(RunInChild(child), 0);
    DrawBy(RendererChoice::kOpenGL, scene);
}

TEST_F(BothPaths, DrawAlphasOutsideTheirRangeAlike) {
    for (unsigned number = 0; number < ScenesToDraw(150); ++number) {
        ExpectAlike(MakeOddScene(number, OddAlphas::kFinite));
    }
}

TEST_F(BothPaths, BoundsChangeNoByteOnTheGpu) {
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) ExpectBoundsChangeNothing(MakeRandomScene(number));
}

TEST_F(BothPaths, BoundsChangeNoByteOnTheGpuWhateverTheAlphas) {
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) {
        ExpectBoundsChangeNothing(MakeOddScene(number, OddAlphas::kAny));
    }
}

}  // namespace

}  // namespace umbrant::effect
