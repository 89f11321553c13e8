// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a failed render means: often that there was too little memory, which an effect can rarely say itself. Inside
// host/session only.

#include <string>

#include "host/session/session_state.h"

namespace umbrant::host {

/// "an image of 64 x 48 pixels".
std::string PictureText(const PF_LRect& rect);

/// A failed render's failure; when the image may be too large for the driver, its size and the limit are reported too.
Failure RenderFailure(const SessionState& state, const Answer& answer, const PF_LRect& rect);

}  // namespace umbrant::host
