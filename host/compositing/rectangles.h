// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's own rectangle arithmetic. Right and bottom are exclusive everywhere.

#include <algorithm>

#include "hostapi/pixels.h"

namespace umbrant::host {

inline bool IsEmpty(const PF_LRect& r) {
    return r.left >= r.right || r.top >= r.bottom;
}

inline int WidthOf(const PF_LRect& r) {
    return r.right - r.left;
}

inline int HeightOf(const PF_LRect& r) {
    return r.bottom - r.top;
}

/// What both cover; all zero when that is nothing.
inline PF_LRect Intersection(const PF_LRect& a, const PF_LRect& b) {
    const PF_LRect both{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                        std::min(a.bottom, b.bottom)};
    return IsEmpty(both) ? PF_LRect{} : both;
}

inline bool Same(const PF_LRect& a, const PF_LRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// The whole world in its own pixels.
inline PF_LRect BoundsOf(const PF_EffectWorld& world) {
    return {0, 0, world.width, world.height};
}

/// First byte of row y of any world; null in one without pixels.
template <typename Pixel>
Pixel* RowOf(const PF_EffectWorld& world, int y) {
    if (!world.data) return nullptr;
    auto* bytes = reinterpret_cast<A_u_char*>(world.data) + static_cast<std::ptrdiff_t>(y) * world.rowbytes;
    return reinterpret_cast<Pixel*>(static_cast<void*>(bytes));
}

}  // namespace umbrant::host
