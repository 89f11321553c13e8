// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The renderers that can draw a shadow: one row for OpenGL and one for the processor, with a function for each type.

#include <array>
#include <optional>
#include <string>

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "platform/renderer_choice.h"
#include "render/render_settings.h"
#include "render/settings/radial_samples.h"

namespace umbrant::effect {

/// Draws a shadow into the output world of filled settings; only a radial shadow reads `geometry`. What is drawn, and
/// the messages and errors, are documented in render/passes/passes.h.
using ShadowFunction = PF_Err (*)(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites,
                                  myParams* settings, const RadialGeometry& geometry);

struct ShadowBackend {
    RendererChoice renderer;
    /// Makes the calling thread ready to draw. Without success it returns PF_Err_INTERNAL_STRUCT_DAMAGED, with a
    /// message where the user can do something about it.
    PF_Err (*prepare)(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites);
    /// The renderer's name for the panel, once the thread is ready; none when the driver has no name.
    std::optional<std::string> (*name)();
    /// By shadow type, SHADOW_NORMAL first.
    std::array<ShadowFunction, 3> draw;

    /// Null for a value that is no shadow type.
    ShadowFunction DrawerOf(int32_t shadowType) const;
};

/// Null for a refused choice.
const ShadowBackend* BackendOf(RendererChoice choice);

}  // namespace umbrant::effect
