// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/picture_place.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <system_error>

#include "host/image/picture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

Failure CannotWrite(const fs::path& file, std::string_view reason) {
    return {ErrorKind::kFile, fmt::format("cannot write '{}': {}", file.string(), reason)};
}

}  // namespace

fs::path BehindLinks(const fs::path& file) {
    constexpr int kMostLinks = 40;  // as the system follows
    fs::path place = file;
    std::error_code error;
    for (int i = 0; i < kMostLinks; ++i) {
        if (!fs::is_symlink(fs::symlink_status(place, error))) return place;
        const fs::path target = fs::read_symlink(place, error);
        if (error) return file;
        place = place.parent_path() / target;  // an absolute target replaces the folder
    }
    return file;
}

void TakeModeOf(const fs::path& place, int descriptor) {
    struct stat old {};
    if (stat(place.c_str(), &old) != 0 || !S_ISREG(old.st_mode)) return;
    // Bits of user and group identity belong to the file that had them.
    (void)fchmod(descriptor, old.st_mode & 0777);
}

Result<Done> CheckPlace(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::none) return CannotWrite(file, error.message());
    if (fs::is_directory(status)) return CannotWrite(file, "a folder has that name");
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        return CannotWrite(file, "not a regular file");
    }
    const fs::path place = BehindLinks(file);
    const fs::path folder = place.has_parent_path() ? place.parent_path() : fs::path(".");
    const fs::file_status there = fs::status(folder, error);
    if (there.type() == fs::file_type::none) {
        return CannotWrite(file, fmt::format("folder '{}': {}", folder.string(), error.message()));
    }
    if (!fs::exists(there)) return CannotWrite(file, fmt::format("there is no folder '{}'", folder.string()));
    if (!fs::is_directory(there)) return CannotWrite(file, fmt::format("'{}' is not a folder", folder.string()));
    return Done{};
}

}  // namespace umbrant::host
