// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The part of a layer's alpha that a shadow can be made of.

#include <cstdint>

#include "hostapi/pixels.h"
#include "render/pass_plan.h"

namespace umbrant::effect {

/// The smallest region that holds every alpha of `world` (as deep as `bitDepth`: 8 or 32) that is not 0. The whole
/// world when `WorksEverywhere`.
Region FindAlpha(const PF_LayerDef& world, int32_t bitDepth);

/// The same for every alpha that is not full: what an inner shadow's inverted alpha holds. Alphas above 1 are full,
/// what is not a finite number is not.
Region FindHoles(const PF_LayerDef& world, int32_t bitDepth);

}  // namespace umbrant::effect
