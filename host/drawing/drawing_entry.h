// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one entry of umbrant_drawing.so.

#include "host/drawing/drawing.h"

namespace umbrant::host {

/// A new drawing, the caller's to delete, or null when there is no memory or the size
/// is too large. `isOpaque` leaves out alpha.
extern "C" __attribute__((visibility("default"))) Drawing* UmbrantNewDrawing(int width, int height, bool isOpaque);

}  // namespace umbrant::host
