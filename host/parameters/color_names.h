// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Colours as people write them.

#include <cstdint>
#include <optional>
#include <string_view>

namespace umbrant::host {

/// 0xRRGGBB of a name of the CSS Color Module, Level 4, in any case; nothing for other texts.
std::optional<std::uint32_t> NamedColor(std::string_view name);

/// 0xRRGGBB of "#rrggbb", "#rgb" or such a name; nothing for other texts.
std::optional<std::uint32_t> ColorFromText(std::string_view text);

}  // namespace umbrant::host
