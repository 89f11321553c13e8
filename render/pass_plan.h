// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the passes of a shadow do, as numbers. Plain records: render/ derives them, gl/ and cpu/ can read them.

#include <algorithm>
#include <cmath>
#include <cstdint>

/// Half-open, in texels or pixels of one axis.
struct Range {
    int32_t begin = 0;
    int32_t end = 0;

    bool Empty() const { return begin >= end; }
    int32_t Size() const { return Empty() ? 0 : end - begin; }
};

/// The common part; empty ranges give an empty one.
inline Range Intersect(Range a, Range b) {
    return {std::max(a.begin, b.begin), std::min(a.end, b.end)};
}

/// Of a texture, a buffer or a layer's alpha, row 0 first.
struct Region {
    Range x;
    Range y;

    bool Empty() const { return x.Empty() || y.Empty(); }
};

/// What a tap beyond the edge reads: the edge itself, or the mirror image.
enum class Edge { kClamp, kMirror };

/// Where the outputs of a pass look along one axis, in inputs: output i at `first` + i `pitch`. Input j's centre is j.
struct Look {
    double first = 0;
    double pitch = 1;
    int32_t size = 0;  ///< inputs
    Edge edge = Edge::kClamp;

    double At(int32_t output) const { return first + output * pitch; }
};

/// The input at or before a position. Positions beyond 2^30 and not-a-number count as 2^30, so that every index is
/// defined whatever the parameters are.
inline int64_t TexelAt(double position) {
    constexpr double kFar = 1 << 30;
    // fmin and fmax return the other number when one is not-a-number.
    return static_cast<int64_t>(std::fmax(-kFar, std::fmin(std::floor(position), kFar)));
}
