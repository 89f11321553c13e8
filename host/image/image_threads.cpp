// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/image_threads.h"

#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <future>
#include <string>
#include <system_error>
#include <thread>

#include "host/compositing/start_threads.h"

namespace {

constexpr char kVariable[] = "OPENIMAGEIO_THREADS";
/// More than these gain nothing in the files of one image.
constexpr int kMostThreads = 16;
/// What the rest of the program starts beside its drawing threads.
constexpr int kOthers = 6;
constexpr int kAttempts = 10;
constexpr std::chrono::milliseconds kPause{10};

/// Whether the system refuses some of so many threads at once.
bool AreThreadsScarce(int count) {
    std::promise<void> counted;
    const std::shared_future<void> end = counted.get_future().share();
    std::vector<std::thread> threads = StartThreads(count, [end](int) { end.wait(); });
    counted.set_value();
    for (std::thread& thread : threads) thread.join();
    return static_cast<int>(threads.size()) < count;
}

}  // namespace

int ImageThreads(int wanted, int cores, bool areScarce) {
    if (areScarce) return 1;
    const int most = std::clamp(cores, 1, kMostThreads);
    return wanted > 0 ? std::min(wanted, most) : most;
}

void PrepareImageThreads() {
    const char* given = std::getenv(kVariable);
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    const int wanted = given ? static_cast<int>(std::clamp(std::strtol(given, nullptr, 10), 0L, 1000000L)) : 0;
    const int threads = ImageThreads(wanted, cores, AreThreadsScarce(2 * std::clamp(cores, 1, kMostThreads) + kOthers));
    // The library's pool is made with this number, whatever its attribute says.
    setenv(kVariable, std::to_string(threads).c_str(), 1);
    if (threads > 1) {
        OIIO::attribute("exr_threads", threads);
        return;
    }
    // -1 is what it calls no threads at all.
    OIIO::attribute("exr_threads", -1);
    // It read the variable before the program began. This also makes its pool, which has a thread at least; one that
    // has just ended may still be counted for a moment.
    for (int i = 0; i < kAttempts; ++i) {
        try {
            OIIO::attribute("threads", 1);
            return;
        } catch (const std::system_error&) {
            std::this_thread::sleep_for(kPause);
        }
    }
}
