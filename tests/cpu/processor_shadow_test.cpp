// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Whole renders by the CPU renderer, on machines without any OpenGL: against the model, and against themselves with
// every instruction set, any number of threads, and with or without the bounds.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <thread>

#include "cpu/coarse/decimation.h"
#include "cpu/kernels/kernels.h"
#include "cpu/thread_pool.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/passes/work_extent.h"
#include "render/processor/processor_path.h"
#include "render/smart_render.h"
#include "tests/cpu/processor_scene.h"

namespace umbrant::effect {

namespace {

class ProcessorTest : public ::testing::Test, protected SceneRenderer {
 protected:
    ProcessorTest() {
        fake::Reset();
        fake::Renderer() = RendererChoice::kProcessor;
    }
    ~ProcessorTest() override {
        SetDrawsExactly(false);
        UseKernels(nullptr);
        LimitPoolThreads(0);
        SetWorksEverywhere(false);
        EndProcessorThreads();
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_EQ(host_.layersOut, 0);
        EXPECT_TRUE(fake::Calls().empty()) << "no call to GL: " << fake::Calls().front();
        fake::Reset();
    }

    void ExpectBoundsChangeNothing(const RandomScene& scene) {
        SetWorksEverywhere(false);
        const Plane bounded = Draw(scene);
        SetWorksEverywhere(true);
        const Plane everywhere = Draw(scene);
        EXPECT_TRUE(bounded.values == everywhere.values) << scene.words;
    }
};

struct Case {
    const char* name;
    int type;
    int depth;
    void (*change)(PanelValues&);
};

const Case kCases[] = {
    {"small default", 1, 8, [](PanelValues&) {}},
    {"small default in float", 1, 32, [](PanelValues&) {}},
    {"the layer's own alpha", 1, 32,
     [](PanelValues& p) {
         p.distance = p.softness = p.offsetShadow = p.easeOpacity = 0;
         p.samples = 1;
         p.resolution = 5;
         p.opacityEnd = 100;
     }},
    {"to the upper left", 1, 8, [](PanelValues& p) { p.angle = -45; }},
    {"straight down", 1, 8, [](PanelValues& p) { p.angle = 180; }},
    {"ease in and out", 1, 32, [](PanelValues& p) { p.easeMode = 2; }},
    {"linear", 1, 8, [](PanelValues& p) { p.ease = 0; }},
    {"draft", 1, 8, [](PanelValues& p) { p.resolution = 1; }},
    {"extreme", 1, 32, [](PanelValues& p) { p.resolution = 5; }},
    {"half resolution", 1, 8, [](PanelValues& p) { p.scale = 0.5; }},
    {"two samples share a buffer", 1, 8, [](PanelValues& p) { p.samples = 2; }},
    {"dense and opaque", 1, 32,
     [](PanelValues& p) {
         p.opacityStart = 90;
         p.opacityEnd = 100;
         p.samples = 20;
     }},
    {"far offset", 1, 8, [](PanelValues& p) { p.offsetShadow = 30; }},
    {"inner", 2, 8, [](PanelValues&) {}},
    {"inner in float", 2, 32, [](PanelValues&) {}},
    {"inner to the upper left", 2, 8, [](PanelValues& p) { p.angle = 315; }},
    {"inner draft", 2, 8, [](PanelValues& p) { p.resolution = 1; }},
    {"inner extreme", 2, 32, [](PanelValues& p) { p.resolution = 5; }},
    {"inner at half resolution", 2, 8, [](PanelValues& p) { p.scale = 0.5; }},
    {"radial", 3, 8, [](PanelValues&) {}},
    {"radial in float", 3, 32, [](PanelValues&) {}},
    {"radial without distance", 3, 8, [](PanelValues& p) { p.distance = 0; }},
    {"radial draft", 3, 8, [](PanelValues& p) { p.resolution = 1; }},
    {"radial extreme", 3, 32, [](PanelValues& p) { p.resolution = 5; }},
    {"radial far", 3, 32, [](PanelValues& p) { p.distance = 400; }},
    {"radial at half resolution", 3, 8, [](PanelValues& p) { p.scale = 0.5; }},
};

class ProcessorCases : public ProcessorTest, public ::testing::WithParamInterface<Case> {};

TEST_P(ProcessorCases, MatchTheModel) {
    const Case& c = GetParam();
    RandomScene scene;
    scene.type = c.type;
    scene.depth = c.depth;
    scene.width = 40;
    scene.height = 30;
    scene.panel.distance = 25;
    scene.panel.softness = 20;
    scene.panel.samples = 9;
    scene.originX = 10;
    scene.originY = 5;
    scene.alphaOf = LayerAlpha;
    c.change(scene.panel);
    const Plane drawn = Draw(scene);
    ExpectLike(drawn, Model(scene), scene.panel.samples);
}

INSTANTIATE_TEST_SUITE_P(All, ProcessorCases, ::testing::ValuesIn(kCases),
                         [](const auto& row) { return TestName(row.param.name); });

// In these an edge of a copy is within 1/256 pixel of a pixel's centre.
constexpr unsigned kEdgesOnCentres[] = {130, 184, 297};
// In these the places of output columns step over a texel by their last bits.
constexpr unsigned kTexelsSteppedOver[] = {866, 896, 1187, 1794, 2549};

// Splines of wide samples have faint tails outside of what the bounds leave to draw, where the exact sample is 0.
TEST_F(ProcessorTest, BoundsChangeNoByte) {
    SetDrawsExactly(true);
    for (unsigned number = 0; number < ScenesToDraw(300); ++number) ExpectBoundsChangeNothing(MakeRandomScene(number));
}

TEST_F(ProcessorTest, BoundsChangeNoByteWhateverTheAlphas) {
    SetDrawsExactly(true);
    for (unsigned number = 0; number < ScenesToDraw(600); ++number) {
        ExpectBoundsChangeNothing(MakeOddScene(number, OddAlphas::kAny));
    }
}

double special = 0;
double WithASpecialPixel(int x, int y) {
    if (x < 10 || y < 8 || x > 30 || y > 22) return 0;
    return x == 20 && y == 15 ? special : 0.3;
}

TEST_F(ProcessorTest, InfiniteAlphasAreLikeVeryLargeOnesAndNotANumberIsLikeNothing) {
    RandomScene scene;
    scene.depth = 32;
    scene.width = 40;
    scene.height = 30;
    scene.panel.distance = 5;
    scene.panel.softness = 8;
    scene.panel.samples = 3;
    scene.alphaOf = WithASpecialPixel;
    const auto drawn = [&](double alpha) {
        special = alpha;
        return Draw(scene).values;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) {
        SCOPED_TRACE(type);
        scene.type = type;
        const auto plain = drawn(0.3);
        EXPECT_NE(drawn(infinity), plain) << "else the test proves nothing";
        EXPECT_TRUE(drawn(infinity) == drawn(1e25));
        EXPECT_TRUE(drawn(-infinity) == drawn(-1e25));
        EXPECT_NE(drawn(0), plain) << "else the test proves nothing";
        EXPECT_TRUE(drawn(std::nan("")) == drawn(0));
    }
}

TEST_F(ProcessorTest, MatchesTheModelInRandomScenes) {
    double energy = 0;
    const auto draw = [&](unsigned number) {
        const RandomScene scene = MakeRandomScene(number);
        SCOPED_TRACE(scene.words);
        const Plane drawn = Draw(scene);
        if (!Message().empty()) return;
        energy += ExpectAlike(drawn, Model(scene), scene.panel.samples);
    };
    const unsigned scenes = ScenesToDraw(100);
    for (unsigned number = 0; number < scenes; ++number) draw(number);
    for (const unsigned number : kEdgesOnCentres) draw(number);
    for (const unsigned number : kTexelsSteppedOver) draw(number);
    EXPECT_GT(energy, scenes) << "empty pictures prove nothing";
}

TEST_F(ProcessorTest, EveryInstructionSetAndNumberOfThreadsGivesTheSameBytes) {
    const auto draw = [&](unsigned number) {
        const RandomScene scene = MakeRandomScene(number);
        UseKernels(nullptr);
        LimitPoolThreads(1);
        const Plane one = Draw(scene);
        for (const CpuKernels* kernels : RunnableKernels()) {
            UseKernels(kernels);
            LimitPoolThreads(3);
            ASSERT_EQ(Draw(scene).values, one.values) << kernels->name << ", " << scene.words;
        }
    };
    for (unsigned number = 0; number < 60; ++number) draw(number);
    for (const unsigned number : kTexelsSteppedOver) draw(number);
}

TEST_F(ProcessorTest, SaysWhatDraws) {
    Draw(MakeRandomScene(0));
    EXPECT_EQ(host_.global->rendererRecorded, 1);
    EXPECT_EQ(std::string(host_.global->gl_renderer), ProcessorName());
    EXPECT_NE(ProcessorName().find(BestKernels().name), std::string::npos);
    EXPECT_EQ(ProcessorName().rfind("Processor (", 0), 0u);
}

// Objects of thread duration end in the opposite order of their making: this one after the renders' memory.
struct LateSetDown {
    bool* done = nullptr;
    ~LateSetDown() {
        EndProcessorThreads();
        *done = true;
    }
};

TEST_F(ProcessorTest, CanBeSetDownWhenTheThreadsMemoryIsGone) {
    bool done = false;
    std::thread([&] {
        thread_local LateSetDown late;
        late.done = &done;
        Draw(MakeRandomScene(0));
    }).join();
    EXPECT_TRUE(done);
}

}  // namespace

}  // namespace umbrant::effect
