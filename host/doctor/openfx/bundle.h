// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A bundle as files: what has to be where, and where hosts look. Nothing of it is loaded.

#include <filesystem>
#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// A bundle whose files are in order.
struct OpenFxBundle {
    std::filesystem::path folder;  ///< NAME.ofx.bundle
    std::filesystem::path binary;  ///< for this system
};

/// The bundle that a person names. Fails with `ErrorKind::kFile` for what is absent or no bundle, and with
/// `ErrorKind::kModule` where its binary is not for this system; the sentence says what would be right.
Result<OpenFxBundle> CheckBundle(const std::filesystem::path& named);

/// The folders in which hosts look, in order: those of a list as in OFX_PLUGIN_PATH (null for none), then the system's.
std::vector<std::filesystem::path> OpenFxFolders(const char* list);

/// A bundle that hosts find.
struct FoundBundle {
    std::filesystem::path folder;
    int depth = 0;  ///< how many folders are between it and the one that hosts look in
};

/// The bundles in these folders and in folders below, sorted within each; what begins with '@' is passed over.
std::vector<FoundBundle> FindBundles(const std::vector<std::filesystem::path>& folders);

}  // namespace umbrant::host
