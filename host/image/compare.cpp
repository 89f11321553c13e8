// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/compare.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace umbrant::host {

namespace {

/// What two roundings of one value may put between it and a tolerance.
constexpr double kHair = 1e-6;

struct Values {
    double channel[4];
};

Values ValuesAt(const Picture& picture, int x, int y, bool straight) {
    const PF_LRect& window = picture.window;
    if (x < window.left || x >= window.right || y < window.top || y >= window.bottom) return {};
    Values values{};
    const void* row = picture.pixels.Row(y - window.top);
    if (picture.pixels.PixelDepth() == Depth::k8) {
        const PF_Pixel& p = static_cast<const PF_Pixel*>(row)[x - window.left];
        values = {{p.alpha / 255.0, p.red / 255.0, p.green / 255.0, p.blue / 255.0}};
    } else {
        const PF_PixelFloat& p = static_cast<const PF_PixelFloat*>(row)[x - window.left];
        values = {{static_cast<double>(p.alpha), static_cast<double>(p.red), static_cast<double>(p.green),
                   static_cast<double>(p.blue)}};
    }
    if (!straight) {
        for (int i = 1; i < 4; ++i) values.channel[i] *= values.channel[0];
    }
    return values;
}

double Apart(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return 0;
    const double apart = std::abs(a - b);
    return std::isnan(apart) ? std::numeric_limits<double>::infinity() : apart;
}

}  // namespace

std::optional<Comparison> Compare(const Picture& first, const Picture& second, const Tolerance& tolerance,
                                  bool straight) {
    if (first.frameWidth != second.frameWidth || first.frameHeight != second.frameHeight) return std::nullopt;
    Comparison result;
    result.window = {std::min(first.window.left, second.window.left), std::min(first.window.top, second.window.top),
                     std::max(first.window.right, second.window.right),
                     std::max(first.window.bottom, second.window.bottom)};
    const int width = result.window.right - result.window.left;
    const int height = result.window.bottom - result.window.top;
    result.pixels = std::int64_t{width} * height;
    result.differences.reserve(static_cast<std::size_t>(result.pixels));
    for (int y = result.window.top; y < result.window.bottom; ++y) {
        for (int x = result.window.left; x < result.window.right; ++x) {
            const Values a = ValuesAt(first, x, y, straight);
            const Values b = ValuesAt(second, x, y, straight);
            double apart[4];
            for (int i = 0; i < 4; ++i) apart[i] = Apart(a.channel[i], b.channel[i]);
            const double worst = *std::max_element(apart, apart + 4);
            if (worst > 0 && worst >= tolerance.warn - kHair) ++result.counted;
            if (worst > result.worst) {
                result.worst = worst;
                result.x = x;
                result.y = y;
                std::copy_n(a.channel, 4, result.first);
                std::copy_n(b.channel, 4, result.second);
            }
            result.differences.push_back(static_cast<float>(worst));
        }
    }
    result.close = result.worst <= tolerance.hard + kHair && static_cast<double>(result.counted) * 100.0 <=
                                                                 tolerance.percent * static_cast<double>(result.pixels);
    return result;
}

}  // namespace umbrant::host
