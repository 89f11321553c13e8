// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image_library/library_threads.h"

#include <OpenImageIO/imageio.h>

#include <chrono>
#include <cstdlib>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

#include "host/image/image_threads.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

/// Threads that the rest of the program starts in addition to its drawing threads.
constexpr int kOthers = 6;
constexpr int kAttempts = 10;
constexpr std::chrono::milliseconds kPause{10};

/// Whether the system refuses some of so many threads at once.
bool AreThreadsScarce(int count) {
    std::promise<void> counted;
    const std::shared_future<void> end = counted.get_future().share();
    const std::vector<std::jthread> threads = StartThreads(count, [end](int) { end.wait(); });
    counted.set_value();
    return static_cast<int>(threads.size()) < count;
}

}  // namespace

void PrepareLibraryThreads() {
    const int threads = ImageThreadsHere(AreThreadsScarce(2 * ImageThreadsHere(false) + kOthers));
    if (threads > 1) {
        OIIO::attribute("exr_threads", threads);
        return;
    }
    // The library's pool is made with this number, whatever its attribute says. The program set the variable at its
    // start, so that this changes a value and moves none.
    setenv("OPENIMAGEIO_THREADS", "1", 1);
    // -1 is what it calls no threads at all.
    OIIO::attribute("exr_threads", -1);
    // It read the variable when it was loaded. This also makes its pool, which has a thread at least; one that has just
    // ended may still be counted for a moment.
    for (int i = 0; i < kAttempts; ++i) {
        try {
            OIIO::attribute("threads", 1);
            return;
        } catch (const std::system_error&) {
            std::this_thread::sleep_for(kPause);
        }
    }
}

}  // namespace umbrant::host
