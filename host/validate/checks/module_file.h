// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A module as a file: what it exports and needs, and the place of its writable data once it is loaded.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace umbrant::host {

/// What the file's tables say.
struct ModuleFile {
    std::vector<std::string> exports;  ///< names of defined global and weak dynamic symbols
    std::vector<std::string> needed;   ///< libraries
    /// Writable objects by address within the file, from the full symbol table; empty in a stripped file.
    struct Object {
        std::string name;
        std::size_t address = 0;
        std::size_t size = 0;
    };
    std::vector<Object> writable;
    bool isElf = false;  ///< false: another kind of file, of which nothing is known

    /// Nothing when the file cannot be read.
    static std::optional<ModuleFile> Read(const std::filesystem::path& path);
};

/// A stretch of a loaded module's writable data.
struct WritableRange {
    std::byte* begin = nullptr;
    std::size_t size = 0;
    std::size_t address = 0;  ///< within the file
};

/// The writable stretches of the loaded file, without those that the loader has made read-only.
std::vector<WritableRange> WritableRangesOf(const std::filesystem::path& file);

}  // namespace umbrant::host
