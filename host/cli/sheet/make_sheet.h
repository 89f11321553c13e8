// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A contact sheet from what was asked for to its file.

#include <string>
#include <vector>

#include "host/cli/sheet/sheet_frames.h"

namespace umbrant::host {

/// What the images of a sheet are shown over where nothing else is chosen: dark shadows and light ones are seen on it.
inline constexpr char kSheetBackground[] = "#a8a8a8";
inline constexpr int kSmallestCell = 32;
inline constexpr int kLargestCell = 4000;

struct SheetRequest {
    /// Its render options have the output; its combinations are made here.
    SheetJob job;
    std::vector<SheetAxis> axes;
    SheetCombination common;
    std::string title;
    std::string settings;  ///< the line below the title; empty names the preset and the settings that are common
};

/// Draws and writes the sheet. Fails as `umbrant render` does, and with `ErrorKind::kUsage` for a sheet that is too
/// large, before anything is drawn.
Result<Done> MakeSheet(SheetRequest request);

}  // namespace umbrant::host
