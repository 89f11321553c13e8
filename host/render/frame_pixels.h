// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From pictures to what the effect sees, and from what it drew to pictures.

#include <optional>

#include "host/image/picture.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// A picture as the effect is to see it: cut to its frame, in the depth of the render, at one n-th of its resolution.
/// Fails with `ErrorKind::kInternal` when there is no memory.
Result<World> LayerOf(const Picture& picture, Depth depth, int downsample);

/// Pixels as they are written, and what they cover in the pixels of the drawn layer.
struct Drawn {
    World pixels;
    PF_LRect rect{};
};

/// The frame's pixels as they are written, taken from it: those that `canvas` covers, transparent where nothing was
/// drawn. Without a canvas all that was drawn, or else the layer's frame, transparent. Fails as LayerOf does.
Result<Drawn> PictureOf(Frame& frame, const std::optional<PF_LRect>& canvas, int layerWidth, int layerHeight,
                        Depth depth);

}  // namespace umbrant::host
