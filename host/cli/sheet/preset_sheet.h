// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// All presets that have a name, as one picture.

#include <string>
#include <vector>

#include "host/cli/presets/named_presets.h"
#include "host/cli/render/render_options.h"

namespace umbrant::host {

/// Writes the sheet to the render's output: its input, or without one two letters, with each preset. Presets that move
/// are shown in the middle of their keyframes. Fails as MakeSheet does, also for a preset that is damaged.
Result<Done> MakePresetSheet(const std::vector<NamedPreset>& presets, const RenderOptions& render, int cell);

}  // namespace umbrant::host
