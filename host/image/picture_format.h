// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The formats that images are written in: what each can hold, and which is meant by a name. Inside host/image only.

#include <filesystem>
#include <string>
#include <string_view>

#include "host/image/picture.h"

namespace umbrant::host {

/// How pixels leave the program.
enum class Form {
    kStraight,       ///< colours as they are, with alpha
    kPremultiplied,  ///< colours times alpha, with alpha
    kOnWhite,        ///< no alpha
};

/// The position that the format stores for its pixels.
enum class PlaceKind {
    kNone,
    kOffset,   ///< the place of the first pixel
    kWindows,  ///< a data window within a display window
};

struct Format {
    std::string_view extension;
    Form form;
    FileDepth fromEight;  ///< the file's channels when the world has 8 bits
    FileDepth fromFloat;
    PlaceKind place;
    std::string_view name;          ///< as the image library has it
    std::string_view compressions;  ///< what may be chosen, in spaces; the first is the default
    std::string_view depths;        ///< the same of FileDepth, by the names of the command line
};

/// The format that the file's extension names, or for a file without one `name`; null for none.
const Format* FormatOf(const std::filesystem::path& file, const std::string& name = "");

/// Whether the format has this compression, a name of --compression.
bool HasCompression(const Format& format, std::string_view compression);

}  // namespace umbrant::host
