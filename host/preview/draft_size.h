// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How far drafts are downsampled, so that one is drawn within kDraftMilliseconds. Computes from the times that frames
// took; measures none itself.

namespace umbrant::host {

/// What a draft may take.
constexpr double kDraftMilliseconds = 30;
/// The coarsest draft.
constexpr int kCoarsestDraft = 12;

class DraftSize {
 public:
    /// The downsampling of the next draft, 1 to kCoarsestDraft, of a layer with this many pixels.
    int Next(double pixels) const;
    /// A frame at `downsample` of a layer with this many pixels (of the full size) took so long.
    void Measured(int downsample, double pixels, double milliseconds);

 private:
    /// Milliseconds of a drawn pixel; before the first frame those of a slow renderer.
    double perPixel_ = 1e-4;
    /// What a frame takes however small it is.
    double fixed_ = 0;
};

}  // namespace umbrant::host
