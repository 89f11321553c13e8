// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A colour conversion over the pixels of a world, on all cores.

#include "host/color/color_spaces.h"
#include "host/compositing/world.h"
#include "host/result.h"

namespace umbrant::host {

/// Converts the colours of a world of floats, which are straight: alpha is neither read nor changed, so what is
/// invisible keeps a colour too. Fails with `ErrorKind::kInternal`.
Result<Done> ConvertColors(World& world, const ColorConversion& conversion);

}  // namespace umbrant::host
