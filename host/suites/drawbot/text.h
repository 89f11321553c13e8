// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The panel's type: one family, text cut to a width. [main]

#include <string>
#include <string_view>

#include "host/drawing/drawing.h"
#include "hostapi/drawbot_types.h"

namespace umbrant::host {

/// The panel's typeface; the system chooses another where it is not installed.
inline constexpr char kPanelTypeface[] = "Inter";
/// Points, which are panel pixels here.
inline constexpr float kPanelTypeSize = 11.0f;

/// UTF-8 from NUL-terminated UTF-16; a half of a pair without its other half becomes the replacement character.
std::string Utf8FromUtf16(const DRAWBOT_UTF16Char* text);

/// The text, or as much of it as fits in `width` user units with the style's ellipsis. Never cuts inside a character.
std::string FitText(const Drawing& drawing, const std::string& text, double width, DRAWBOT_TextTruncation style);

}  // namespace umbrant::host
