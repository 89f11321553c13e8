// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What is laid over a finished shadow: the texture that colours it, then the layer itself. Done by the host's transfer.

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"

/// Lays the texture layer (colour only, by its blend mode and strength) and then the source layer (in front, at "Source
/// Opacity") on the output. Returns the first transfer's error; a failing texture leaves the source out.
PF_Err CompTextureAndInput(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites);
