// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Values and channels for the EXR tests.

#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace umbrant::host {

/// Noise with some rows alike, so that some blocks get smaller and others do not.
inline std::vector<float> Noise(std::size_t count) {
    std::mt19937 random(11);
    std::vector<float> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = i / 700 % 2 == 0 ? 0.25f : std::ldexp(static_cast<float>(random() % 4096), -10) - 1.0f;
    }
    return values;
}

inline const std::vector<std::string> kRgba = {"R", "G", "B", "A"};

}  // namespace umbrant::host
