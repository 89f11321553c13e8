// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A recipe: what an image was drawn with, as a JSON text in its file, so that it can be drawn again.
//
//   { "recipe": 1,
//     "program": "0.1.0", "module": { "name": "Umbrant 2", "version": "1.3.3" },
//     "pixels": 1, "renderer": "cpu",
//     "options": { "canvas": "grow", "texture": "paper.png" },
//     "version": 1, "values": { "style/distance": 80, ... },
//     "frame": 12 }
//
// "options" has options of `umbrant render` that change pixels; "version", "values" and "keyframes" are those of a
// preset, for every row that can be set; "frame" is there where they move.

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// The newest form of a recipe that this program reads, and the one that it writes.
inline constexpr int kRecipeVersion = 1;

/// The version of the renderers' arithmetic. A change of the program that changes any pixel of either renderer adds
/// one, and either keeps the arithmetic of the versions before or takes them out of IsKnownPixelVersion. In
/// cli_pixel_version_test.cpp each version has the checksum of an image.
///   0  the CPU renderer blurs every copy on its whole grid (UMBRANT_CPU_EXACT=1)
///   1  the CPU renderer blurs wide copies on coarse grids
inline constexpr int kPixelVersion = 1;
inline constexpr int kExactPixelVersion = 0;

/// Whether this program draws pixels of that version.
constexpr bool IsKnownPixelVersion(int version) {
    return version == kExactPixelVersion || version == kPixelVersion;
}

struct Recipe {
    std::string program{};  ///< the version of the program that wrote it
    std::string moduleName{};
    std::string moduleVersion{};
    std::optional<int> pixels{};  ///< the pixel version; nothing for a module of somebody else's
    std::string renderer{};       ///< "cpu" or "gl"
    /// Options of `umbrant render` without "--" and their values, which for a switch are empty.
    std::vector<std::pair<std::string, std::string>> options{};
    std::string preset{};           ///< a preset's text
    std::optional<double> frame{};  ///< the frame of a sequence, whole or not

    bool operator==(const Recipe&) const = default;
};

/// The recipe as one line of JSON in ASCII. The same recipe gives the same text.
std::string RecipeText(const Recipe& recipe);

/// A recipe's text, as it was read from `file`. Fails with `ErrorKind::kUsage` when the text is not whole, when it is
/// of a newer form, and when its pixel version is not known here. The preset and the options are not checked.
Result<Recipe> ParseRecipe(const std::string& text, const std::string& file);

/// The recipe of an image or a clip. Fails as ParseRecipe does, with `ErrorKind::kUsage` where there is none, and with
/// `ErrorKind::kFile` where the file cannot be read.
Result<Recipe> ReadRecipe(const std::string& file);

}  // namespace umbrant::host
