// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The program itself and the machine: version, system, memory, disk, presets, environment.

#include <fmt/format.h>
#include <gnu/libc-version.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>

#include "host/cli/doctor/part_report.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/program_version.h"
#include "host/loading/program_file.h"
#include "host/render/plan/memory_plan.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
/// A frame of 3840 x 2160 pixels in float with a texture, as docs/sequences.md counts it.
constexpr std::uint64_t kLargeFrame = 1200 * kMebibyte;
/// A handful of frames of 3840 x 2160 pixels as files.
constexpr std::uint64_t kLittleDisk = 500 * kMebibyte;

std::string BytesText(std::uint64_t bytes) {
    if (bytes < 1024 * kMebibyte) return fmt::format("{} MiB", bytes / kMebibyte);
    return fmt::format("{:.1f} GiB", static_cast<double>(bytes) / static_cast<double>(1024 * kMebibyte));
}

/// "Debian GNU/Linux 12 (bookworm)", or nothing.
std::string DistributionName() {
    std::ifstream file("/etc/os-release");
    constexpr std::string_view key = "PRETTY_NAME=";
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(key)) continue;
        std::string name = line.substr(key.size());
        std::erase(name, '"');
        return name;
    }
    return "";
}

PartReport FindDisk(const std::string& what, const fs::path& folder) {
    PartReport finding{"disk", PartCondition::kGood, "", ""};
    struct statvfs status {};
    if (statvfs(folder.c_str(), &status) != 0) {
        finding.condition = PartCondition::kProblem;
        finding.kind = ErrorKind::kFile;
        finding.text = fmt::format("{} '{}' cannot be examined: {}", what, folder.string(), std::strerror(errno));
        finding.advice = "change to a folder that exists, or set TMPDIR to one";
        return finding;
    }
    const std::uint64_t bytes = std::uint64_t{status.f_bavail} * status.f_frsize;
    finding.text = fmt::format("{} free in {} '{}'", BytesText(bytes), what, folder.string());
    if (access(folder.c_str(), W_OK) != 0) {
        finding.condition = PartCondition::kNote;
        finding.text += ", which cannot be written";
        finding.advice = "write results to another folder (-o FOLDER/NAME)";
    } else if (bytes < kLittleDisk) {
        finding.condition = PartCondition::kNote;
        finding.advice = "make space: an image of 3840 x 2160 pixels takes up to 130 MiB";
    }
    return finding;
}

fs::path TemporaryFolder() {
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    // The folder may be named and not be there: that is what is to be reported.
    const char* const named = std::getenv("TMPDIR");
    return error && named ? fs::path(named) : error ? fs::path("/tmp") : folder;
}

}  // namespace

std::vector<PartReport> FindProgram() {
    utsname system{};
    uname(&system);
    const std::string distribution = DistributionName();
    return {{"program", PartCondition::kGood, fmt::format("umbrant {}, {}", ProgramVersion(), ProgramFile().string())},
            {"system", PartCondition::kGood,
             fmt::format("{}{} {} on {}, C library {}", distribution.empty() ? "" : distribution + ", ", system.sysname,
                         system.release, system.machine, gnu_get_libc_version())}};
}

std::vector<PartReport> FindMemoryAndDisk() {
    const MachineLimits machine = ThisMachine();
    PartReport memory{"memory", PartCondition::kGood,
                      machine.memory == 0 ? std::string("the system does not report how much is available")
                                          : BytesText(machine.memory) + " available to this program",
                      ""};
    if (machine.memory != 0 && machine.memory < kLargeFrame) {
        memory.condition = PartCondition::kNote;
        memory.advice =
            "a frame of 3840 x 2160 pixels in float needs 1.2 GiB: close other programs, or draw smaller "
            "frames, in 8 bits (--depth 8) or one at a time (--threads 1)";
    }
    std::error_code error;
    const fs::path here = fs::current_path(error);
    return {{"processor", PartCondition::kGood,
             fmt::format("{} {} for drawing", machine.cores, machine.cores == 1 ? "thread" : "threads")},
            memory,
            FindDisk("the current folder", error ? fs::path(".") : here),
            FindDisk("the folder of temporary files", TemporaryFolder())};
}

std::vector<PartReport> FindPresets() {
    const auto presets = NamedPresets();
    if (!presets) return {ProblemOf("presets", presets.error())};
    const auto users = std::count_if(presets->begin(), presets->end(), [](const auto& each) { return each.isUsers; });
    const auto installed = static_cast<std::ptrdiff_t>(presets->size()) - users;
    PartReport finding{"presets", PartCondition::kGood, fmt::format("{} installed, {} of your own", installed, users),
                       ""};
    if (installed == 0) {
        finding.condition = PartCondition::kNote;
        finding.advice = "install the program as a whole; until then --preset takes files only";
    }
    return {finding};
}

std::vector<std::string> RelevantEnvironment() {
    constexpr std::array<std::string_view, 8> beginnings = {
        "UMBRANT_", "OCIO=", "OFX_PLUGIN_PATH=", "FREI0R_PATH=", "TMPDIR=", "XDG_CONFIG_HOME=", "LIBGL_", "MESA_"};
    std::vector<std::string> found;
    for (char** variable = environ; variable && *variable; ++variable) {
        const std::string_view text = *variable;
        if (std::any_of(beginnings.begin(), beginnings.end(), [&](auto each) { return text.starts_with(each); }))
            found.emplace_back(text);
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace umbrant::host
