// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/watch/watched_files.h"

#include <sys/stat.h>

#include <set>
#include <system_error>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

void Add(const std::string& path, FileStamps& stamps) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return;
    stamps[path] = {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, static_cast<std::uint64_t>(status.st_size),
                    status.st_dev, status.st_ino};
}

fs::path FolderOfName(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

}  // namespace

FileStamps WatchedFiles::Scan() const {
    FileStamps stamps;
    for (const std::string& file : files) Add(file, stamps);
    for (const FramePattern& pattern : patterns) {
        for (const int frame : pattern.FramesOnDisk()) Add(pattern.PathOf(frame), stamps);
    }
    return stamps;
}

std::vector<fs::path> WatchedFiles::Folders() const {
    std::set<fs::path> folders;
    for (const std::string& file : files) {
        folders.insert(FolderOfName(file));
        std::error_code error;
        const fs::path real = fs::canonical(file, error);
        if (!error && fs::is_symlink(file, error)) folders.insert(real.parent_path());
    }
    for (const FramePattern& pattern : patterns) folders.insert(FolderOfName(pattern.Path()));
    return {folders.begin(), folders.end()};
}

std::vector<std::string> ChangedFiles(const FileStamps& before, const FileStamps& now) {
    std::vector<std::string> changed;
    for (const auto& [path, stamp] : now) {
        const auto known = before.find(path);
        if (known == before.end() || known->second != stamp) changed.push_back(path);
    }
    return changed;
}

std::vector<std::string> GoneFiles(const FileStamps& before, const FileStamps& now) {
    std::vector<std::string> gone;
    for (const auto& [path, stamp] : before) {
        if (!now.contains(path)) gone.push_back(path);
    }
    return gone;
}

}  // namespace umbrant::host
