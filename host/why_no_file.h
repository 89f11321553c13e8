// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The message for a missing file, the same for everything that the program reads.

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

namespace umbrant::host {

constexpr char kNoSuchFile[] = "there is no such file";

/// Why there is nothing at a path, or nothing when there is a file or a folder. A folder that may not be entered hides
/// whether there is a file: then this is the system's reason.
inline std::optional<std::string> WhyNoFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::none) return error.message();
    if (!std::filesystem::exists(status)) return kNoSuchFile;
    return std::nullopt;
}

}  // namespace umbrant::host
