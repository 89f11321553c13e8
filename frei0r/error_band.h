// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The mark of a frame that could not be drawn, so that nobody takes it for a finished one.

#include <cstdint>

/// Covers the middle quarter of a frame's rows, at least one row, with opaque diagonal stripes of magenta and black:
/// visible over every content and over transparency. The other rows are unchanged. `pixels` has `width` times `height`
/// pixels of red, green, blue, alpha, straight; an empty frame is left alone.
void DrawErrorBand(std::uint32_t* pixels, int width, int height);
