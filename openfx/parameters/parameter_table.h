// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The plug-in's parameters: one table that everything else reads. It repeats what the effect declares, so that hosts
// can list the plug-in without loading the effect; a test compares the two. Names and the order of items are stored in
// projects: neither may change, and new ones come last in their list (parameter_names.txt).

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace umbrant::openfx {

enum class ParameterKind {
    kGroup,
    kDouble,   ///< also percentages: 0 to 100
    kInteger,  ///< a number that the panel shows without decimals
    kAngle,    ///< degrees, any number of turns
    kColor,    ///< red, green, blue; 1 is white
    kPoint,    ///< x, y in canonical coordinates
    kChoice,   ///< an item's index
    kFile,     ///< the path of a file
    kButton,
    kLabel,   ///< a text that cannot be edited
    kSwitch,  ///< on or off, never shown
};

struct Range {
    double low = 0;
    double high = 0;
};

struct ParameterRow {
    const char* name;    ///< in scripts and projects
    const char* path;    ///< of the effect's parameter; null for the plug-in's own
    const char* parent;  ///< the name of the group; null for none
    const char* label;
    ParameterKind kind;
    bool varies = true;  ///< may have keyframes; for a group: starts open
    Range valid{};
    Range slider{};
    std::array<double, 3> standard{};  ///< of kPoint, in parts of the project's size
    std::span<const char* const> items{};
    const char* hint = "";  ///< what the library's description of `path` does not say
};

/// All of them, groups before their members.
std::span<const ParameterRow> ParameterTable();

/// The place of a parameter in the table, or its size where no parameter has this name.
std::size_t PlaceOf(std::string_view name);

/// Whether the parameter is one of the effect's and has a value.
bool IsEffectValue(const ParameterRow& row);

// The plug-in's own parameters.
inline constexpr char kAlphaName[] = "alpha";
inline constexpr char kPresetFileName[] = "preset_file";
inline constexpr char kLoadPresetName[] = "load_preset";
inline constexpr char kDrawnByName[] = "drawn_by";
inline constexpr char kOriginIsRelativeName[] = "origin_is_relative";
inline constexpr char kPageName[] = "controls";
// Those of the effect that an action asks for by name.
inline constexpr char kOriginName[] = "style_origin";
inline constexpr char kOpacityStartName[] = "opacity_opacity_start";
inline constexpr char kOpacityEndName[] = "opacity_opacity_end";
inline constexpr char kOpacityMasterName[] = "opacity_opacity_master";
inline constexpr char kSourceOpacityName[] = "compositing_source_opacity";
inline constexpr char kTextureBlendModeName[] = "texture_blend_mode";
inline constexpr char kTextureStrengthName[] = "texture_strength";

/// The row of one that is in the table.
const ParameterRow& RowNamed(std::string_view name);

}  // namespace umbrant::openfx
