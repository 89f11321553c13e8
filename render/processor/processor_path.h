// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What render/ needs of the CPU renderer. A build carries it or not: render/with_processor hands on to cpu/,
// render/without_processor says that it is not here.

#include <cstddef>
#include <cstdint>
#include <string>

#include "render/render_settings.h"
#include "render/settings/radial_samples.h"

namespace umbrant::effect {

/// A layer's alpha, packed, as deep as the render: bytes or floats.
struct ProcessorLayer {
    const void* alpha = nullptr;
    int32_t width = 0;
    int32_t height = 0;
};

/// Whether this build carries the path. Without it nothing below may be called but `EndProcessorThreads`.
bool HasProcessorPath();

/// What draws, for people: "Processor (AVX2, 2 threads)".
std::string ProcessorName();

// The accumulated alpha of a shadow: output width x height values of 0..65535, which last until the calling thread's
// next call. All throw std::bad_alloc. The settings have samples, and neither layer nor output is zero-sized.

const uint16_t* DrawNormalOnProcessor(const myParams& settings, const ProcessorLayer& layer);
const uint16_t* DrawInnerOnProcessor(const myParams& settings, const ProcessorLayer& layer);
const uint16_t* DrawRadialOnProcessor(const myParams& settings, const ProcessorLayer& layer,
                                      const RadialGeometry& geometry);

/// A row's alphas, as deep as the render, from its pixels.
void TakeAlphas(const void* pixels, size_t count, int bitDepth, void* out);

/// A row's pixels: the alphas at the depth of the render, and the shadow's colour.
void ColourRow(const uint16_t* alpha, size_t count, const myParams& settings, void* pixels);

/// Converts alphas to the depth of the render: bytes for 8, otherwise floats.
void ConvertAlpha(const uint16_t* alpha, size_t count, int bitDepth, void* out);

/// Joins the path's threads, if there are any, and gives the calling thread's memory back. A later render starts them
/// again.
void EndProcessorThreads();

}  // namespace umbrant::effect
