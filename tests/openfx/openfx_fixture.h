// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Images for the tests of the host and of plug-ins.

#include <algorithm>
#include <cmath>

#include "tests/openfx/host/image.h"

namespace umbrant::ofx {

/// A disc with a soft edge whose colours differ at every pixel, with one opaque corner so that no symmetry hides a
/// mistake. Bytes are whole numbers; floats are multiples of 1/255 with some colours above 1.
inline Picture Disc(const OfxRectI& bounds, Depth depth = Depth::kByte) {
    Picture picture(bounds, depth);
    const double width = WidthOf(bounds), height = HeightOf(bounds);
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            const double dx = (x - bounds.x1 + 0.5) / width - 0.5, dy = (y - bounds.y1 + 0.5) / height - 0.5;
            double alpha = std::clamp((0.35 - std::sqrt(dx * dx + dy * dy)) * 10 + 0.5, 0.0, 1.0);
            if (x < bounds.x1 + 3 && y < bounds.y1 + 2) alpha = 1;
            const double channels[] = {255 * (x - bounds.x1) / width, 255 * (y - bounds.y1) / height, 77, 255 * alpha};
            for (int c = 0; c < 4; ++c) {
                const auto value = static_cast<float>(std::floor(channels[c]));
                picture.At(x, y)[c] = depth == Depth::kByte ? value : value / 255.0f;
            }
            if (depth == Depth::kFloat && (x + y) % 7 == 0) picture.At(x, y)[0] += 1.5f;
        }
    }
    return picture;
}

}  // namespace umbrant::ofx
