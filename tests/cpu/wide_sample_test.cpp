// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Samples on coarse grids against the exact arithmetic, on the layers that are hard for them: hard edges, thin lines,
// noise and text at high opacities, few samples, all depths.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <vector>

#include "cpu/coarse/decimation.h"
#include "cpu/kernels/kernels.h"
#include "cpu/thread_pool.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/processor_scene.h"
#include "tests/support/sanitized.h"

namespace umbrant::effect {

namespace {

struct HardLayer {
    int shape = 0;
    int width = 0;
    int height = 0;
    unsigned seed = 0;
};
HardLayer layer;

unsigned Hash(int x, int y) {
    return PixelHash(layer.seed, x, y);
}

double AlphaOf(int x, int y) {
    switch (layer.shape) {
        case 0:  // an edge down the middle
            return x < layer.width / 2 ? 1 : 0;
        case 1:  // lines across
            return y % 40 == 7 ? 1 : 0;
        case 2:  // lines down
            return x % 40 == 7 ? 1 : 0;
        case 3:  // black and white noise
            return Hash(x, y) & 1u ? 1 : 0;
        case 4:  // hard blocks
            return Hash(x / 23, y / 17) & 1u ? 1 : 0;
        case 5:  // strokes, as of text
            return Hash(x / 30, y / 30) % 3 == 0 && (x % 30 / 3 == 2 || y % 30 / 3 == 5) ? 1 : 0;
        case 6:  // a disc that touches no edge
            return std::clamp(layer.width / 3.0 - std::hypot(x - layer.width / 2.0, y - layer.height / 2.0), 0.0, 1.0);
        case 7:  // full
            return 1;
        default:  // one pixel
            return x == layer.width / 2 && y == layer.height / 2 ? 1 : 0;
    }
}

RandomScene MakeHardScene(unsigned number) {
    std::mt19937 engine(number * 104729u + 5u);
    const auto uniform = [&](double low, double high) {
        return low + (high - low) * (static_cast<double>(engine()) / 4294967296.0);
    };
    const auto whole = [&](int low, int high) {
        return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
    };
    RandomScene scene;
    scene.type = static_cast<int>(number % 3) + 1;
    scene.depth = whole(0, 1) ? 8 : 32;
    scene.width = whole(120, 330);
    scene.height = whole(100, 260);
    PanelValues& p = scene.panel;
    p.angle = uniform(-180, 180);
    p.distance = uniform(0, 120);
    p.softness = uniform(20, 160);
    p.opacityStart = whole(0, 2) ? uniform(0, 100) : 100;
    p.opacityEnd = whole(0, 2) ? uniform(0, 100) : 100;
    p.easeMode = whole(1, 2);
    p.ease = whole(0, 2) ? uniform(0, 100) : 0;
    p.easeDistance = uniform(0, 100);
    p.easeSoftness = uniform(0, 100);
    p.easeOpacity = uniform(0, 100);
    p.samples = whole(0, 2) ? whole(1, 8) : whole(9, 48);
    p.resolution = whole(0, 1) ? 5 : whole(2, 4);
    scene.originX = uniform(-40, 200);
    scene.originY = uniform(-40, 200);
    layer = {whole(0, 8), scene.width, scene.height, static_cast<unsigned>(engine())};
    scene.alphaOf = AlphaOf;
    std::ostringstream words;
    words << "hard scene " << number << ": type " << scene.type << ", " << scene.depth << " bits, " << scene.width
          << " x " << scene.height << ", shape " << layer.shape << ", softness " << p.softness << ", opacity "
          << p.opacityStart << " to " << p.opacityEnd << ", samples " << p.samples << ", resolution " << p.resolution;
    scene.words = words.str();
    return scene;
}

/// Pixels of areas of at least 64 equal values that are within 2/65535 of a step of 8 bits: there the last bit of a sum
/// decides for a whole area.
std::vector<bool> Ties(const Plane& exact) {
    constexpr double kSteps = 65535;
    constexpr std::size_t kArea = 64;
    std::vector<bool> ties(exact.values.size(), false);
    std::vector<bool> seen(exact.values.size(), false);
    const auto isNear = [&](double value) {
        const double step = value * 255;
        return std::abs(step - std::floor(step) - 0.5) * kSteps / 255 <= 2;
    };
    for (std::size_t start = 0; start < exact.values.size(); ++start) {
        if (seen[start] || !isNear(exact.values[start])) continue;
        std::vector<std::size_t> area{start};
        seen[start] = true;
        for (std::size_t i = 0; i < area.size(); ++i) {
            const auto x = static_cast<int>(area[i]) % exact.width;
            const auto y = static_cast<int>(area[i]) / exact.width;
            for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                if (x + dx < 0 || x + dx >= exact.width || y + dy < 0 || y + dy >= exact.height) continue;
                const auto next = static_cast<std::size_t>((y + dy) * exact.width + x + dx);
                if (seen[next] || exact.values[next] != exact.values[start]) continue;
                seen[next] = true;
                area.push_back(next);
            }
        }
        if (area.size() < kArea) continue;
        for (const std::size_t pixel : area) ties[pixel] = true;
    }
    return ties;
}

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

    Plane DrawnExactly(const RandomScene& scene, bool exactly) {
        SetDrawsExactly(exactly);
        return Draw(scene);
    }

    /// Whether any value differs, which shows that a sample was decimated.
    bool ExpectNear(RandomScene scene) {
        const int depth = scene.depth;
        scene.depth = 32;
        const Plane inFloat = DrawnExactly(scene, true);
        scene.depth = depth;
        const Plane exact = depth == 32 ? inFloat : DrawnExactly(scene, true);
        const Plane wide = DrawnExactly(scene, false);
        const double unit = depth == 8 ? 255 : 65535;
        double worst = 0;
        std::size_t different = 0;
        std::size_t tied = 0;
        std::vector<bool> ties;
        for (std::size_t i = 0; i < exact.values.size(); ++i) {
            const double difference = std::abs(exact.values[i] - wide.values[i]) * unit;
            worst = std::max(worst, difference);
            if (difference < 0.5) continue;
            if (depth == 8 && ties.empty()) ties = Ties(inFloat);
            const bool isTie = depth == 8 && ties[i];
            different += isTie ? 0 : 1;
            tied += isTie ? 1 : 0;
        }
        ties_ += tied;
        const double samples = std::floor(scene.panel.samples);
        if (depth == 8) {
            EXPECT_LE(worst, 1.01) << scene.words;
            largestShare_ =
                std::max(largestShare_, static_cast<double>(different) / static_cast<double>(exact.values.size()));
            EXPECT_LE(static_cast<double>(different), 0.01 * static_cast<double>(exact.values.size())) << scene.words;
        } else {
            largestOfAllowed_ = std::max(largestOfAllowed_, worst / (1.5 * samples + 0.5));
            EXPECT_LE(worst, 1.5 * samples + 0.5) << scene.words;
        }
        return different + tied > 0;
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
