// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/effect_request.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>

#include "host/compositing/memory_shortage.h"
#include "host/library/errors.h"
#include "host/library/pixel_order.h"
#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

namespace {

constexpr int kMostRate = 1000000;
/// Times between frames are passed to the effect in steps of about this part of a second.
constexpr int kFineSteps = 24000;
constexpr int kMostFraction = 1000000;
constexpr int kMostAspect = 100;

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

/// Whether low <= fraction <= high; both numbers of a valid fraction are from 1 to kMostFraction.
bool IsWithin(const Fraction& fraction, const Fraction& low, const Fraction& high) {
    const std::int64_t numerator = fraction.numerator, denominator = fraction.denominator;
    return numerator >= 1 && denominator >= 1 && numerator <= kMostFraction && denominator <= kMostFraction &&
           numerator * low.denominator >= low.numerator * denominator &&
           numerator * high.denominator <= high.numerator * denominator;
}

void CheckScale(const Fraction& scale, int downsample, const char* along) {
    if (!IsWithin(scale, {1, kMostDownsample}, {1, 1})) {
        Refuse(fmt::format("the scale along {} is {}/{}; it must be from 1/{} to 1, of whole numbers from 1 to {}",
                           along, scale.numerator, scale.denominator, kMostDownsample, kMostFraction));
    }
    if (static_cast<std::int64_t>(scale.numerator) * kMostDownsample <
        static_cast<std::int64_t>(scale.denominator) * downsample) {
        Refuse(fmt::format("the scale along {} is {}/{} and downsample is {}; their product must be 1/{} or more",
                           along, scale.numerator, scale.denominator, downsample, kMostDownsample));
    }
}

void CheckResolution(const FrameOptions& options) {
    if (options.downsample < 1 || options.downsample > kMostDownsample) {
        Refuse(fmt::format("downsample is {}; it must be from 1 to {}", options.downsample, kMostDownsample));
    }
    CheckScale(options.scaleX, options.downsample, "x");
    CheckScale(options.scaleY, options.downsample, "y");
    const Fraction& aspect = options.pixelAspect;
    if (!IsWithin(aspect, {1, kMostAspect}, {kMostAspect, 1})) {
        Refuse(fmt::format("the pixel aspect ratio is {}/{}; it must be from 1/{} to {}, of whole numbers from 1 to {}",
                           aspect.numerator, aspect.denominator, kMostAspect, kMostAspect, kMostFraction));
    }
}

/// In lowest terms: equal resolutions are one to the effect.
PF_RationalScale RationalOf(const Fraction& fraction) {
    const int common = std::gcd(fraction.numerator, fraction.denominator);
    return {fraction.numerator / common, static_cast<A_u_long>(fraction.denominator / common)};
}

/// The layer's full size along one side.
int FullSize(int asked, int given, const Fraction& scale, int downsample) {
    if (asked != 0) return asked;
    const double full = static_cast<double>(given) * downsample * scale.denominator / scale.numerator;
    return static_cast<int>(std::lround(full));
}

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
    CheckResolution(options);
    if (options.layerWidth < 0 || options.layerHeight < 0) {
        Refuse(fmt::format("the layer's full size is {} x {}; it cannot be below 0", options.layerWidth,
                           options.layerHeight));
    }
    if (!IsWithin(options.seconds, kLongestTime)) {
        Refuse(fmt::format("the time is {} s; it must be from -{} to {}", options.seconds, kLongestTime, kLongestTime));
    }
    const umbrant::FrameRate& rate = options.rate;
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
                              FullSize(options.layerWidth, layers.layer.Width(), options.scaleX, options.downsample),
                              FullSize(options.layerHeight, layers.layer.Height(), options.scaleY, options.downsample),
                              layers.texture.IsNull() ? nullptr : &layers.texture};
    FrameSettings settings{options.downsample, CanvasOf(options.canvas), options.textureX, options.textureY};
    settings.scaleX = RationalOf(options.scaleX);
    settings.scaleY = RationalOf(options.scaleY);
    settings.pixelAspect = RationalOf(options.pixelAspect);
    return MakeFrameRequest(worlds, settings, TimeOf(options), &params);
}

}  // namespace umbrant::host
