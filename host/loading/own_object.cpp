// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/loading/own_object.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "host/loading/program_file.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// What dlopen is to open: a path if the file is found, else only the name.
std::string Place(const char* file) {
    const fs::path program = ProgramFile();
    if (program.empty()) return file;
    const fs::path folder = program.parent_path();
    std::error_code error;
    for (const fs::path& place : {folder, folder / ".." / UMBRANT_LIBRARY_FOLDER}) {
        if (fs::is_regular_file(place / file, error)) return (place / file).string();
    }
    return file;
}

}  // namespace

std::variant<void*, std::string> OpenOwnObject(const OwnObject& object) {
    void* const opened = dlopen(Place(object.file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!opened) {
        return fmt::format("{}, {}, cannot be loaded: {}; install the program again, with the libraries that it needs",
                           object.file, object.purpose, dlerror());
    }
    if (void* const entry = dlsym(opened, object.entry)) return entry;
    return fmt::format("{} belongs to another version of the program; install both from the same version", object.file);
}

}  // namespace umbrant::host
