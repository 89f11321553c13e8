// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/image_threads.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>

namespace umbrant::host {

namespace {

constexpr char kVariable[] = "OPENIMAGEIO_THREADS";
/// More than these gain nothing in the files of one image.
constexpr int kMostThreads = 16;

}  // namespace

int ImageThreads(int wanted, int cores, bool areScarce) {
    if (areScarce) return 1;
    const int most = std::clamp(cores, 1, kMostThreads);
    return wanted > 0 ? std::min(wanted, most) : most;
}

int ImageThreadsHere(bool areScarce) {
    const char* given = std::getenv(kVariable);
    const int wanted = given ? static_cast<int>(std::clamp(std::strtol(given, nullptr, 10), 0L, 1000000L)) : 0;
    return ImageThreads(wanted, static_cast<int>(std::thread::hardware_concurrency()), areScarce);
}

void PrepareImageThreads() {
    setenv(kVariable, std::to_string(ImageThreadsHere(false)).c_str(), 1);
}

}  // namespace umbrant::host
