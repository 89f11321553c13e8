// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Integer rectangles: emptiness, union, and the test for the border.

#include "hostapi/geometry.h"

/// True when left >= right or top >= bottom.
bool IsEmptyRect(const PF_LRect* r);

/// dst becomes the bounding box of both. An empty dst becomes src, even an empty one; an empty src changes nothing
/// else.
void UnionLRect(const PF_LRect* src, PF_LRect* dst);

/// True when (x, y) is on the border of r, whose right and bottom edges count at `right` and `bottom` themselves.
bool IsEdgePixel(const PF_LRect* r, A_long x, A_long y);
