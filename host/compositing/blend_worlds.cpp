// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/blend_worlds.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/world.h"
#include "hostapi/errors.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

template <typename Pixel>
constexpr float kFullScale = 1;
template <>
inline constexpr float kFullScale<PF_Pixel> = PF_MAX_CHAN8;
template <>
inline constexpr float kFullScale<PF_Pixel16> = PF_MAX_CHAN16;

template <typename Pixel>
PF_PixelFloat Load(const Pixel& pixel) {
    const auto channel = [](auto value) { return static_cast<float>(value) / kFullScale<Pixel>; };
    return {channel(pixel.alpha), channel(pixel.red), channel(pixel.green), channel(pixel.blue)};
}

template <typename Pixel>
Pixel Store(const PF_PixelFloat& pixel) {
    if constexpr (std::is_same_v<Pixel, PF_PixelFloat>) {
        return pixel;
    } else {
        using Channel = decltype(Pixel::alpha);
        const auto channel = [](float value) {
            return static_cast<Channel>(std::lround(std::clamp(value, 0.0f, 1.0f) * kFullScale<Pixel>));
        };
        return {channel(pixel.alpha), channel(pixel.red), channel(pixel.green), channel(pixel.blue)};
    }
}

/// destination[x, y] = function(first[x, y], second[x, y]) over what all three share.
template <typename Pixel, typename Function>
void Combine(const PF_EffectWorld& first, const PF_EffectWorld& second, const PF_EffectWorld& destination,
             Function function) {
    const PF_LRect shared = Intersection(Intersection(BoundsOf(first), BoundsOf(second)), BoundsOf(destination));
    ForEachRowRange(HeightOf(shared), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            for (int x = 0; x < shared.right; ++x) {
                const PF_PixelFloat a = Load(RowOf<const Pixel>(first, y)[x]);
                const PF_PixelFloat b = Load(RowOf<const Pixel>(second, y)[x]);
                RowOf<Pixel>(destination, y)[x] = Store<Pixel>(function(a, b));
            }
        }
    });
}

template <typename Function>
PF_Err CombineAny(const PF_EffectWorld* first, const PF_EffectWorld* second, const PF_EffectWorld* destination,
                  Function function) {
    if (!first || !second || !destination) return PF_Err_BAD_CALLBACK_PARAM;
    const PF_PixelFormat format = PixelFormatOf(*first);
    if (format != PixelFormatOf(*second) || format != PixelFormatOf(*destination)) return PF_Err_BAD_CALLBACK_PARAM;
    switch (format) {
        case PF_PixelFormat_ARGB32:
            Combine<PF_Pixel>(*first, *second, *destination, function);
            return PF_Err_NONE;
        case PF_PixelFormat_ARGB64:
            Combine<PF_Pixel16>(*first, *second, *destination, function);
            return PF_Err_NONE;
        case PF_PixelFormat_ARGB128:
            Combine<PF_PixelFloat>(*first, *second, *destination, function);
            return PF_Err_NONE;
        default:
            return PF_Err_BAD_CALLBACK_PARAM;
    }
}

}  // namespace

PF_Err BlendWorlds(const PF_EffectWorld* first, const PF_EffectWorld* second, PF_Fixed ratio,
                   PF_EffectWorld* destination) {
    const float share = std::clamp(static_cast<float>(ratio) / 65536.0f, 0.0f, 1.0f);
    return CombineAny(first, second, destination, [share](const PF_PixelFloat& a, const PF_PixelFloat& b) {
        const auto mix = [share](float from, float to) { return from * (1 - share) + to * share; };
        return PF_PixelFloat{mix(a.alpha, b.alpha), mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
    });
}

PF_Err PremultiplyWorld(const PF_EffectWorld* source, const PF_PixelFloat& color, bool forward,
                        PF_EffectWorld* destination) {
    return CombineAny(source, source, destination, [&](const PF_PixelFloat& pixel, const PF_PixelFloat&) {
        const float alpha = pixel.alpha;
        const auto channel = [&](float value, float background) {
            if (forward) return value * alpha + background * (1 - alpha);
            return alpha == 0 ? 0.0f : (value - background * (1 - alpha)) / alpha;
        };
        return PF_PixelFloat{alpha, channel(pixel.red, color.red), channel(pixel.green, color.green),
                             channel(pixel.blue, color.blue)};
    });
}

}  // namespace umbrant::host
