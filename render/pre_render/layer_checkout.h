// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The ids under which pre-render asks for layers and render receives their pixels: positive, unique, one per layer.

#include "entry/param_ids.h"
#include "hostapi/basic_types.h"

namespace umbrant::effect {

inline constexpr A_long kInputCheckoutId = 1;
inline constexpr A_long kTextureCheckoutId = PARAM_TEXTURE_LAYER;
static_assert(kInputCheckoutId != kTextureCheckoutId);

}  // namespace umbrant::effect
