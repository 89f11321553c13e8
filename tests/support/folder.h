// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A folder for the files of one test, and files of bytes. Compiled apart: what a file needs of the standard library
// takes longer to compile than most tests.

#include <cstddef>
#include <filesystem>
#include <string>

namespace umbrant::host {

/// A fresh folder named after the running test, removed with everything in it.
class Folder {
 public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path operator/(const std::string& name) const;
    const std::filesystem::path& Path() const { return path_; }

    /// How many entries it has, hidden ones included.
    std::ptrdiff_t Entries() const;

 private:
    std::filesystem::path path_;
};

void WriteBytes(const std::filesystem::path& file, const std::string& bytes);

/// Empty for a file that is not there.
std::string ReadBytes(const std::filesystem::path& file);

}  // namespace umbrant::host
