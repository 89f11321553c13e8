// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Compares images.

#include <cmath>
#include <sstream>

#include "tests/openfx/host/image.h"

namespace umbrant::ofx {

namespace {

std::string TextOf(const OfxRectI& area) {
    std::ostringstream text;
    text << "(" << area.x1 << ", " << area.y1 << ")-(" << area.x2 << ", " << area.y2 << ")";
    return text.str();
}

/// NaNs differ from everything.
bool Near(float a, float b, float tolerance) {
    return a == b || std::abs(a - b) <= tolerance;
}

bool IsFlipped(const Picture& actual, const Picture& expected, float tolerance) {
    const OfxRectI& area = expected.bounds;
    for (int y = area.y1; y < area.y2; ++y) {
        for (int x = area.x1; x < area.x2; ++x) {
            const float* other = actual.At(x, area.y1 + area.y2 - 1 - y);
            for (int c = 0; c < 4; ++c) {
                if (!Near(other[c], expected.At(x, y)[c], tolerance)) return false;
            }
        }
    }
    return true;
}

}  // namespace

std::string Difference(const Picture& actual, const Picture& expected, float tolerance) {
    const OfxRectI &a = actual.bounds, &b = expected.bounds;
    if (a.x1 != b.x1 || a.y1 != b.y1 || a.x2 != b.x2 || a.y2 != b.y2) {
        return "the image covers " + TextOf(a) + ", not " + TextOf(b);
    }
    int count = 0;
    std::ostringstream first;
    for (int y = b.y1; y < b.y2; ++y) {
        for (int x = b.x1; x < b.x2; ++x) {
            const float *is = actual.At(x, y), *should = expected.At(x, y);
            bool same = true;
            for (int c = 0; c < 4; ++c) same = same && Near(is[c], should[c], tolerance);
            if (same || count++ > 0) continue;
            first << "pixel (" << x << ", " << y << ") is";
            for (int c = 0; c < 4; ++c) first << " " << is[c];
            first << ", not";
            for (int c = 0; c < 4; ++c) first << " " << should[c];
        }
    }
    if (count == 0) return "";
    first << "; " << count << " of " << actual.channels.size() / 4 << " pixels differ";
    if (IsFlipped(actual, expected, tolerance)) first << "; the image is upside down";
    return first.str();
}

}  // namespace umbrant::ofx
