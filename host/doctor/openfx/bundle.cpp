// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/bundle.h"

#include <elf.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <optional>
#include <system_error>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr char kBundleEnding[] = ".ofx.bundle";
constexpr char kSystemFolder[] = "/usr/OFX/Plugins";

#if defined(__x86_64__)
constexpr char kBinaryFolder[] = "Linux-x86-64";
constexpr int kMachine = EM_X86_64;
#else
constexpr char kBinaryFolder[] = "Linux-aarch64";
constexpr int kMachine = EM_AARCH64;
#endif

bool IsFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool IsBundleName(const fs::path& path) {
    return path.filename().string().ends_with(kBundleEnding);
}

/// The names in a folder that pass, sorted; none for what is no folder.
template <typename Filter>
std::vector<std::string> Names(const fs::path& folder, const Filter& passes) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator each(folder, error), end; !error && each != end; each.increment(error)) {
        if (passes(each->path())) names.push_back(each->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> BundlesIn(const fs::path& folder) {
    return Names(folder, [](const fs::path& path) { return IsBundleName(path) && IsFolder(path); });
}

Failure Wrong(const fs::path& bundle, const std::string& what) {
    return {ErrorKind::kFile, fmt::format("'{}' {}", bundle.string(), what)};
}

/// The bundle that a path is inside of; empty for none.
fs::path Around(const fs::path& path) {
    for (fs::path folder = path.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
        if (IsBundleName(folder)) return folder;
    }
    return {};
}

/// Why something that exists is no bundle.
Failure NoBundle(const fs::path& named) {
    if (const fs::path around = Around(named); !around.empty()) {
        return Wrong(named, fmt::format("is a part of a bundle; name the bundle, '{}'", around.string()));
    }
    if (!IsFolder(named)) return Wrong(named, "is a file; an OpenFX plug-in is a folder NAME.ofx.bundle");
    if (const auto below = BundlesIn(named); !below.empty()) {
        return Wrong(named,
                     fmt::format("is not a bundle but has one in it; name '{}'", (named / below.front()).string()));
    }
    if (IsFolder(named / "Contents")) {
        return Wrong(named,
                     fmt::format("has the contents of a bundle, but hosts look only for names that end in {}; give the "
                                 "folder its first name again",
                                 kBundleEnding));
    }
    return Wrong(named, "is not a bundle: a bundle is a folder NAME.ofx.bundle with the folder Contents in it");
}

/// Where an unpacked archive has made a bundle in a bundle, or left the level of Contents out.
std::optional<Failure> WrongLevel(const fs::path& bundle) {
    if (IsFolder(bundle / "Contents")) return std::nullopt;
    if (const auto below = BundlesIn(bundle); !below.empty()) {
        return Wrong(bundle, fmt::format("is one folder too deep: the bundle is '{}'; move it up, to the place of '{}'",
                                         (bundle / below.front()).string(), bundle.filename().string()));
    }
    if (IsFolder(bundle / kBinaryFolder)) {
        return Wrong(bundle,
                     fmt::format("has {0} where Contents/{0} should be; put a folder Contents between", kBinaryFolder));
    }
    return Wrong(bundle, "has no folder Contents; it was not copied as a whole, so copy it again");
}

/// The name of a processor in an ELF file.
std::string MachineName(int machine) {
    switch (machine) {
        case EM_X86_64:
            return "x86-64";
        case EM_AARCH64:
            return "64-bit ARM";
        case EM_386:
            return "32-bit x86";
        case EM_ARM:
            return "32-bit ARM";
        default:
            return fmt::format("the processor {} of the ELF list", machine);
    }
}

/// What the first bytes of a file say that it is for; empty for a library of this system and processor.
std::string WrongProcessor(const fs::path& binary) {
    std::array<unsigned char, 20> head{};
    std::ifstream file(binary, std::ios::binary);
    file.read(reinterpret_cast<char*>(head.data()), head.size());
    if (file.gcount() < static_cast<std::streamsize>(head.size())) return "is too short to be a library";
    if (std::memcmp(head.data(), ELFMAG, SELFMAG) == 0) {
        const int machine = head[18] | head[19] << 8;
        if (machine == kMachine) return {};
        return fmt::format("is for {}, and this machine has {}", MachineName(machine), MachineName(kMachine));
    }
    const unsigned magic = static_cast<unsigned>(head[0]) << 24 | static_cast<unsigned>(head[1]) << 16 |
                           static_cast<unsigned>(head[2]) << 8 | head[3];
    if (magic == 0xCFFAEDFE || magic == 0xCAFEBABE) return "is for macOS, and this is Linux";
    if (head[0] == 'M' && head[1] == 'Z') return "is for Windows, and this is Linux";
    return "is not a library for Linux";
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

Result<fs::path> BinaryOf(const fs::path& bundle) {
    const fs::path contents = bundle / "Contents";
    if (!IsFolder(contents / kBinaryFolder)) {
        auto others =
            Names(contents, [](const fs::path& path) { return IsFolder(path) && path.filename() != "Resources"; });
        return Failure{ErrorKind::kModule,
                       fmt::format("'{}' is not for this system: it has no Contents/{}{}; use the build for {} Linux",
                                   bundle.string(), kBinaryFolder, others.empty() ? "" : ", only " + Joined(others),
                                   MachineName(kMachine))};
    }
    const std::string name = bundle.filename().stem().string();
    const fs::path folder = contents / kBinaryFolder;
    const fs::path binary = folder / name;
    std::error_code error;
    if (!fs::exists(binary, error)) {
        const auto others = Names(folder, [](const fs::path& path) { return path.extension() == ".ofx"; });
        if (!others.empty()) {
            return Wrong(bundle, fmt::format("was renamed: hosts look for '{}' in it, and it has '{}'; name the bundle "
                                             "'{}.bundle'",
                                             name, others.front(), others.front()));
        }
        return Wrong(bundle, fmt::format("has no Contents/{}/{}; it was not copied as a whole, so copy it again",
                                         kBinaryFolder, name));
    }
    if (!fs::is_regular_file(binary, error)) return Wrong(binary, "is not a file");
    if (!std::ifstream(binary, std::ios::binary)) return Wrong(binary, "cannot be read; check its permissions");
    if (const std::string wrong = WrongProcessor(binary); !wrong.empty()) {
        return Failure{ErrorKind::kModule, fmt::format("'{}' {}; use the build for {} Linux", binary.string(), wrong,
                                                       MachineName(kMachine))};
    }
    return binary;
}

/// How deep folders are searched: a link may lead back up.
constexpr int kDeepest = 8;

void FindBelow(const fs::path& folder, int depth, std::vector<FoundBundle>& found) {
    const auto names = Names(
        folder, [](const fs::path& path) { return IsFolder(path) && !path.filename().string().starts_with('@'); });
    for (const std::string& name : names) {
        if (IsBundleName(name)) {
            found.push_back({folder / name, depth});
        } else if (depth < kDeepest) {
            FindBelow(folder / name, depth + 1, found);
        }
    }
}

}  // namespace

Result<OpenFxBundle> CheckBundle(const fs::path& named) {
    std::error_code error;
    fs::path bundle = fs::absolute(named, error).lexically_normal();
    if (!bundle.has_filename()) bundle = bundle.parent_path();
    const fs::file_status status = fs::status(bundle, error);
    if (status.type() == fs::file_type::not_found) return Wrong(named, "does not exist; name a folder NAME.ofx.bundle");
    if (error) return Wrong(named, fmt::format("cannot be read: {}", error.message()));
    if (!IsBundleName(bundle) || !IsFolder(bundle)) return NoBundle(bundle);
    if (const auto wrong = WrongLevel(bundle)) return *wrong;
    const fs::path binary = TRY(BinaryOf(bundle));
    return OpenFxBundle{bundle, binary};
}

std::vector<fs::path> OpenFxFolders(const char* list) {
    std::vector<fs::path> folders;
    std::string word;
    for (const char each : std::string(list ? list : "") + ":") {
        if (each != ':' && each != ';') {
            word += each;
        } else if (!word.empty()) {
            folders.emplace_back(std::exchange(word, {}));
        }
    }
    folders.emplace_back(kSystemFolder);
    return folders;
}

std::vector<FoundBundle> FindBundles(const std::vector<fs::path>& folders) {
    std::vector<FoundBundle> found;
    for (const fs::path& folder : folders) FindBelow(folder, 0, found);
    return found;
}

}  // namespace umbrant::host
