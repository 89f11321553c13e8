// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The area of the panel that the effect draws itself: its banner. [main]

#include "hostapi/commands.h"
#include "hostapi/custom_ui.h"

namespace umbrant::effect {

/// An event of that area. `PF_Event_DRAW` draws the banner when the control itself is to be drawn, nothing in any other
/// area, and marks the event as handled; any other event returns 0 and leaves everything as it was. Returns the first
/// of the host's errors, and then the event is not marked. Throws 13, with a message for the user in `out_data`, when a
/// drawing suite is missing, and 516 for the custom interface's or the handle suite.
PF_Err HandleEvent(PF_InData* in_data, PF_OutData* out_data, PF_EventExtra* event);

}  // namespace umbrant::effect
