// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/draft_size.h"

#include <algorithm>

namespace umbrant::host {

namespace {

double PixelsAt(int downsample, double pixels) {
    return pixels / (static_cast<double>(downsample) * downsample);
}

}  // namespace

int DraftSize::Next(double pixels) const {
    for (int n = 1; n < kCoarsestDraft; ++n) {
        const double variable = perPixel_ * PixelsAt(n, pixels);
        // Coarser drafts do not help when most of the time does not depend on the size.
        if (fixed_ + variable <= kDraftMilliseconds || variable < fixed_ / 8) return n;
    }
    return kCoarsestDraft;
}

void DraftSize::Measured(int downsample, double pixels, double milliseconds) {
    const double count = std::max(PixelsAt(downsample, pixels), 1.0);
    const double rest = milliseconds - perPixel_ * count;
    if (downsample == 1 || rest < 0) {
        perPixel_ = milliseconds / count;
        return;
    }
    // Single frames vary, so that half of the previous value stays.
    fixed_ = (fixed_ + rest) / 2;
}

}  // namespace umbrant::host
