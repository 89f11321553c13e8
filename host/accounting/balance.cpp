// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/accounting/balance.h"

#include <algorithm>

namespace umbrant::host {

const char* ResourceName(Resource resource) {
    static constexpr const char* kNames[kResourceCount] = {
        "suites",           "handles",           "locks",   "worlds",         "blocks", "parameter check-outs",
        "layer check-outs", "effect references", "streams", "drawing objects"};
    return kNames[static_cast<std::size_t>(resource)];
}

bool Balance::IsBalanced() const {
    return std::all_of(open.begin(), open.end(), [](int number) { return number == 0; });
}

std::string Balance::Text() const {
    std::string text;
    for (std::size_t i = 0; i < kResourceCount; ++i) {
        if (open[i] == 0) continue;
        if (!text.empty()) text += ", ";
        text += ResourceName(static_cast<Resource>(i));
        text += ' ';
        text += std::to_string(open[i]);
    }
    return text.empty() ? "nothing open" : text;
}

}  // namespace umbrant::host
