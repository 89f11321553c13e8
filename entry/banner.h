// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The picture in the panel's "About & Support" group, embedded byte for byte from assets/banner/um2_map.bgra by the
// build (cmake/EmbedBytes.cmake). assets/draw_banner.py draws it.

namespace umbrant::effect {

inline constexpr int kBannerWidth = 500;
inline constexpr int kBannerHeight = 150;
inline constexpr int kBannerRowBytes = kBannerWidth * 4;
inline constexpr int kBannerBytes = kBannerRowBytes * kBannerHeight;

}  // namespace umbrant::effect

/// Rows from top to bottom without padding; blue, green, red, alpha; straight alpha. Drawn at half its size.
extern const unsigned char um2_map[umbrant::effect::kBannerBytes];
