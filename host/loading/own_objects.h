// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The shared objects of the program, one row for each.

#include "host/loading/own_object.h"

namespace umbrant::host {

inline constexpr OwnObject kImagesObject{"umbrant_images.so", "which has the codecs of this format",
                                         "UmbrantLibraryCodec"};
inline constexpr OwnObject kDrawingObject{"umbrant_drawing.so", "which draws panels and curves", "UmbrantNewDrawing"};
inline constexpr OwnObject kColorObject{"umbrant_color.so", "which converts colours", "UmbrantColorSpaces"};
inline constexpr OwnObject kHttpObject{"umbrant_http.so", "which serves the preview's page", "UmbrantNewHttpServer"};

}  // namespace umbrant::host
