// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Layouts of the small files that the tests of reading write.

#include <OpenImageIO/imageio.h>

#include <cstddef>
#include <string>
#include <vector>

namespace umbrant::host {

/// Three by two pixels; two channels are luminance and alpha, and alpha is the channel of that name.
inline OIIO::ImageSpec LayoutOf(int channels, OIIO::TypeDesc type, std::vector<std::string> names = {}) {
    OIIO::ImageSpec layout(3, 2, channels, type);
    if (channels == 2) names = names.empty() ? std::vector<std::string>{"Y", "A"} : names;
    if (!names.empty()) {
        layout.channelnames = names;
        layout.alpha_channel = -1;
        for (int i = 0; i < channels; ++i) {
            if (names[static_cast<std::size_t>(i)] == "A") layout.alpha_channel = i;
        }
    }
    return layout;
}

}  // namespace umbrant::host
