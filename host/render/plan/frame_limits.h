// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The ranges of what a frame is requested with. The command line and the library check them with messages of their own.

namespace umbrant::host {

/// Seconds; a time is between minus this and this.
inline constexpr double kLongestTime = 24.0 * 60 * 60;

/// Pixels of the full-size layer; beyond it no texture could meet a layer.
inline constexpr double kFarthestTexture = 100'000;

/// A frame is drawn at one n-th of its resolution, n from 1 to this.
inline constexpr int kMostDownsample = 64;

}  // namespace umbrant::host
