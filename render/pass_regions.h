// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where the GPU passes have anything to draw: the part of a layer that is not empty, followed through each pass's
// sampling places and reach. Everything is rounded outwards by more than any driver's sampling can be off, so leaving
// out the rest changes no byte.

#include <cstdint>

#include "hostapi/pixels.h"
#include "render/pass_plan.h"
#include "render/render_settings.h"

/// The smallest region that holds every alpha of `world` (as deep as `bitDepth`: 8 or 32) that is not 0. The whole
/// world when `WorksEverywhere`.
Region FindAlpha(const PF_LayerDef& world, int32_t bitDepth);

/// The same for every alpha that is not full: what an inner shadow's inverted alpha holds. Alphas above 1 are full,
/// what is not a finite number is not.
Region FindHoles(const PF_LayerDef& world, int32_t bitDepth);

/// How a pass looks at its source along one axis: its `outputs` cover `covered` inputs about the middle of `inputs`.
struct CoveredAxis {
    int32_t inputs = 0;
    int32_t outputs = 0;
    double covered = 0;
    bool clamped = false;  ///< beyond the edge lies the edge; otherwise its mirror image
};

/// Outputs that see any of `something` with taps up to `reach` inputs away.
Range SeenThrough(const CoveredAxis& axis, const Range& something, double reach);

/// Of a normal shadow's sample; `layer` is where the input world holds anything.
SampleRegions NormalRegions(const myParams& settings, const perSampleData& sample, const framebufferData& record,
                            const Region& layer);

/// Where the inverted alpha of an inner shadow holds anything, in its buffer; `holes` is what `FindHoles` found in
/// `innerSourceWorld`.
Region InvertedRegion(const myParams& settings, const Region& holes);

/// Of an inner shadow's sample; `inverted` as above.
SampleRegions InnerRegions(const myParams& settings, const perSampleData& sample, const framebufferData& record,
                           const Region& inverted);

/// Of a radial shadow's sample; `layer` is where the padded copy of `width` x `height` texels holds anything.
SampleRegions RadialRegions(const myParams& settings, const perSampleData& sample, int32_t width, int32_t height,
                            const Region& layer);
