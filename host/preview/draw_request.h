// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a page asks to see, and how its message says so.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// One frame for one page.
struct DrawRequest {
    int client = 0;
    std::int64_t serial = 0;  ///< the page's own number of the request
    bool moving = false;      ///< a control is being moved: a draft is enough
    int layer = 0;            ///< of LayerStore; 0 for none
    int texture = 0;
    /// Values that differ from the defaults: a row's path, or "#index", and its text as `--set` takes it.
    std::vector<std::pair<std::string, std::string>> values{};
    std::string keyframes{};  ///< JSON as in a preset's "keyframes", which replace values; empty where nothing moves
    std::string frames{};     ///< the frames of the timeline, as ParseFrames reads them; empty for a single image
    std::string rate{};       ///< their rate, as ParseRate reads it
    int frame = 0;            ///< which of the frames in rising order, from 0
    int downsample = 0;       ///< drawn at one n-th of the resolution; 0 for what suits `moving`
    std::string canvas{};     ///< as ParseCanvas reads it; empty for that of the command line
    std::string format{};     ///< of a file: "png", "tif", "exr" or "jpg"
};

/// Reads the page's JSON. Fails with `ErrorKind::kUsage` when it is none.
Result<DrawRequest> ReadDrawRequest(const std::string& text);

}  // namespace umbrant::host
