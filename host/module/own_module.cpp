// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/module/own_module.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

bool HaveSameBytes(const fs::path& one, const fs::path& other) {
    std::error_code error;
    // A device or a pipe is not read.
    if (!fs::is_regular_file(one, error) || fs::file_size(one, error) != fs::file_size(other, error) || error) {
        return false;
    }
    std::ifstream first(one, std::ios::binary);
    std::ifstream second(other, std::ios::binary);
    return first && second &&
           std::equal(std::istreambuf_iterator<char>(first), {}, std::istreambuf_iterator<char>(second), {});
}

}  // namespace

bool IsOwnModule(const fs::path& file, const std::vector<fs::path>& folders) {
    ModuleSearch search;
    search.folders = folders;
    const auto own = FindModule(search);
    if (!own) return false;
    std::error_code error;
    return fs::equivalent(file, *own, error) || HaveSameBytes(file, *own);
}

}  // namespace umbrant::host
