// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library by OpenGL: the program's pixels, and a context that no calling thread ever sees.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

#include "tests/host/library/library_gl_fixture.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::Image;

constexpr int kThreads = 6;

/// The panel's row of that name; empty without.
std::string OpenGLVersion(const Effect& effect) {
    for (const umbrant::Parameter& parameter : effect.Parameters()) {
        if (parameter.name == "OpenGL Version" && !parameter.itemNames.empty()) return parameter.itemNames[0];
    }
    return "";
}

TEST_F(LibraryGl, DrawsWhatTheProgramDraws) {
    const Folder folder;
    const auto layer = Disc8(61, 47);
    WritePixels(folder / "in.tif", layer);
    Effect effect = GlEffect();
    effect.Set("style/distance", 25);
    const Image image = effect.Render(layer.View());
    const Outcome outcome =
        RunUmbrant(folder, {"render", "in.tif", "-o", "out.tif", "--renderer", "gl", "--set", "style/distance=25"},
                   {{std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE}, ""});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(DifferentPixels(Read(folder / "out.tif").pixels, image.View()), 0);
    EXPECT_EQ(effect.RendererText(), "drawn by the GPU renderer: requested");
}

TEST_F(LibraryGl, TheCallersContextStaysAndNoOtherIsMadeCurrentThere) {
    const auto layer = Disc8(24, 24);
    const CallersContext own;
    ASSERT_TRUE(own.IsCurrent());
    const int before = MadeCurrentHere();
    {
        Effect effect = GlEffect();
        EXPECT_TRUE(own.IsCurrent());
        effect.Set("style/shadow-type", "radial");
        effect.Render(layer.View());
        EXPECT_TRUE(own.IsCurrent());
        effect.Place(24, 24);
        (void)effect.Parameters();
        const Effect another = GlEffect();
        another.Render(layer.View());
        EXPECT_TRUE(own.IsCurrent());
    }
    EXPECT_TRUE(own.IsCurrent());
    EXPECT_EQ(MadeCurrentHere(), before);
}

TEST_F(LibraryGl, ACallerWithoutAContextGetsNone) {
    const auto layer = Disc8(24, 24);
    std::thread([&] {
        const Effect effect = GlEffect();
        effect.Render(layer.View());
        EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
        EXPECT_EQ(MadeCurrentHere(), 0);
    }).join();
}

TEST_F(LibraryGl, ManyCallersMakeOneContext) {
    const auto layer = Disc8(24, 24);
    const int without = OpenContexts();
    {
        const Effect first = GlEffect(), second = GlEffect();
        const Image alone = first.Render(layer.View());
        const int with = OpenContexts(), made = MadeContexts();
        std::atomic<std::size_t> different = 0;
        std::vector<std::thread> callers;
        for (int i = 0; i < kThreads; ++i) {
            callers.emplace_back([&, i] {
                for (int frame = 0; frame < 3; ++frame) {
                    different += DifferentBytes((i % 2 ? first : second).Render(layer.View()), alone);
                }
            });
        }
        for (std::thread& caller : callers) caller.join();
        EXPECT_EQ(different, 0u);
        EXPECT_EQ(MadeContexts(), made);
        EXPECT_EQ(OpenContexts(), with);
        EXPECT_GT(with, without) << "the calls were not counted";
    }
    EXPECT_EQ(OpenContexts(), without) << "contexts go with the last effect";
}

TEST_F(LibraryGl, AnEffectStartsNoThreadOfItsOwn) {
    const auto layer = Disc8(24, 24);
    const Effect first = GlEffect();
    first.Render(layer.View());
    const int before = RunningThreads();
    const Effect second = GlEffect(), third = GlEffect();
    EXPECT_EQ(RunningThreads(), before);
    second.Render(layer.View());
    third.Render(layer.View());
    EXPECT_EQ(RunningThreads(), before);
}

TEST_F(LibraryGl, AnEffectMayGoOnAnotherThread) {
    const auto layer = Disc8(24, 24);
    const int without = OpenContexts();
    std::unique_ptr<Effect> effect;
    std::thread([&] { effect = std::make_unique<Effect>(GlEffect()); }).join();
    const Image here = effect->Render(layer.View());
    std::thread([&] {
        EXPECT_EQ(DifferentBytes(effect->Render(layer.View()), here), 0u);
        effect.reset();
        EXPECT_EQ(MadeCurrentHere(), 0);
    }).join();
    EXPECT_EQ(OpenContexts(), without);
    EXPECT_EQ(DifferentBytes(GlEffect().Render(layer.View()), here), 0u);
}

TEST_F(LibraryGl, ErrorsAndMessagesComeBackToTheCaller) {
    const auto layer = Disc8(24, 24);
    std::thread::id said;
    Effect painter({TestModule("painter"), umbrant::Renderer::kOpenGL, false,
                    [&](const std::string&) { said = std::this_thread::get_id(); }});
    Effect byProcessor({TestModule("painter"), umbrant::Renderer::kProcessor, false, {}});
    for (const char* flaw : {"error-with-message", "pre-render-error", "throw", "throw-number", "too-large"}) {
        painter.Set("flaw", flaw);
        byProcessor.Set("flaw", flaw);
        const std::string thrown = Thrown([&] { painter.Render(layer.View()); });
        EXPECT_NE(thrown, "") << flaw;
        EXPECT_EQ(thrown, Thrown([&] { byProcessor.Render(layer.View()); })) << flaw;
    }
    painter.Set("flaw", "long-message");
    painter.Render(layer.View());
    EXPECT_EQ(said, std::this_thread::get_id());
}

TEST_F(LibraryGl, FloatFramesKeepColoursAboveOne) {
    const auto layer = DiscFloat(24, 24);
    Effect effect = GlEffect();
    effect.Set("style/distance", 60);
    effect.Set("style/color", umbrant::Color{4, 0, 0});
    const Image image = effect.Render(layer.View());
    float most = 0;
    for (std::size_t i = 0; i < image.PixelCount(); ++i) most = std::max(most, image.Floats()[4 * i]);
    EXPECT_EQ(most, 4.0f);
}

TEST_F(LibraryGl, EachEffectHasItsOwnRenderer) {
    const auto layer = Disc8(24, 24);
    const Effect byGl = GlEffect();
    const Effect byProcessor({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
    const auto contextsFor = [&](const Effect& effect) {
        const int before = MadeContexts();
        effect.Render(layer.View());
        return MadeContexts() - before;
    };
    EXPECT_EQ(contextsFor(byProcessor), 0);
    EXPECT_EQ(contextsFor(byGl), 1);
    EXPECT_EQ(contextsFor(byProcessor), 0);
    EXPECT_EQ(contextsFor(byGl), 0);
}

TEST_F(LibraryGl, OpenGLMayBeWishedForAfterTheProcessor) {
    const auto layer = Disc8(24, 24);
    const Image byGl = GlEffect().Render(layer.View());
    const Effect byProcessor({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
    EXPECT_EQ(OpenGLVersion(byProcessor), "not used");
    const Image before = byProcessor.Render(layer.View());
    {
        const Effect effect = GlEffect();
        EXPECT_NE(OpenGLVersion(effect), "not used");
        EXPECT_EQ(DifferentBytes(effect.Render(layer.View()), byGl), 0u);
        EXPECT_EQ(DifferentBytes(byProcessor.Render(layer.View()), before), 0u);
    }
    EXPECT_EQ(DifferentBytes(byProcessor.Render(layer.View()), before), 0u) << "the other set-up has gone";
}

TEST_F(LibraryGl, TwoEffectsOnTwoThreads) {
    const auto layer = Disc8(24, 24);
    Effect first = GlEffect(), second = GlEffect();
    second.Set("style/distance", 40);
    const Image alone[] = {first.Render(layer.View()), second.Render(layer.View())};
    std::atomic<std::size_t> different = 0;
    const auto draw = [&](const Effect& effect, const Image& expected) {
        for (int i = 0; i < 5; ++i) different += DifferentBytes(effect.Render(layer.View()), expected);
    };
    std::thread other([&] { draw(second, alone[1]); });
    draw(first, alone[0]);
    other.join();
    EXPECT_EQ(different, 0u);
}

}  // namespace

}  // namespace umbrant::host
