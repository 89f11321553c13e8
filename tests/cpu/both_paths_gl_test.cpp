// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The processor's pictures beside the GPU passes' own.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "gl/context.h"
#include "gl/thread_state.h"
#include "platform/renderer_choice.h"
#include "render/work_extent.h"
#include "tests/cpu/processor_scene.h"
#include "tests/support/gl_context.h"

namespace {

RendererChoice choice = RendererChoice::kOpenGL;

// Mesa's software renderer mixes the texels of an 8-bit texture in 8 bits unless it is told not to. No other driver
// does, so the processor does not follow it there. Set before any driver is loaded.
const int exactMixing = setenv("GALLIVM_PERF", "no_aos_sampling", 1);

}  // namespace

// In place of the one that reads the environment once.
RendererChoice ChosenRenderer() {
    return choice;
}

namespace {

// How far the two may lie apart: 8-bit by one step, on a share of the pixels that depends on the number of samples;
// float by what one rounding a sample can do, in 1/65535, and half a step for the picture's own. A share of the pixels
// may lie farther apart: where a steep edge of a copy falls, the driver knows in single precision only.
constexpr double kManySamples = 36;
constexpr double kShareOfFew = 0.0075;
constexpr double kShareOfMany = 0.03;
constexpr double kStepsPerSample = 1.5;
constexpr double kStepsOfPicture = 0.5;
constexpr double kStepsOfPlace = 16;
// Of a smaller picture a share of this many pixels may differ: a single pixel is a large part of a tiny one.
constexpr size_t kFewestPixels = 1000;

class BothPaths : public GLContextTest, protected SceneRenderer {
 protected:
    void SetUp() override {
        ASSERT_EQ(exactMixing, 0);
        GLContextTest::SetUp();
        if (!IsSkipped()) host_.global->context = context_;
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

    void ExpectAlike(const RandomScene& scene) {
        const Plane gpu = DrawBy(RendererChoice::kOpenGL, scene);
        const std::string message = Message();
        const Plane cpu = DrawBy(RendererChoice::kProcessor, scene);
        EXPECT_EQ(Message(), message) << scene.words;
        ASSERT_EQ(gpu.values.size(), cpu.values.size());
        const double samples = std::floor(scene.panel.samples);
        const bool bytes = scene.depth == 8;
        const double unit = bytes ? 255 : 65535;
        const double near = bytes ? 0.5 : kStepsPerSample * samples + kStepsOfPicture;
        double worst = 0;
        size_t different = 0;
        for (size_t i = 0; i < gpu.values.size(); ++i) {
            const double difference = std::abs(gpu.values[i] - cpu.values[i]) * unit;
            worst = std::max(worst, difference);
            if (difference > near) ++different;
        }
        EXPECT_LE(worst, bytes ? 1.01 : near + kStepsOfPlace) << scene.words;
        const double share = samples <= kManySamples ? kShareOfFew : kShareOfMany;
        const auto counted = static_cast<double>(std::max(gpu.values.size(), kFewestPixels));
        EXPECT_LE(static_cast<double>(different), share * counted) << scene.words;
    }
};

TEST_F(BothPaths, DrawRandomScenesAlike) {
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) ExpectAlike(MakeRandomScene(number));
}

TEST_F(BothPaths, BoundsChangeNoByteOnTheGpu) {
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) {
        const RandomScene scene = MakeRandomScene(number);
        SetWorksEverywhere(false);
        const Plane bounded = DrawBy(RendererChoice::kOpenGL, scene);
        SetWorksEverywhere(true);
        const Plane everywhere = DrawBy(RendererChoice::kOpenGL, scene);
        ASSERT_EQ(bounded.values, everywhere.values) << scene.words;
    }
}

}  // namespace
