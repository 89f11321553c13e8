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
};

/// Reads the page's JSON. Fails with `ErrorKind::kUsage` when it is none.
Result<DrawRequest> ReadDrawRequest(const std::string& text);

}  // namespace umbrant::host
