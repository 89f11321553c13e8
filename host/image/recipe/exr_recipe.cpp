// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe among the attributes of an EXR's first part.

#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

FoundRecipe FindInExr(const ByteSource& file) {
    constexpr std::size_t kLongestName = 255;
    std::uint64_t at = 8;
    for (int i = 0; i < kMostParts; ++i) {
        const auto name = ZeroEndedAt(file, at, kLongestName);
        if (!name || name->empty()) break;
        at += name->size() + 1;
        const auto type = ZeroEndedAt(file, at, kLongestName);
        if (!type) break;
        at += type->size() + 1;
        const auto size = NumberAt(file, at, 4, false);
        if (!size) break;
        at += 4;
        if (*name == kRecipeName) return Found(*type == "string" ? TextAt(file, at, *size) : std::nullopt);
        at += *size;
    }
    return {};
}

}  // namespace umbrant::host
