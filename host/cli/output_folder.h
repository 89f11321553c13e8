// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What commands that write a file do with the folder that it goes into: `--mkdir` makes it, and what killed runs left
// is removed.

#include <filesystem>
#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// Folders that were made for an output. Those that are empty in the end are removed again: a run that writes nothing
/// leaves nothing. Move-only.
class OutputFolder {
 public:
    /// Sees to the folder of `output`: where it is missing it is made if `makes` says so. Fails with `ErrorKind::kFile`
    /// when there is none or it cannot be made.
    static Result<OutputFolder> For(const std::string& output, bool makes);

    OutputFolder() = default;
    ~OutputFolder();
    OutputFolder(OutputFolder&&) = default;
    OutputFolder& operator=(OutputFolder&&) = delete;

 private:
    std::vector<std::filesystem::path> made_;  ///< outer ones first
};

/// Removes what killed runs left in the output's folder, and says so on standard error unless it is to be `quiet`.
void CleanFolderOf(const std::string& output, bool quiet = false);

}  // namespace umbrant::host
