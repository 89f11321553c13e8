// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/output_folder.h"

#include <fmt/format.h>

#include <cstdio>

#include "host/process/abandoned_files.h"

void CleanFolderOf(const std::string& output, bool quiet) {
    const std::string removed = RemoveAbandonedFiles({FolderOf(output)});
    if (!removed.empty() && !quiet) std::fputs(fmt::format("umbrant: {}\n", removed).c_str(), stderr);
}
