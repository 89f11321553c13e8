// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one rectangle that all images of a sequence cover: as it is typed, and as the union of what the effect draws in
// each frame of the whole set, found out without drawing.

#include <string>

#include "host/render/draw_frames.h"
#include "host/result.h"

/// What a written image covers.
struct CanvasChoice {
    enum class Kind {
        kGrow,       ///< layer and shadow; in a sequence those of all frames
        kFrame,      ///< layer and shadow of this frame
        kLayer,      ///< the layer's frame
        kRectangle,  ///< `rectangle`
    };
    Kind kind = Kind::kGrow;
    PF_LRect rectangle{};  ///< in pixels of the full-size layer; right and bottom are exclusive
};

/// "grow", "frame", "layer" or "LEFT,TOP,RIGHT,BOTTOM", whole numbers. Fails with `ExitCode::kUsage`.
Result<CanvasChoice> ParseCanvas(const std::string& text);

/// The text that ParseCanvas reads as this rectangle.
std::string CanvasText(const PF_LRect& rectangle);

/// The pixels at one n-th of the resolution that a rectangle of the full-size layer covers in part or whole.
PF_LRect DrawnCanvas(const PF_LRect& rectangle, int downsample);

/// The rectangle of the full-size layer that pixels at one n-th of its resolution cover. DrawnCanvas is its inverse.
PF_LRect FullSizeCanvas(const PF_LRect& drawn, int downsample);

/// Fails with `ExitCode::kUsage` when a rectangle of drawn pixels is larger than an image can be.
Result<Done> CheckCanvas(const PF_LRect& drawn, int downsample);

/// The union of what each image of the job's whole set covers when each has a rectangle of its own, in drawn pixels.
/// The effect is asked with pre-render alone: about every frame, or about one where neither values nor the sizes of
/// layers change. A frame for which it fails is left out; it fails again when it is drawn. `known` has the layers of
/// one frame of the set: their depth is that of all, and their size where no file can be read. `session` is used for
/// every frame. `read` chooses the image of the input's files, as for the reader of the layers.
PF_LRect SetCanvas(const FrameJob& job, const FrameLayers& known, EffectSession& session, const ReadOptions& read = {});
