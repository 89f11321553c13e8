// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the passes of a shadow do, as numbers: each sample is blurred across, blurred down and placed in the output.
// Plain records. plan_normal.cpp, plan_inner.cpp and plan_radial.cpp in render/ derive them once for both renderers:
// the OpenGL passes send them as uniforms, the CPU renderer folds them into weights. Numbers that reach the GPU as a
// uniform are kept in single precision, so that both renderers sample at the same positions.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace umbrant::effect {

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

/// The smallest range that holds both.
inline Range Around(Range a, Range b) {
    return {std::min(a.begin, b.begin), std::max(a.end, b.end)};
}

/// Of a texture, a buffer or a layer's alpha, row 0 first.
struct Region {
    Range x;
    Range y;

    bool Empty() const { return x.Empty() || y.Empty(); }
};

/// All of a texture or buffer.
inline Region WholeRegion(int32_t width, int32_t height) {
    return {{0, width}, {0, height}};
}

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

/// One axis of a pass that draws at another size than it reads. The outputs cover a share of the inputs about their
/// middle.
struct AxisSampling {
    int32_t outputs = 0;
    float scale = 1;  ///< uniform "scaleW" or "scaleH": the share of the inputs; above 1 with a border around them
    Look look;
};

/// One blur: 2 `steps` + 1 taps.
struct BlurPlan {
    float amount = 0;   ///< reach each side, (downsampled) pixels
    int32_t steps = 1;  ///< uniform "steps": taps each side
    float stride = 0;   ///< uniform "stride": distance of two taps, in widths or heights of what the GPU pass reads
    double inputStride = 0;  ///< the same in inputs

    /// Inputs each side.
    double Reach() const { return steps * inputStride; }
};

/// A sample's first pass, from the source to its buffer. Also resizes the rows.
struct AcrossPlan {
    BlurPlan blur;
    AxisSampling x;
    AxisSampling y;
    float opacity = 0;  ///< uniform "opacityF"
};

/// Where a blurred copy is placed along one axis of the output.
struct Placement {
    double start = 0;       ///< output pixels
    double length = 0;      ///< output pixels
    int32_t texels = 0;     ///< of the copy
    float scale = 1;        ///< of the uniform "xform"
    float translation = 0;  ///< of the uniform "xform", in half outputs
};

/// An output pixel's position in a copy: between texel `floor(At)` and the next.
struct Stretch {
    explicit Stretch(const Placement& place)
        : scale(place.texels / place.length), offset((0.5 - place.start) * scale - 0.5) {}
    double At(int32_t pixel) const { return pixel * scale + offset; }

    double scale;
    double offset;
};

/// A sample's last pass.
struct PlacePlan {
    Placement x;
    Placement y;
};

/// The part of each pass that can show in the output: what is in the output and is not 0.
struct SampleRegions {
    Region across;  ///< texels of the sample's buffer
    Region down;    ///< the same
    Region placed;  ///< output pixels

    bool Empty() const { return across.Empty() || down.Empty() || placed.Empty(); }
};

/// The three passes of one sample.
struct SamplePlan {
    uint32_t buffer = 0;  ///< samples of one buffer have the same size, and look at the same rows of the source
    AcrossPlan across;
    BlurPlan down;  ///< in rows of the buffer, mirrored at its edges
    PlacePlan place;
    SampleRegions regions;  ///< empty when the sample adds nothing
};

/// All samples of a shadow, in drawing order.
struct StackPlan {
    int32_t width = 0;  ///< of the output, pixels
    int32_t height = 0;
    Region something;  ///< the part of the source that is not 0
    std::vector<SamplePlan> samples;
};

/// Inner shadow: from the padded layer to the inverted alpha that its samples are blurred from.
struct InversionPlan {
    AxisSampling x;
    AxisSampling y;
    float opacity = 0;  ///< uniform "opacityF"
};

/// Radial shadow: the layer in a border that its samples are blurred from.
struct PaddingPlan {
    int32_t pad = 0;    ///< border on each side, pixels
    int32_t width = 0;  ///< with both borders
    int32_t height = 0;
    float layerScaleX = 1;  ///< of the uniform "xform": the layer's share of the width
    float layerScaleY = 1;
    float quadScaleX = 1;  ///< the padded layer's share of the output's width
    float quadScaleY = 1;
};

}  // namespace umbrant::effect
