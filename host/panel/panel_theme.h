// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The panel's colours, dark and light.

namespace umbrant::host {

/// Red, green and blue, 0 to 1, opaque.
struct PanelColor {
    double red, green, blue;
};

constexpr PanelColor FromHex(unsigned rgb) {
    return {(rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0};
}

/// Of names and values, in points.
inline constexpr double kTypeSize = 11.5;

struct PanelTheme {
    PanelColor ground;
    PanelColor header;   ///< behind the effect's own row
    PanelColor strip;    ///< behind the outermost groups
    PanelColor line;     ///< between them
    PanelColor text;     ///< names
    PanelColor dim;      ///< twirls, stopwatches, the ends of tracks
    PanelColor value;    ///< numbers that can be changed
    PanelColor control;  ///< boxes of popups and buttons
    PanelColor edge;     ///< around them
    PanelColor track;
    PanelColor knob;
};

inline constexpr PanelTheme kDarkTheme = {
    .ground = FromHex(0x232323),
    .header = FromHex(0x323232),
    .strip = FromHex(0x2B2B2B),
    .line = FromHex(0x191919),
    .text = FromHex(0xCFCFCF),
    .dim = FromHex(0x8C8C8C),
    .value = FromHex(0x4CA3FF),
    .control = FromHex(0x1A1A1A),
    .edge = FromHex(0x4A4A4A),
    .track = FromHex(0x4A4A4A),
    .knob = FromHex(0xD6D6D6),
};

inline constexpr PanelTheme kLightTheme = {
    .ground = FromHex(0xEDEDED),
    .header = FromHex(0xD9D9D9),
    .strip = FromHex(0xE3E3E3),
    .line = FromHex(0xCFCFCF),
    .text = FromHex(0x2A2A2A),
    .dim = FromHex(0x7A7A7A),
    .value = FromHex(0x0B63CE),
    .control = FromHex(0xFBFBFB),
    .edge = FromHex(0xB4B4B4),
    .track = FromHex(0xBDBDBD),
    .knob = FromHex(0x5A5A5A),
};

}  // namespace umbrant::host
