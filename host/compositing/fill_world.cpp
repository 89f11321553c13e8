// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/fill_world.h"

#include <algorithm>
#include <cmath>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/world.h"
#include "hostapi/errors.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

template <typename Pixel>
void Fill(const Pixel& pixel, const PF_LRect& rect, const PF_EffectWorld& world) {
    ForEachRowRange(HeightOf(rect), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            std::fill_n(RowOf<Pixel>(world, rect.top + y) + rect.left, WidthOf(rect), pixel);
        }
    });
}

template <typename Pixel, typename Channel>
Pixel Integer(const PF_PixelFloat& color, int fullScale) {
    const auto channel = [&](float value) {
        return static_cast<Channel>(std::lround(std::clamp(value, 0.0f, 1.0f) * static_cast<float>(fullScale)));
    };
    return {channel(color.alpha), channel(color.red), channel(color.green), channel(color.blue)};
}

}  // namespace

PF_Err FillWorld(const PF_PixelFloat& color, const PF_Rect* rect, PF_EffectWorld* world) {
    if (!world) return PF_Err_BAD_CALLBACK_PARAM;
    const PF_LRect filled = rect ? Intersection(*rect, BoundsOf(*world)) : BoundsOf(*world);
    switch (PixelFormatOf(*world)) {
        case PF_PixelFormat_ARGB32:
            Fill(Integer<PF_Pixel, A_u_char>(color, PF_MAX_CHAN8), filled, *world);
            return PF_Err_NONE;
        case PF_PixelFormat_ARGB64:
            Fill(Integer<PF_Pixel16, A_u_short>(color, PF_MAX_CHAN16), filled, *world);
            return PF_Err_NONE;
        case PF_PixelFormat_ARGB128:
            Fill(color, filled, *world);
            return PF_Err_NONE;
        default:
            return PF_Err_BAD_CALLBACK_PARAM;
    }
}

}  // namespace umbrant::host
