// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Writes the files of the macOS bundle that are no object code: Contents/Info.plist, Contents/PkgInfo and the resource
// file with the effect's properties.
//
// Usage: write_bundle_files BUNDLE IDENTIFIER [--x86_64]

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "entry/version.h"
#include "packaging/bundle_texts.h"
#include "packaging/property_list.h"
#include "packaging/resource_file.h"

using namespace umbrant::effect;

namespace {

bool Write(const std::filesystem::path& file, const std::string& bytes) {
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    std::ofstream stream(file, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) std::fprintf(stderr, "The file '%s' cannot be written.\n", file.string().c_str());
    return bool(stream);
}

}  // namespace

int main(int argc, char** argv) {
    const bool single = argc == 4 && std::string(argv[3]) == "--x86_64";
    if (argc != 3 && !single) {
        std::fprintf(stderr,
                     "Usage: write_bundle_files BUNDLE IDENTIFIER [--x86_64]\n"
                     "Writes Info.plist, PkgInfo and the resource file of a universal executable, or of one that has\n"
                     "code for x86-64 alone.\n");
        return 2;
    }
    const std::filesystem::path contents = std::filesystem::path(argv[1]) / "Contents";
    const std::string identifier = argv[2];
    if (!IsBundleIdentifier(identifier)) {
        std::fprintf(stderr, "The identifier '%s' may hold only letters, digits, '.' and '-'.\n", identifier.c_str());
        return 2;
    }
    const std::string properties = PropertyList(single ? Slices::kX86_64 : Slices::kUniversal);
    const std::string resource = std::string(kEffectName) + ".rsrc";
    const bool done =
        Write(contents / "Info.plist", InfoPlist(identifier)) && Write(contents / "PkgInfo", PkgInfo()) &&
        Write(contents / "Resources" / resource, ResourceFile(kPropertyListType, kPropertyListId, properties));
    return done ? 0 : 3;
}
