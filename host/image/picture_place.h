// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where an output goes when something is there already: through symbolic links, and with the mode of the file that it
// replaces.

#include <filesystem>

namespace umbrant::host {

/// The file that the path leads to through symbolic links, the last of which may lead to nothing yet. The path itself
/// when it is no link, or when its links cannot be followed.
std::filesystem::path BehindLinks(const std::filesystem::path& file);

/// Gives the open file the mode of the file at `place`, if there is one. A mode that cannot be set stays.
void TakeModeOf(const std::filesystem::path& place, int descriptor);

}  // namespace umbrant::host
