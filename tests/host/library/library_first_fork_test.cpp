// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A fork while another thread draws the process's first frame, and makes what all later ones use. CTest runs this in a
// process that has drawn nothing yet.

#include <chrono>
#include <thread>

#include "tests/host/library/library_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;

TEST(LibraryFirstFork, AChildOfTheFirstFrameDraws) {
    const auto layer = Disc8(64, 64);
    // A process that has drawn nothing, each with a fork at another moment of its first frame.
    const auto process = [&](std::chrono::microseconds moment) {
        Effect effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
        std::thread other([&] { effect.Render(layer.View()); });
        std::this_thread::sleep_for(moment);
        const auto child = [&] { return effect.Render(layer.View()).PixelCount() > 0 ? 0 : 1; };
        const int code = RunInChild(child, std::chrono::seconds(30));
        other.join();
        return code == 0 ? 0 : 1;
    };
    // A sanitizer's allocator has no handlers for forks: a lock of its own would stay held in the child.
    for (int i = 0; i < (kIsSanitized ? 0 : 40); ++i) {
        const int code = RunInChild([&] { return process(std::chrono::microseconds(100 * i)); });
        ASSERT_EQ(code, 0) << "forked after " << 100 * i << " us";
    }
}

}  // namespace

}  // namespace umbrant::host
