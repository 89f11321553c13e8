// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The files that the program holds for the page: the page itself, and the example layers. The build embeds them.

#include <string_view>

namespace umbrant::host {

struct PageFile {
    std::string_view name;  ///< as in the page's addresses; "" is the page itself
    std::string_view type;  ///< its media type
    std::string_view bytes;
};

/// Null when there is none of this name.
const PageFile* FindPageFile(std::string_view name);

}  // namespace umbrant::host
