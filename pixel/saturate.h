// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Conversions from floating point to integers that are defined for every value: out-of-range numbers saturate and
// not-a-number gives 0, where the language leaves both undefined.

#include <cstdint>
#include <limits>

namespace umbrant::effect {

/// `value` truncated toward zero, limited to the range of `int32_t`; not-a-number gives 0.
constexpr int32_t ToInt32(double value) {
    if (value != value) return 0;
    if (value >= 2147483647.0) return std::numeric_limits<int32_t>::max();
    if (value <= -2147483648.0) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

/// `value` truncated toward zero, limited to 0..255; not-a-number gives 0.
constexpr uint8_t ToUint8(double value) {
    if (!(value > 0.0)) return 0;
    if (value >= 255.0) return 255;
    return static_cast<uint8_t>(value);
}

}  // namespace umbrant::effect
