// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Programs that fork, as those do that share work out to processes.

#include <atomic>
#include <thread>

#include "tests/host/library/library_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::Image;

TEST(LibraryFork, AChildDrawsWithTheParentsEffectAndWithOneOfItsOwn) {
    const auto layer = Disc8(157, 143);
    Effect effect = RealEffect();
    const Image here = effect.Render(layer.View());
    const auto child = [&] {
        if (DifferentBytes(effect.Render(layer.View()), here) != 0) return 1;
        Effect own = RealEffect();
        return DifferentBytes(own.Render(layer.View()), here) == 0 ? 0 : 2;
    };
    EXPECT_EQ(RunInChild(child), 0);
    EXPECT_EQ(DifferentBytes(effect.Render(layer.View()), here), 0u) << "the parent goes on";
}

TEST(LibraryFork, AChildThatIsForkedWhileAnotherThreadDrawsDrawsToo) {
    if (kIsSanitized) {
        GTEST_SKIP() << "the sanitizer's allocator has no handlers for forks: a lock of its own stays held in the "
                        "child";
    }
    const auto layer = Disc8(157, 143);
    Effect effect = RealEffect();
    const Image here = effect.Render(layer.View());
    std::atomic<bool> stop = false;
    std::thread other([&] {
        Effect own = RealEffect();
        while (!stop) own.Render(layer.View());
    });
    const auto child = [&] { return DifferentBytes(effect.Render(layer.View()), here) == 0 ? 0 : 1; };
    for (int fork = 0; fork < 20; ++fork) {
        const int code = RunInChild(child);
        EXPECT_EQ(code, 0);
        if (code != 0) break;
    }
    stop = true;
    other.join();
}

}  // namespace

}  // namespace umbrant::host
