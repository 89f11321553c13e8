// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What an inner shadow asks of the host around its passes: the layer in a border, and the composite of texture, source,
// shadow and clip.

#include <functional>

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "pixel/effect_world.h"
#include "render/render_settings.h"

namespace umbrant::effect {

/// Makes `padded` a world of the output's size, with the layer in a border as wide as the output grew, so that its
/// outside can cast a shadow into it. Succeeds without a world where the output has no pixels.
PF_Err PadInput(PF_InData* in_data, const myParams& settings, HV_EffectWorld* padded);

/// Lays the shadow over the layer in the output and clips it to the layer's alpha. `readBack` writes the shadow in its
/// colour into a second world; without one the shadow is transparent. Returns the first error.
PF_Err CompositeInnerShadow(PF_InData* in_data, AEGP_SuiteHandler& suites, myParams* settings,
                            const std::function<PF_Err(PF_EffectWorld* shadow)>& readBack);

}  // namespace umbrant::effect
