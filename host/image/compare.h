// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The difference between two images, by default premultiplied, so that colours under zero alpha do not count.

#include <cstdint>
#include <optional>
#include <vector>

#include "host/image/picture.h"

namespace umbrant::host {

/// The three tolerances of a comparison, for channels from 0 to 1. A pixel differs by its worst channel.
struct Tolerance {
    double warn = 1.0 / 255.0;  ///< a pixel that differs by this much or more is counted
    double percent = 0.5;       ///< of all pixels may be counted
    double hard = 3.0 / 255.0;  ///< and none may differ by more than this
};

struct Comparison {
    double worst = 0;  ///< the greatest difference of a channel; infinite if only one side is NaN
    int x = 0;         ///< where in the frame it is
    int y = 0;
    double first[4]{};  ///< premultiplied alpha, red, green, blue there
    double second[4]{};
    std::int64_t counted = 0;        ///< pixels that differ by `warn` or more
    std::int64_t pixels = 0;         ///< pixels compared: those that either picture covers
    bool close = true;               ///< within the tolerance
    PF_LRect window{};               ///< the smallest that holds both pictures' windows
    std::vector<float> differences;  ///< of each pixel of `window`, row by row: that of its worst channel
};

/// Compares two pictures in their frames; outside its window a picture is transparent. With `straight`, colours are
/// compared as stored, also where nothing of them is seen. No value when the frames differ in size. Throws
/// std::bad_alloc.
std::optional<Comparison> Compare(const Picture& first, const Picture& second, const Tolerance& tolerance,
                                  bool straight = false);

}  // namespace umbrant::host
