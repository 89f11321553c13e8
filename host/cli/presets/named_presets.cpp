// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/presets/named_presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "host/loading/program_file.h"
#include "host/parameters/param_path.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr char kExtension[] = ".json";

/// Beside the program in its build folder, or where an installation has them.
std::vector<fs::path> InstalledFolders() {
    const fs::path program = ProgramFile();
    if (program.empty()) return {};
    return {program.parent_path() / "presets", program.parent_path().parent_path() / "share/umbrant/presets"};
}

/// The presets of a folder by name; none where there is no such folder.
std::vector<NamedPreset> PresetsIn(const fs::path& folder, bool isUsers, std::error_code& problem) {
    std::vector<NamedPreset> found;
    fs::directory_iterator entry(folder, problem);
    for (const fs::directory_iterator end; !problem && entry != end; entry.increment(problem)) {
        std::error_code none;
        const fs::path& file = entry->path();
        if (file.extension() == kExtension && !file.stem().empty() && !entry->is_directory(none)) {
            found.push_back({file.stem().string(), file, isUsers});
        }
    }
    if (problem == std::errc::no_such_file_or_directory || problem == std::errc::not_a_directory) problem.clear();
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return found;
}

const NamedPreset* Find(const std::vector<NamedPreset>& presets, const std::string& name) {
    const auto found = std::find_if(presets.begin(), presets.end(), [&](const auto& one) { return one.name == name; });
    return found == presets.end() ? nullptr : &*found;
}

std::vector<NamedPreset> InstalledPresets() {
    for (const fs::path& folder : InstalledFolders()) {
        // What was installed and cannot be read is as good as not installed.
        std::error_code ignored;
        std::vector<NamedPreset> found = PresetsIn(folder, false, ignored);
        if (!found.empty()) return found;
    }
    return {};
}

Failure Unknown(const std::string& name, const std::vector<NamedPreset>& presets) {
    std::vector<std::string> names;
    for (const NamedPreset& preset : presets) names.push_back(preset.name);
    const std::vector<std::string> nearest = Nearest(name, names, 1);
    const std::string suggestion = nearest.empty() ? ";" : fmt::format("; did you mean '{}'?", nearest.front());
    return {ErrorKind::kFile,
            fmt::format("there is no preset '{}' and no file of this name{} `umbrant presets` lists the "
                        "presets",
                        name, suggestion)};
}

}  // namespace

fs::path UsersPresetFolder() {
    // A relative path in this variable is to be ignored, says the convention that it comes from.
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config && fs::path(config).is_absolute()) return fs::path(config) / "umbrant/presets";
    const char* home = std::getenv("HOME");
    return home && *home ? fs::path(home) / ".config/umbrant/presets" : fs::path();
}

Result<std::vector<NamedPreset>> NamedPresets() {
    std::vector<NamedPreset> presets = InstalledPresets();
    const fs::path folder = UsersPresetFolder();
    if (folder.empty()) return presets;
    std::error_code problem;
    for (NamedPreset& preset : PresetsIn(folder, true, problem)) {
        if (!Find(presets, preset.name)) presets.push_back(std::move(preset));
    }
    if (!problem) return presets;
    return Failure{ErrorKind::kFile,
                   fmt::format("the folder of your presets '{}' cannot be read: {}; make it readable, or name the file "
                               "of a preset with its folder",
                               folder.string(), problem.message())};
}

Result<std::string> PresetFile(const std::string& argument) {
    if (argument.empty() || argument.find('/') != std::string::npos) return argument;
    std::error_code none;
    const fs::file_status status = fs::status(argument, none);
    const bool isFile = fs::exists(status) && !fs::is_directory(status);
    if (fs::path(argument).extension() == kExtension) return argument;
    const std::vector<NamedPreset> presets = TRY(NamedPresets());
    const NamedPreset* preset = Find(presets, argument);
    if (preset && isFile) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{0}' is the name of a preset and of a file in this folder; write './{0}' for the "
                                   "file, or '{1}' for the preset",
                                   argument, preset->file.string())};
    }
    if (preset) return preset->file.string();
    // Who reads it says that a folder is none.
    if (fs::exists(status)) return argument;
    return Unknown(argument, presets);
}

}  // namespace umbrant::host
