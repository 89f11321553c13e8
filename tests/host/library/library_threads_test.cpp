// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Effects on threads: several effects, one effect on several threads, values set while frames are drawn, and effects
// that come and go meanwhile.

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <utility>
#include <vector>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::Image;

constexpr int kThreads = 4;
constexpr int kFrames = 6;

/// Runs `work` on several threads, each given its number.
template <typename Work>
void OnThreads(Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

TEST(LibraryThreads, EffectsOnThreadsOfTheirOwnDrawWhatTheyDrawAlone) {
    const auto layer = Disc8(57, 43);
    std::vector<Image> alone;
    for (int i = 0; i < kThreads; ++i) {
        Effect effect = RealEffect();
        effect.Set("style/distance", 5 + 7 * i);
        alone.push_back(effect.Render(layer.View()));
    }
    std::atomic<std::size_t> different = 0;
    OnThreads([&](int i) {
        Effect effect = RealEffect();
        effect.Set("style/distance", 5 + 7 * i);
        for (int frame = 0; frame < kFrames; ++frame) {
            different += DifferentBytes(effect.Render(layer.View()), alone[static_cast<std::size_t>(i)]);
        }
    });
    EXPECT_EQ(different, 0u);
}

/// All of this process's environment, and where each text is.
std::vector<std::pair<const void*, std::string>> Environment() {
    std::vector<std::pair<const void*, std::string>> entries;
    for (char** entry = environ; *entry; ++entry) entries.emplace_back(*entry, *entry);
    return entries;
}

TEST(LibraryThreads, TheEnvironmentIsTheProgramsOwn) {
    const auto before = Environment();
    for (const umbrant::Renderer renderer : {umbrant::Renderer::kProcessor, umbrant::Renderer::kAuto}) {
        Effect effect({UMBRANT_MODULE_FILE, renderer, false, {}});
        EXPECT_EQ(Environment(), before) << "a getenv of the program may run at the same time";
    }
    RealEffect().Render(Disc8(9, 9).View());
    EXPECT_EQ(Environment(), before);
}

TEST(LibraryThreads, OneEffectDrawsOnAllOfThem) {
    const auto layer = DiscFloat(57, 43);
    Effect effect = RealEffect();
    effect.Set("style/shadow-type", "radial");
    const Image alone = effect.Render(layer.View());
    std::atomic<std::size_t> different = 0;
    OnThreads([&](int) {
        for (int frame = 0; frame < kFrames; ++frame) different += DifferentBytes(effect.Render(layer.View()), alone);
    });
    EXPECT_EQ(different, 0u);
}

TEST(LibraryThreads, OneEffectDrawsDifferentValuesOnAllOfThem) {
    const auto layer = Disc8(57, 43);
    const Effect effect = RealEffect();
    std::vector<umbrant::Values> values;
    std::vector<Image> alone;
    for (int i = 0; i < kThreads; ++i) {
        values.push_back(effect.CurrentValues());
        values.back().Set("style/distance", 5 + 7 * i);
        values.back().Set("style/color", umbrant::Color{0.2f * static_cast<float>(i), 0.5f, 1});
        alone.push_back(effect.Render(layer.View(), values.back()));
        EXPECT_EQ(DifferentBytes(alone.back(), alone.front()) == 0, i == 0);
    }
    std::atomic<std::size_t> different = 0;
    OnThreads([&](int i) {
        for (int frame = 0; frame < kFrames; ++frame) {
            // Copies of what other threads read at the same time.
            const auto mine = static_cast<std::size_t>((i + frame) % kThreads);
            const umbrant::Values copy = values[mine];
            different += DifferentBytes(effect.Render(layer.View(), copy), alone[mine]);
            different += effect.Place(57, 43, values[mine]) != alone[mine].Place();
        }
    });
    EXPECT_EQ(different, 0u);
}

TEST(LibraryThreads, AFrameHasTheValuesOfItsMoment) {
    const auto layer = Disc8(16, 16);
    Effect effect({TestModule("threaded_painter"), umbrant::Renderer::kAuto, false, {}});
    effect.Set("paint/border", 0);
    std::atomic<bool> done = false;
    std::thread setter([&] {
        for (int i = 0; i < 200; ++i) effect.Set("paint/border", i % 5);
        (void)effect.Parameters();
        done = true;
    });
    std::atomic<int> odd = 0;
    OnThreads([&](int) {
        do {
            const Image image = effect.Render(layer.View());
            const int border = -image.Place().left;
            odd += border < 0 || border > 4 || image.Width() != 16 + 2 * border || image.Height() != image.Width();
        } while (!done);
    });
    setter.join();
    EXPECT_EQ(odd, 0);
}

TEST(LibraryThreads, AnEffectThatTakesOneThreadAtATimeGetsOne) {
    const auto layer = Disc8(16, 16);
    const Effect effect({TestModule("painter"), umbrant::Renderer::kAuto, false, {}});
    const Image alone = effect.Render(layer.View());
    std::atomic<std::size_t> different = 0;
    OnThreads([&](int) {
        for (int frame = 0; frame < kFrames; ++frame) different += DifferentBytes(effect.Render(layer.View()), alone);
    });
    EXPECT_EQ(different, 0u);
}

TEST(LibraryThreads, EffectsComeAndGoWhileOthersDraw) {
    const auto layer = Disc8(20, 20);
    const Image alone = RealEffect().Render(layer.View());
    std::atomic<std::size_t> different = 0;
    OnThreads([&](int i) {
        for (int round = 0; round < kFrames; ++round) {
            const Effect effect = RealEffect();
            for (int frame = 0; frame <= i; ++frame) different += DifferentBytes(effect.Render(layer.View()), alone);
        }
    });
    EXPECT_EQ(different, 0u);
}

TEST(LibraryThreads, AnEffectMayOutliveTheThreadThatMadeIt) {
    const auto layer = Disc8(20, 20);
    std::unique_ptr<Effect> effect;
    std::thread([&] { effect = std::make_unique<Effect>(RealEffect()); }).join();
    const Image here = effect->Render(layer.View());
    std::thread([&] {
        EXPECT_EQ(DifferentBytes(effect->Render(layer.View()), here), 0u);
        effect.reset();
    }).join();
    EXPECT_EQ(DifferentBytes(RealEffect().Render(layer.View()), here), 0u);
}

}  // namespace

}  // namespace umbrant::host
