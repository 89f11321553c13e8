// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Switches the module that this file is linked into to working everywhere, as soon as it is loaded.

#include "render/passes/work_extent.h"

namespace umbrant::effect {

namespace {
const bool everywhere = (SetWorksEverywhere(true), true);
}

}  // namespace umbrant::effect
