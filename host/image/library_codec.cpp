// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "host/image/codec.h"

namespace {

namespace fs = std::filesystem;

constexpr char kFile[] = "umbrant_images.so";
constexpr char kEntry[] = "UmbrantLibraryCodec";

using Loaded = std::variant<const Codec*, std::string>;

/// Where the shared object is: beside the program, in the folder of its installation, or wherever the system's loader
/// looks for this program.
std::string Place() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) return kFile;
    const fs::path folder = program.parent_path();
    for (const fs::path& place : {folder, folder / ".." / UMBRANT_LIBRARY_FOLDER}) {
        if (fs::is_regular_file(place / kFile, error)) return (place / kFile).string();
    }
    return kFile;
}

Loaded Load() {
    // Never closed: the library keeps threads.
    void* const object = dlopen(Place().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!object) return fmt::format("{}, which has the codecs of this format, cannot be loaded: {}", kFile, dlerror());
    const auto entry = reinterpret_cast<const Codec* (*)()>(dlsym(object, kEntry));
    if (!entry) return fmt::format("{} is of another version of the program", kFile);
    return entry();
}

}  // namespace

Loaded LibraryCodec() {
    static const Loaded loaded = Load();
    return loaded;
}
