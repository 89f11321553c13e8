// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/output_folder.h"

#include <fmt/format.h>

#include <cstdio>
#include <system_error>

#include "host/process/files/abandoned_files.h"

namespace umbrant::host {

namespace fs = std::filesystem;

Result<OutputFolder> OutputFolder::For(const std::string& output, bool makes) {
    OutputFolder folder;
    const fs::path wanted = fs::path(output).parent_path();
    std::error_code error;
    // What is there, or may not be looked at, is checked when the file is about to be written.
    if (wanted.empty() || fs::status(wanted, error).type() != fs::file_type::not_found) return folder;
    if (!makes) {
        return Failure{ErrorKind::kFile, fmt::format("cannot write '{}': there is no folder '{}'; --mkdir creates it",
                                                     output, wanted.string())};
    }
    std::vector<fs::path> missing;
    for (fs::path each = wanted; !each.empty() && !fs::exists(each, error); each = each.parent_path()) {
        // "a//b" and "a/b/" name the folder of their parent once more.
        if (each.has_filename()) missing.push_back(each);
        if (each == each.parent_path()) break;
    }
    for (auto each = missing.rbegin(); each != missing.rend(); ++each) {
        // Another process may have made it meanwhile: then it is not ours to remove.
        if (fs::create_directory(*each, error)) {
            folder.made_.push_back(*each);
        } else if (error) {
            return Failure{ErrorKind::kFile, fmt::format("cannot write '{}': the folder '{}' cannot be created: {}",
                                                         output, each->string(), error.message())};
        }
    }
    return folder;
}

OutputFolder::~OutputFolder() {
    std::error_code ignored;
    for (auto each = made_.rbegin(); each != made_.rend(); ++each) fs::remove(*each, ignored);
}

void CleanFolderOf(const std::string& output, bool quiet) {
    const std::string removed = RemoveAbandonedFiles({FolderOf(output)});
    if (!removed.empty() && !quiet) std::fputs(fmt::format("umbrant: {}\n", removed).c_str(), stderr);
}

}  // namespace umbrant::host
