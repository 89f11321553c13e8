// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The loop that the normal and the inner shadow share: every sample blurred across, blurred down, and placed.

#include <vector>

#include "gl/framebuffer.h"
#include "hostapi/commands.h"
#include "render/pass_regions.h"
#include "render/render_settings.h"

/// Tells the program `programId` what a blur pass of a sample needs.
using BlurSender = void (*)(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId);

/// Where the passes of a sample have anything to draw, given where their source holds anything.
using RegionFollower = SampleRegions (*)(const myParams& params, const perSampleData& sample,
                                         const framebufferData& record, const Region& source);

/// How the passes are fed; `across` runs first for each sample.
struct BlurSenders {
    BlurSender across;
    BlurSender down;
    RegionFollower regions;
};

/// Draws all samples of `settings` in order: `source` is blurred in the sample's ping-pong buffer and added to
/// `accumulated`, which the first sample clears, also when it is skipped. A sample whose buffer is zero-sized, whose
/// opacity is 0 or which shows nothing of `something`, the part of the source that is not 0, is skipped. The quad must
/// be bound and the blend function set; blending is on afterwards.
void DrawSampleStack(myParams* settings, Framebuffer& source, const Region& something,
                     std::vector<Framebuffer>& blurred, Framebuffer& accumulated, const BlurSenders& senders,
                     PF_OutData* out_data);
