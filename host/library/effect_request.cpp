// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/effect_request.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/compositing/memory_shortage.h"
#include "host/library/errors.h"
#include "host/library/pixel_order.h"
#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

namespace {

constexpr int kMostRate = 1000000;
/// Times between frames are passed to the effect in steps of about this part of a second.
constexpr int kFineSteps = 24000;

/// Written so that not-a-number is outside.
bool IsWithin(double value, double limit) {
    return value >= -limit && value <= limit;
}

Canvas CanvasOf(umbrant::Canvas canvas) {
    return canvas == umbrant::Canvas::kLayer ? Canvas::kLayer : Canvas::kGrow;
}

/// The effect's clock: whole steps of a frame, or parts of it as far as its numbers reach.
FrameTime TimeOf(const FrameOptions& options) {
    int fine = std::max(1, kFineSteps / options.rate.frames);
    const double longest = std::abs(options.seconds) + static_cast<double>(options.rate.seconds) / options.rate.frames;
    while (fine > 1 && longest * options.rate.frames * fine > std::numeric_limits<A_long>::max()) fine /= 2;
    const double scale = static_cast<double>(options.rate.frames) * fine;
    if (longest * scale > std::numeric_limits<A_long>::max()) {
        Refuse(fmt::format("the time of {} s at {} frames in {} s exceeds the range of an effect's clock",
                           options.seconds, options.rate.frames, options.rate.seconds));
    }
    FrameTime time;
    time.scale = static_cast<A_u_long>(scale);
    time.step = options.rate.seconds * fine;
    time.time = static_cast<A_long>(std::lround(options.seconds * scale));
    time.total = std::max(time.time, 0) + time.step;
    return time;
}

constexpr char kLayer[] = "the layer";
constexpr char kTexture[] = "the texture";

World Made(World world, int width, int height, Depth depth, const char* what) {
    if (world.IsNull()) Throw(NotEnoughMemory(what, width, height, depth));
    return world;
}

World MakeWorld(const ImageView& view, Depth depth, const char* what) {
    Need(CheckView(view, what));
    return Made(WorldOf(view, depth), view.width, view.height, depth, what);
}

World MakeBlank(int width, int height, Depth depth, const char* what) {
    return Made(World::CreateWithoutPixels(width, height, depth), width, height, depth, what);
}

bool HasTexture(const FrameOptions& options) {
    const ImageView& texture = options.texture;
    return texture.pixels || texture.width != 0 || texture.height != 0;
}

}  // namespace

void CheckOptions(const FrameOptions& options) {
    if (options.downsample < 1 || options.downsample > kMostDownsample) {
        Refuse(fmt::format("downsample is {}; it must be from 1 to {}", options.downsample, kMostDownsample));
    }
    if (options.layerWidth < 0 || options.layerHeight < 0) {
        Refuse(fmt::format("the layer's full size is {} x {}; it cannot be below 0", options.layerWidth,
                           options.layerHeight));
    }
    if (!IsWithin(options.seconds, kLongestTime)) {
        Refuse(fmt::format("the time is {} s; it must be from -{} to {}", options.seconds, kLongestTime, kLongestTime));
    }
    const FrameRate& rate = options.rate;
    if (rate.frames < 1 || rate.seconds < 1 || rate.frames > kMostRate || rate.seconds > kMostRate) {
        Refuse(fmt::format("the rate is {} / {}; both must be from 1 to {}", rate.frames, rate.seconds, kMostRate));
    }
    if (!IsWithin(options.zeroFrame, kMostRate)) {
        Refuse(
            fmt::format("the frame at 0 s is {}; it must be from -{} to {}", options.zeroFrame, kMostRate, kMostRate));
    }
    if (!IsWithin(options.textureX, kFarthestTexture) || !IsWithin(options.textureY, kFarthestTexture)) {
        Refuse(fmt::format("the texture's position is {},{}; both must be from -{} to {}", options.textureX,
                           options.textureY, kFarthestTexture, kFarthestTexture));
    }
}

AnimationClock ClockOf(const FrameOptions& options) {
    return {static_cast<double>(options.rate.frames) / options.rate.seconds, options.zeroFrame};
}

void CheckViews(const ImageView& layer, const FrameOptions& options) {
    Need(CheckView(layer, kLayer));
    if (HasTexture(options)) Need(CheckView(options.texture, kTexture));
}

void CheckSizes(int width, int height, const FrameOptions& options) {
    Need(CheckSize(width, height, kLayer));
    if (HasTexture(options)) Need(CheckSize(options.texture.width, options.texture.height, kTexture));
}

Layers LayersOf(const ImageView& layer, const FrameOptions& options) {
    Layers layers;
    const Depth depth = DepthOf(layer.format);
    layers.layer = MakeWorld(layer, depth, kLayer);
    if (HasTexture(options)) layers.texture = MakeWorld(options.texture, depth, kTexture);
    return layers;
}

Layers BlankLayersOf(int width, int height, Depth depth, const FrameOptions& options) {
    Layers layers;
    layers.layer = MakeBlank(width, height, depth, kLayer);
    if (HasTexture(options)) {
        layers.texture = MakeBlank(options.texture.width, options.texture.height, depth, kTexture);
    }
    return layers;
}

FrameRequest RequestOf(const Layers& layers, const FrameOptions& options, const ParamSet& params) {
    const MomentLayers worlds{&layers.layer,
                              options.layerWidth ? options.layerWidth : layers.layer.Width() * options.downsample,
                              options.layerHeight ? options.layerHeight : layers.layer.Height() * options.downsample,
                              layers.texture.IsNull() ? nullptr : &layers.texture};
    const FrameSettings settings{options.downsample, CanvasOf(options.canvas), options.textureX, options.textureY};
    return MakeFrameRequest(worlds, settings, TimeOf(options), &params);
}

}  // namespace umbrant::host
