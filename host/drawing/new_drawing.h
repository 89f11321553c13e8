// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// New drawings, and what becomes of them. Any thread.

#include <memory>
#include <string>

#include "host/compositing/world.h"
#include "host/drawing/drawing.h"
#include "host/result.h"

namespace umbrant::host {

enum class DrawnPixels { kOpaque, kWithAlpha };

/// A drawing of black, or transparent, pixels. `what` names it in messages: "a picture of the panel". The first one
/// opens umbrant_drawing.so. Fails with `ErrorKind::kInternal` when that cannot be loaded or there is no memory.
Result<std::unique_ptr<Drawing>> NewDrawing(const std::string& what, int width, int height,
                                            DrawnPixels pixels = DrawnPixels::kOpaque);

/// Fails as NewDrawing would when no drawing can be made in this process because of umbrant_drawing.so.
Result<Done> CheckCanDraw(const std::string& what);

/// The pixels of an opaque drawing, as a world of 8 bits. Fails with `ErrorKind::kInternal` when there is no memory.
Result<World> WorldOf(const std::string& what, Drawing& drawing);

}  // namespace umbrant::host
