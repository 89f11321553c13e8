// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What is laid over a finished shadow: the texture that colours it, then the layer itself. Done by the host's
// transfers, in straight alpha; each returns the transfer's error.

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"

/// Lays the texture layer on the output (colour only, by its blend mode and strength) and then the source layer in
/// front, at "Source Opacity". Returns the first transfer's error; a failing texture leaves the source out.
PF_Err CompTextureAndInput(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites);

namespace umbrant::effect {

/// Lays the texture layer's colour on `shadow`, a world that covers the output, at the texture's place in the output.
/// The shadow's alpha does not change.
PF_Err LayTexture(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites, PF_EffectWorld* shadow);

/// Transfers the input onto the output where it lies there, by the given mode and opacity (0..255), alpha included.
PF_Err LayInput(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites, PF_TransferMode xfer,
                A_u_char opacity);

}  // namespace umbrant::effect
