// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the programs for clips say of themselves.

#include <set>
#include <string>

#include "host/result.h"

namespace umbrant::host {

/// The version of "ffmpeg" or "ffprobe" in PATH, as it prints it: "5.1.9-0+deb12u1". Fails with `ErrorKind::kFile` when
/// it is missing, fails, or prints something else.
Result<std::string> ToolVersion(const std::string& tool);

/// The names of the video encoders that ffmpeg was built with. Fails as ToolVersion does.
Result<std::set<std::string>> ToolEncoders();

}  // namespace umbrant::host
