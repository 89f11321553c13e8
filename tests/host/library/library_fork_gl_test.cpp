// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Programs that fork and use OpenGL: what the child cannot do fails at once.

#include <atomic>
#include <thread>

#include "tests/host/library/library_gl_fixture.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::Image;

constexpr char kLost[] =
    "1: OpenGL cannot be used: this process was forked from one that uses it. Fork before the first effect is created, "
    "start a new program, or use the CPU renderer";

Effect ProcessorEffect() {
    return Effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
}

/// What a child can do and what not: 0, or the number of the step that was wrong.
int StepsOfAChild(Effect& inherited, const Pixels<std::uint8_t>& layer, const Image& byProcessor) {
    if (Thrown([&] { inherited.Render(layer.View()); }) != kLost) return 1;
    if (inherited.Place(layer.width, layer.height).Width() < layer.width) return 2;
    if (Thrown([] { GlEffect(); }) != kLost) return 3;
    // The race checker cannot follow threads that a forked child starts.
    const auto isSame = [&](const Effect& effect) {
        return kIsSanitized || DifferentBytes(effect.Render(layer.View()), byProcessor) == 0;
    };
    if (!isSame(ProcessorEffect())) return 4;
    CaptureStdout out;
    Effect chosen({UMBRANT_MODULE_FILE, umbrant::Renderer::kAuto, false, {}});
    if (chosen.ChosenRenderer() != umbrant::Renderer::kProcessor) return 5;
    if (chosen.RendererText() != "drawn by the CPU renderer: OpenGL cannot be used in a forked process") return 6;
    if (!isSame(chosen)) return 7;
    // With the last effect the module is set down.
    chosen = std::move(inherited);
    { const Effect last = std::move(chosen); }
    return out.Text().empty() ? 0 : 8;
}

TEST_F(LibraryGl, AChildIsRefusedOpenGLAtOnce) {
    const auto layer = Disc8(57, 43);
    Effect effect = GlEffect();
    const Image byProcessor = ProcessorEffect().Render(layer.View());
    // Before the first frame, when the library's thread has not been started, and after it.
    EXPECT_EQ(RunInChild([&] { return StepsOfAChild(effect, layer, byProcessor); }), 0);
    const Image here = effect.Render(layer.View());
    EXPECT_EQ(RunInChild([&] { return StepsOfAChild(effect, layer, byProcessor); }), 0);
    EXPECT_EQ(DifferentBytes(effect.Render(layer.View()), here), 0u) << "the parent goes on";
}

TEST_F(LibraryGl, AChildIsRefusedItAlsoWhileAnotherThreadDraws) {
    const auto layer = Disc8(57, 43);
    Effect effect = GlEffect();
    const Image byProcessor = ProcessorEffect().Render(layer.View());
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) effect.Render(layer.View());
    });
    std::thread coming([&] {
        while (!stop) GlEffect();
    });
    // A sanitizer's allocator has no handlers for forks: a lock of its own would stay held in the child.
    for (int fork = 0; fork < (kIsSanitized ? 0 : 10); ++fork) {
        const int code = RunInChild([&] { return StepsOfAChild(effect, layer, byProcessor); });
        EXPECT_EQ(code, 0);
        if (code != 0) break;
    }
    stop = true;
    other.join();
    coming.join();
}

TEST_F(LibraryGl, AChildIsRefusedItAlsoWhenTheParentsEffectsHaveGone) {
    // With the last effect the module is unloaded, but the driver stays in the process.
    GlEffect().Render(Disc8(24, 24).View());
    EXPECT_EQ(RunInChild([] { return Thrown([] { GlEffect(); }) == kLost ? 0 : 1; }, std::chrono::seconds(60)), 0);
}

}  // namespace

}  // namespace umbrant::host
