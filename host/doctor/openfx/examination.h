// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a host does with the binary of a bundle: it is loaded, its plug-ins are described, and each draws a frame. Runs
// foreign code; for a process that may end with it.

#include <filesystem>
#include <string>
#include <vector>

#include "host/doctor/openfx/plugin_calls.h"

namespace umbrant::host {

/// What a plug-in said of itself.
struct OpenFxPluginFacts {
    std::string identifier;
    std::string version;  ///< "1.0"
    std::string label;
    int parameters = 0;
    std::string frame;  ///< as DrawFrame returns it
};

/// Examines the binary. Fails with `ErrorKind::kModule` where it cannot be loaded or is no plug-in, with
/// `ErrorKind::kEffect` for what a plug-in does.
Result<std::vector<OpenFxPluginFacts>> ExamineBinary(const std::filesystem::path& binary,
                                                     const std::filesystem::path& bundle, const NoteStep& note);

}  // namespace umbrant::host
