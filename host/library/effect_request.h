// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From the library's options and images to a request to the effect.

#include <umbrant/effect.h>

#include "host/animation/keyframes.h"
#include "host/parameters/param_set.h"
#include "host/render/frame_request.h"

namespace umbrant::host {

/// What a frame is drawn of.
struct Layers {
    World layer;
    World texture;  ///< null for none
};

/// Throws Error with ErrorCode::kUsage for a layer or a texture whose pixels cannot be reached.
void CheckViews(const ImageView& layer, const FrameOptions& options);

/// Throws Error with ErrorCode::kUsage for a size that no layer, or no texture of the options, can have.
void CheckSizes(int width, int height, const FrameOptions& options);

/// The clock of keyframes. The options were checked.
AnimationClock ClockOf(const FrameOptions& options);

/// Throws Error with ErrorCode::kUsage for an option out of its range.
void CheckOptions(const FrameOptions& options);

/// Copies of a frame's images in the effect's order of channels. Throws Error.
Layers LayersOf(const ImageView& layer, const FrameOptions& options);

/// Layers of these sizes without pixels, for questions about rectangles. The sizes were checked. Throws Error.
Layers BlankLayersOf(int width, int height, Depth depth, const FrameOptions& options);

/// `params` and `layers` must outlive the request. Throws Error with ErrorCode::kUsage for a time beyond the effect's
/// clock.
FrameRequest RequestOf(const Layers& layers, const FrameOptions& options, const ParamSet& params);

}  // namespace umbrant::host
