// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How GPU code reports something to the user: the host shows `PF_OutData::return_msg`.

#include <string>

#include "hostapi/commands.h"

namespace umbrant::effect {

/// Copies at most 255 characters of `message` to the start of `out_data->return_msg`; a null `out_data` takes nothing.
// Intended: no terminating NUL and no flag is written, so a shorter message leaves the tail of a longer one behind it.
void WriteReturnMessage(const std::string& message, PF_OutData* out_data);

}  // namespace umbrant::effect
