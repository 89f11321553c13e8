// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Files under construction whose runs could not clean them up: killed, or on a machine that lost power.

#include <filesystem>
#include <set>
#include <string>

namespace umbrant::host {

/// Removes such files from these folders: those of this host's processes that run no more, and those whose process
/// cannot be seen from here when nobody has written to them for seven days. Returns one sentence for people about what
/// was removed, without its full stop; empty for nothing.
std::string RemoveAbandonedFiles(const std::set<std::filesystem::path>& folders);

/// The folder that a file of this name is in, for the function above.
std::filesystem::path FolderOf(const std::filesystem::path& file);

}  // namespace umbrant::host
