// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How alike two images are, in one number. Both measures take all four channels, from 0 to 1, colours premultiplied;
// outside its window a picture is transparent. What is not a number counts as 0.

#include <optional>

#include "host/image/picture.h"

namespace umbrant::host {

/// The peak signal-to-noise ratio in decibels, for a peak of 1; infinite for equal images. No value when the frames
/// differ in size.
std::optional<double> Psnr(const Picture& first, const Picture& second);

/// The structural similarity (Wang, Bovik, Sheikh, Simoncelli: "Image quality assessment: from error visibility to
/// structural similarity", 2004), from -1 to 1 for equal images: a window of 11 x 11 pixels with a Gaussian of sigma
/// 1.5, K1 = 0.01, K2 = 0.03, the mean over all pixels and channels. Windows at the edges read the outermost pixels
/// again. No value when the frames differ in size.
std::optional<double> Ssim(const Picture& first, const Picture& second);

}  // namespace umbrant::host
