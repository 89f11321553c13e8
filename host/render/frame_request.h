// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one place where a request to the effect is made: for a single image, for the frames of a sequence or a clip, and
// for the frames of the library.

#include "host/session/effect_session.h"

namespace umbrant::host {

/// What is the same for all frames of a render.
struct FrameSettings {
    int downsample = 1;             ///< drawn at one n-th of the resolution, from 1 to kMostDownsample
    Canvas canvas = Canvas::kGrow;  ///< what the effect is asked for
    double textureX = 0;            ///< the texture's left edge, in pixels of the full-size layer
    double textureY = 0;            ///< its top edge
    /// The resolution along each side, for what is not an n-th; multiplied by 1/`downsample`. Not above 1.
    PF_RationalScale scaleX{1, 1};
    PF_RationalScale scaleY{1, 1};
    PF_RationalScale pixelAspect{1, 1};  ///< a pixel's width over its height
};

/// A frame's time in the units of the effect's clock.
struct FrameTime {
    A_long time = 0;  ///< in units of 1/scale seconds
    A_long step = 1;  ///< the duration of a frame
    A_long total = 1;
    A_u_long scale = 24;  ///< not 0
};

/// The request for one frame; `params` may be null, for the session's values. The worlds and the values must outlive
/// it. Functions for other times are left empty.
FrameRequest MakeFrameRequest(const MomentLayers& layers, const FrameSettings& settings, const FrameTime& time,
                              const ParamSet* params);

}  // namespace umbrant::host
