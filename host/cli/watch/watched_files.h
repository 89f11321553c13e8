// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The files that a render reads, and how they are at a moment. Whether a file has changed is decided by this alone:
// what a render writes itself, temporary files and other programs' files do not count.

#include <compare>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/render/plan/frame_pattern.h"

namespace umbrant::host {

/// What differs between a file and the one that replaces it.
struct FileStamp {
    std::int64_t seconds = 0;  ///< of the last write
    std::int64_t nanoseconds = 0;
    std::uint64_t size = 0;  ///< bytes
    std::uint64_t device = 0;
    std::uint64_t node = 0;
    auto operator<=>(const FileStamp&) const = default;
};

/// The files that exist, by their paths as they were asked for.
using FileStamps = std::map<std::string, FileStamp>;

struct WatchedFiles {
    std::vector<std::string> files;
    std::vector<FramePattern> patterns;  ///< all files with such names

    FileStamps Scan() const;
    /// The folders in which their names are, and those that their links lead into; no folder twice.
    std::vector<std::filesystem::path> Folders() const;
};

/// The paths of `now` that are new or differ from `before`.
std::vector<std::string> ChangedFiles(const FileStamps& before, const FileStamps& now);

/// The paths of `before` that `now` lacks.
std::vector<std::string> GoneFiles(const FileStamps& before, const FileStamps& now);

}  // namespace umbrant::host
