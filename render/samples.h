// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The stack of copies that makes a shadow, and the buffers it is blurred in. Numbers only.

#include <vector>

#include "render/render_settings.h"

/// The samples of a normal or inner shadow, in drawing order; empty when `numSamples` is below 1.
std::vector<perSampleData> BuildSamples(const myParams& settings);

/// One record per framebuffer; empty when `numFramebuffers` is below 1. Sizes saturate.
std::vector<framebufferData> BuildFramebufferRecords(const myParams& settings);
