// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's side of bench/python_overhead, which loads this and calls it with the same rows as the Python package.

#include <chrono>
#include <cstdint>
#include <memory>

#include <umbrant/effect.h>

namespace {

std::unique_ptr<umbrant::Effect> effect;

}  // namespace

extern "C" {

/// Makes the effect. Returns whether that succeeded.
__attribute__((visibility("default"))) bool umbrant_rows_start(const char* module, double samples) noexcept try {
    umbrant::EffectOptions options;
    options.module = module;
    options.renderer = umbrant::Renderer::kProcessor;
    effect = std::make_unique<umbrant::Effect>(options);
    effect->Set("quality/samples", samples);
    return true;
} catch (const std::exception&) {
    return false;
}

/// Milliseconds of one RenderInto of 8-bit rows without gaps; negative if it failed.
__attribute__((visibility("default"))) double umbrant_rows_draw(const std::uint8_t* layer, std::uint8_t* target,
                                                                int width, int height) noexcept try {
    umbrant::FrameOptions options;
    options.canvas = umbrant::Canvas::kLayer;
    const auto begin = std::chrono::steady_clock::now();
    effect->RenderInto({layer, width, height}, {target, width, height}, options);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
} catch (const std::exception&) {
    return -1;
}

}  // extern "C"
