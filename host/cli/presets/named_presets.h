// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Presets that are known by a name: those installed with the program, and those in the user's own folder.

#include <filesystem>
#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// `soft-drop` for the file `soft-drop.json` in one of the folders.
struct NamedPreset {
    std::string name;
    std::filesystem::path file;
    bool isUsers = false;  ///< in the user's folder
};

/// $XDG_CONFIG_HOME/umbrant/presets, or ~/.config/umbrant/presets; empty without a home.
std::filesystem::path UsersPresetFolder();

/// Every preset that a name finds, installed ones first, each in the order of the names. A user's preset with an
/// installed one's name is not found by it, and is left out. Fails with `ErrorKind::kFile` when the user's folder is
/// there and cannot be read.
Result<std::vector<NamedPreset>> NamedPresets();

/// The file that `--preset` means: the argument, or the preset of this name. Nothing is looked for when the argument
/// is empty or has a '/'. Fails with `ErrorKind::kUsage` when it is both a preset's name and a file of the current
/// folder, with `ErrorKind::kFile` when it is neither, and as NamedPresets() does.
Result<std::string> PresetFile(const std::string& argument);

}  // namespace umbrant::host
