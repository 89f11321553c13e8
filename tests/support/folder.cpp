// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace umbrant::host {

Folder::Folder() {
    const auto* info = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "umbrant_" + std::to_string(getpid()) + "_" + info->test_suite_name() + "_" + info->name();
    // The names of tests over parameters have slashes, which would leave the folders above this one behind.
    std::replace(name.begin(), name.end(), '/', '_');
    path_ = std::filesystem::path(testing::TempDir()) / name;
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
}

Folder::~Folder() {
    std::filesystem::remove_all(path_);
}

std::filesystem::path Folder::operator/(const std::string& name) const {
    return path_ / name;
}

std::ptrdiff_t Folder::Entries() const {
    return std::distance(std::filesystem::directory_iterator(path_), {});
}

void WriteBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string ReadBytes(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace umbrant::host
