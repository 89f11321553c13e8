// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A panel with its declared defaults, as the render code reads it: the definitions of all rows that carry a value.

#include "render/settings/param_checkout.h"

namespace umbrant::effect {

/// Every row at its default; "Origin" at the corner.
inline CheckedOutParams DefaultPanel() {
    CheckedOutParams p{};
    const auto slider = [&](ParamIndex index, double value) { p[index].u.fs_d.value = value; };
    const auto popup = [&](ParamIndex index, int value) { p[index].u.pd.value = value; };
    popup(PARAM_SHADOW_TYPE, 1);
    p[PARAM_ANGLE].u.ad.value = 135 << 16;
    slider(PARAM_DISTANCE, 250);
    slider(PARAM_SOFTNESS, 250);
    p[PARAM_COLOR].u.cd.value = {255, 0, 0, 0};
    popup(PARAM_BLEND_MODE, 1);
    slider(PARAM_OPACITY_START, 20);
    slider(PARAM_OPACITY_END, 50);
    slider(PARAM_OPACITY_MASTER, 100);
    popup(PARAM_EASE_MODE, 1);
    slider(PARAM_EASE, 100);
    slider(PARAM_EASE_DISTANCE, 80);
    slider(PARAM_EASE_SOFTNESS, 100);
    slider(PARAM_EASE_OPACITY, 100);
    popup(PARAM_TEXTURE_BLEND_MODE, 15);
    slider(PARAM_TEXTURE_STRENGTH, 100);
    slider(PARAM_SAMPLES, 36);
    popup(PARAM_RESOLUTION, 3);
    popup(PARAM_PRIORITISE, 1);
    slider(PARAM_SOURCE_OPACITY, 100);
    slider(PARAM_OFFSET_SHADOW, 1);
    return p;
}

}  // namespace umbrant::effect
