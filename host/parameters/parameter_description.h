// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What each row of the effect's panel does to the picture, for people: the one source of every help text about rows.

#include <string_view>

namespace umbrant::host {

/// One to three sentences about the row of this path, such as "style/distance"; empty for a path that the effect does
/// not declare. The text names no host, option or file format, so that every program can show it.
std::string_view DescriptionOf(std::string_view path);

}  // namespace umbrant::host
