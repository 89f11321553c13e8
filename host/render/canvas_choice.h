// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a written image covers: as it is typed, and in drawn pixels.

#include <string>

#include "host/result.h"
#include "hostapi/geometry.h"

namespace umbrant::host {

/// What a written image covers.
struct CanvasChoice {
    enum class Kind {
        kGrow,       ///< layer and shadow; in a sequence those of all frames
        kFrame,      ///< layer and shadow of this frame
        kLayer,      ///< the layer's frame
        kTight,      ///< what is not transparent; in a sequence that of all frames
        kRectangle,  ///< `rectangle`
    };
    Kind kind = Kind::kGrow;
    PF_LRect rectangle{};  ///< in pixels of the full-size layer; right and bottom are exclusive
};

/// "grow", "frame", "layer", "tight" or "LEFT,TOP,RIGHT,BOTTOM", whole numbers. Fails with `ErrorKind::kUsage`.
Result<CanvasChoice> ParseCanvas(const std::string& text);

/// The same without "tight", which is known only from pixels. Fails with `ErrorKind::kUsage`.
Result<CanvasChoice> ParseUndrawnCanvas(const std::string& text);

/// The text that ParseCanvas reads as this rectangle.
std::string CanvasText(const PF_LRect& rectangle);

/// The pixels at one n-th of the resolution that a rectangle of the full-size layer covers in part or whole.
PF_LRect DrawnCanvas(const PF_LRect& rectangle, int downsample);

/// The rectangle of the full-size layer that pixels at one n-th of its resolution cover. DrawnCanvas is its inverse.
PF_LRect FullSizeCanvas(const PF_LRect& drawn, int downsample);

/// Fails with `ErrorKind::kUsage` when a rectangle of drawn pixels is larger than an image can be.
Result<Done> CheckCanvas(const PF_LRect& drawn, int downsample);

}  // namespace umbrant::host
