// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/files/abandoned_files.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <system_error>

#include "host/process/files/file_owner.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr std::time_t kLongestKept = std::time_t{7} * 24 * 60 * 60;

bool IsAbandoned(const fs::path& file) {
    const auto owner = OwnerOf(file.filename().string());
    struct stat facts {};
    if (!owner || lstat(file.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
    switch (StateOf(*owner, facts.st_mtime)) {
        case OwnerState::kAlive:
            return false;
        case OwnerState::kGone:
            return true;
        case OwnerState::kUnknown:
            return std::time(nullptr) - facts.st_mtime > kLongestKept;
    }
    return false;
}

std::size_t RemoveFrom(const fs::path& folder) {
    std::size_t removed = 0;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (IsAbandoned(entry->path()) && unlink(entry->path().c_str()) == 0) ++removed;
    }
    return removed;
}

}  // namespace

std::string RemoveAbandonedFiles(const std::set<fs::path>& folders) {
    std::size_t files = 0, others = 0;
    std::string first;
    for (const fs::path& folder : folders) {
        const std::size_t removed = RemoveFrom(folder);
        if (removed == 0) continue;
        if (files == 0) {
            first = folder.string();
        } else {
            ++others;
        }
        files += removed;
    }
    if (files == 0) return "";
    std::string sentence =
        fmt::format("removed {} unfinished file{} of earlier runs from '{}'", files, files == 1 ? "" : "s", first);
    if (others > 0) sentence += fmt::format(" and {} other folder{}", others, others == 1 ? "" : "s");
    return sentence;
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

}  // namespace umbrant::host
