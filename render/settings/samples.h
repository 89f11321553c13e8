// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The stack of copies that makes a shadow, and the buffers it is blurred in. Numbers only.

#include <vector>

#include "render/render_settings.h"

namespace umbrant::effect {

/// The longest stack that is drawn: four times what the row "Samples" allows. A damaged project can ask for two
/// thousand million samples, which no machine has the memory for.
constexpr int32_t kMostSamples = 1024;

/// The samples of a normal or inner shadow, in drawing order; empty when `numSamples` is below 1, and cut off after
/// `kMostSamples`.
std::vector<perSampleData> BuildSamples(const myParams& settings);

/// One record per framebuffer; empty when `numFramebuffers` is below 1. Sizes saturate.
std::vector<framebufferData> BuildFramebufferRecords(const myParams& settings);

}  // namespace umbrant::effect
