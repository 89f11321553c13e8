// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Samples on coarse grids against the exact arithmetic, on the layers that are hard for them: hard edges, thin lines,
// noise and text at high opacities, few samples, all depths.

#include <gtest/gtest.h>

#include <algorithm>

#include "cpu/coarse/decimation.h"
#include "cpu/kernels/kernels.h"
#include "cpu/thread_pool.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/hard_scene.h"
#include "tests/support/sanitized.h"

namespace umbrant::effect {

namespace {

class WideSamples : public testing::Test, protected SceneRenderer {
 protected:
    WideSamples() {
        fake::Reset();
        fake::Renderer() = RendererChoice::kProcessor;
    }
    ~WideSamples() override {
        SetDrawsExactly(false);
        UseKernels(nullptr);
        LimitPoolThreads(0);
        EndProcessorThreads();
        fake::Reset();
    }

    /// Whether any value differs, which shows that a sample was decimated.
    bool ExpectNear(const RandomScene& scene) {
        const SceneErrors errors = MeasureErrors(*this, scene);
        EXPECT_LE(errors.worst, errors.allowed) << scene.words;
        EXPECT_LE(errors.share, 0.01) << scene.words;
        ties_ += errors.ties;
        largestShare_ = std::max(largestShare_, errors.share);
        if (scene.depth == 32) largestOfAllowed_ = std::max(largestOfAllowed_, errors.worst / errors.allowed);
        return errors.isDecimated;
    }

    std::size_t ties_ = 0;
    double largestShare_ = 0;      ///< of the pixels of an 8-bit scene that differ
    double largestOfAllowed_ = 0;  ///< error of a float scene, of what is allowed
};

TEST_F(WideSamples, AreWithinTheBoundsOfTheExactOnes) {
    const unsigned scenes = ScenesToDraw(kIsSanitized ? 40 : 300);
    unsigned decimated = 0;
    for (unsigned number = 0; number < scenes; ++number) decimated += ExpectNear(MakeHardScene(number)) ? 1 : 0;
    EXPECT_GT(decimated, scenes / 4) << "most of these must be decimated";
    RecordProperty("decimated_scenes", static_cast<int>(decimated));
    RecordProperty("tied_pixels", static_cast<int>(ties_));
    RecordProperty("largest_share_ppm", static_cast<int>(1e6 * largestShare_));
    RecordProperty("largest_error_percent_of_allowed", static_cast<int>(100 * largestOfAllowed_));
}

TEST_F(WideSamples, AreTheSameBytesForEveryInstructionSetAndAnyNumberOfThreads) {
    for (const unsigned number : {0u, 1u, 3u, 4u, 7u, 10u}) {
        const RandomScene scene = MakeHardScene(number);
        const Plane expected = Draw(scene);
        for (const CpuKernels* kernels : RunnableKernels()) {
            for (const int threads : {1, 2, 3}) {
                UseKernels(kernels);
                LimitPoolThreads(threads);
                EXPECT_TRUE(Draw(scene).values == expected.values)
                    << scene.words << ", " << kernels->name << ", " << threads << " threads";
            }
        }
        UseKernels(nullptr);
        LimitPoolThreads(0);
    }
}

}  // namespace

}  // namespace umbrant::effect
