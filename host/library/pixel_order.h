// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Between the pixels of programs (red, green, blue, alpha; any stride) and the worlds of effects (alpha first).

#include <string>

#include <umbrant/image.h>

#include "host/compositing/world.h"
#include "host/result.h"

namespace umbrant::host {

/// The world's depth for a format.
Depth DepthOf(umbrant::PixelFormat format);

/// Whether an image can have this size. `what` ("the layer") begins the sentence. Fails with `ErrorKind::kUsage`.
Result<Done> CheckSize(int width, int height, const std::string& what);

/// Whether a view's pixels can be reached. `what` ("the layer") begins the sentence. Fails with `ErrorKind::kUsage`.
Result<Done> CheckView(const umbrant::ImageView& view, const std::string& what);

/// A world of a view's pixels in this depth; an empty one of a view without pixels. The view was checked. Null when
/// memory cannot be had.
World WorldOf(const umbrant::ImageView& view, Depth depth);

/// Writes a world into the target at (x, y), and transparent black where the world does not reach.
/// Both have the same depth.
void CopyInto(const World& world, int x, int y, const umbrant::MutableImageView& target);

}  // namespace umbrant::host
