// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Answers the host's smart render: one frame from the checked-out layers to the finished output world.

#include "hostapi/commands.h"
#include "hostapi/smart_render.h"

/// Renders one frame. Must be called with the global render mutex held. Every layer that is checked out is checked in
/// again on every way out. Returns the first error of the host or of the passes; throws 516 for a missing suite.
PF_Err SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra);
