// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the plug-in describes itself to a host, before any instance exists. Loads no module. [main]

#include "openfx/abi/core.h"

namespace umbrant::openfx {

// Fixed for ever: projects are saved with them.
inline constexpr char kPluginIdentifier[] = "org.umbrant.umbrant2";
inline constexpr unsigned kPluginMajor = 1;
inline constexpr unsigned kPluginMinor = 0;

/// The effect's own properties. Failed where the host has no properties for it.
OfxStatus Describe(OfxImageEffectHandle effect);
/// Its clips and parameters, which are the same in both contexts. Failed where the host refuses the clips Source and
/// Output or has no parameters; other refusals are tolerated.
OfxStatus DescribeInContext(OfxImageEffectHandle effect);

}  // namespace umbrant::openfx
