// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one list in which the fake CGL and the fake GL write their calls, so that their order can be tested across both.
// One line a call, as it would be written in C: "glBindTexture(GL_TEXTURE_2D, 3)".

#include <string>
#include <vector>

namespace fake {

/// Appends a line. Any thread.
void LogCall(const std::string& line);
/// All lines since the last reset, in order.
std::vector<std::string> Calls();
/// The lines that start with `prefix`, in order.
std::vector<std::string> CallsTo(const std::string& prefix);
/// Forgets the lines and keeps everything else.
void ClearCalls();
/// Puts CGL and GL back to their first state: no calls, no objects, nothing fails. Contexts still current on other
/// threads must be gone.
void Reset();

}  // namespace fake
