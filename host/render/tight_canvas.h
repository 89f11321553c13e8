// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The part of an image that is not transparent.

#include <mutex>

#include "host/image/picture.h"
#include "host/render/frame_pixels.h"

namespace umbrant::host {

/// The smallest alpha of a float that a file of this depth does not store as 0; `kAuto` is float.
float LeastAlpha(FileDepth depth);

/// The smallest rectangle that holds every pixel of the image that is not transparent, in pixels of the drawn layer;
/// empty for none. A float counts from `leastAlpha` on; one that is not a number counts.
PF_LRect VisibleRect(const Drawn& image, float leastAlpha);

/// What an image without a visible pixel covers: the layer's first pixel.
inline constexpr PF_LRect kNothingVisible{0, 0, 1, 1};

/// The image cut to a rectangle. Fails with `ErrorKind::kInternal` when there is no memory.
Result<Done> CutTo(const PF_LRect& rectangle, Drawn& image);

/// The union of what is visible in many images. Safe on every thread.
class VisibleUnion {
 public:
    void Add(const PF_LRect& visible);
    /// kNothingVisible where nothing is.
    PF_LRect Rectangle() const;
    bool IsNothing() const;

 private:
    mutable std::mutex mutex_;
    PF_LRect all_{};
};

}  // namespace umbrant::host
