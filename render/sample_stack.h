// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The loop that the normal and the inner shadow share: every sample blurred across, blurred down, and placed.

#include <vector>

#include "gl/framebuffer.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"

/// Tells the program `programId` what a blur pass of a sample needs.
using BlurSender = void (*)(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId);

/// How the two blur passes are fed; `across` runs first for each sample.
struct BlurSenders {
    BlurSender across;
    BlurSender down;
};

/// Draws all samples of `settings` in order: `source` is blurred in the sample's ping-pong buffer and added to
/// `accumulated`, which the first sample clears, also when it is skipped. A sample whose buffer is zero-sized is
/// skipped. The quad must be bound and blending set; blending stays on through the blurs, whose targets are cleared and
/// so keep what is drawn.
void DrawSampleStack(myParams* settings, Framebuffer& source, std::vector<Framebuffer>& blurred,
                     Framebuffer& accumulated, const BlurSenders& senders, PF_OutData* out_data);
