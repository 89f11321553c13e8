// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a normal shadow must look like: blur, placement and accumulation as plain double-precision loops over one
// channel, written to be checked by eye. Its only concessions to the GPU are the 16-bit rounding after each pass and
// the grid that corners are snapped to.

#include <cstddef>
#include <vector>

namespace umbrant::effect {

/// One channel of width x height values, row 0 on top.
struct Plane {
    int width = 0;
    int height = 0;
    std::vector<double> values;

    Plane() = default;
    Plane(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}
    double& At(int x, int y) {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
    double At(int x, int y) const { return const_cast<Plane*>(this)->At(x, y); }
};

enum class Wrap { kClamp, kMirror };

/// Bilinear sample at texture coordinates (u, v); texel centres lie at (i + 0.5) / size.
double SampleLinear(const Plane& plane, double u, double v, Wrap wrap);

/// The panel, in its own units, and the layer, at full resolution.
struct PanelValues {
    double angle = 135, distance = 250, softness = 250;
    double opacityStart = 20, opacityEnd = 50, opacityMaster = 100;
    int easeMode = 1;
    double ease = 100, easeDistance = 80, easeSoftness = 100, easeOpacity = 100;
    double samples = 36;
    int resolution = 3;
    double offsetShadow = 1;
    double scale = 1;  ///< downsampled over full size
};

/// Where the layer's centre lies relative to the output's, pixels.
struct CentrePlacement {
    double centreX = 0;
    double centreY = 0;
};

/// Where the layer's corner lies in an inner shadow's padded world, pixels.
struct Growth {
    int left = 0;
    int top = 0;
};

/// A radial shadow's origin and the corner of its output, in the layer's coordinates; `place` as pre-render stores it.
struct RadialPlacement {
    double originX = 0, originY = 0;
    double placeX = 0, placeY = 0;
    double outputX = 0, outputY = 0;
};

/// One copy of a radial stack: where the padded layer's corner lands in the output, and how large it is drawn.
struct RadialCopy {
    double x, y, scale;
    double pad;
    double softness, opacity;
};

/// The accumulated alpha, 0..1, of an inner shadow before it is laid over the layer.
Plane InnerShadow(const Plane& layerAlpha, const PanelValues& panel, const Growth& growth, double colourAlpha,
                  int outputWidth, int outputHeight);

/// The copies of a radial stack, first to last.
std::vector<RadialCopy> RadialCopies(const PanelValues& panel, const RadialPlacement& placement);

/// The accumulated alpha, 0..1, of a radial shadow.
Plane RadialShadow(const Plane& layerAlpha, const PanelValues& panel, const RadialPlacement& placement, int outputWidth,
                   int outputHeight);

/// The accumulated alpha, 0..1, of the shadow that `layerAlpha` casts into an output of so many pixels.
Plane NormalShadow(const Plane& layerAlpha, const PanelValues& panel, const CentrePlacement& placement, int outputWidth,
                   int outputHeight);

}  // namespace umbrant::effect
