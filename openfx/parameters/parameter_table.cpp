// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The rows. Ranges and defaults are the effect's; a slider ends where values do, and reaches the default.

#include "openfx/parameters/parameter_table.h"

#include <algorithm>
#include <iterator>

#include "openfx/parameters/parameter_hints.h"

namespace umbrant::openfx {

namespace {

using enum ParameterKind;

constexpr const char* kShadowTypes[] = {"Normal", "Inner", "Radial"};
constexpr const char* kBlendModes[] = {"Normal",      "Add",         "Screen",   "Overlay",    "Soft Light",
                                       "Hard Light",  "Darken",      "Multiply", "Color Burn", "Classic Color Burn",
                                       "Linear Burn", "Darker Color"};
constexpr const char* kEaseModes[] = {"Ease In", "Ease In & Out"};
constexpr const char* kTextureModes[] = {"Normal",       "Multiply",         "Color Burn",     "Add",
                                         "Screen",       "Overlay",          "Soft Light",     "Stencil Alpha",
                                         "Stencil Luma", "Silhouette Alpha", "Silhouette Luma"};
constexpr const char* kResolutions[] = {"Draft", "Low", "Moderate", "High", "Extreme"};
constexpr const char* kPriorities[] = {"Speed", "Memory Usage"};
constexpr const char* kAlphas[] = {"Automatic", "Premultiplied", "Straight"};

constexpr Range kPercent{0, 100};
constexpr Range kTurns{-36000, 36000};
constexpr Range kFar{-32000, 32000};

constexpr ParameterRow Group(const char* name, const char* path, const char* parent, const char* label, bool isOpen) {
    return {.name = name, .path = path, .parent = parent, .label = label, .kind = kGroup, .varies = isOpen};
}

constexpr ParameterRow Number(const char* name, const char* path, const char* parent, const char* label, Range valid,
                              Range slider, double standard, ParameterKind kind = kDouble) {
    return {.name = name,
            .path = path,
            .parent = parent,
            .label = label,
            .kind = kind,
            .valid = valid,
            .slider = slider,
            .standard = {standard}};
}

constexpr ParameterRow Percent(const char* name, const char* path, const char* parent, const char* label,
                               double standard) {
    return Number(name, path, parent, label, kPercent, kPercent, standard);
}

constexpr ParameterRow Choice(const char* name, const char* path, const char* parent, const char* label,
                              std::span<const char* const> items, int standard, bool varies) {
    return {.name = name,
            .path = path,
            .parent = parent,
            .label = label,
            .kind = kChoice,
            .varies = varies,
            .standard = {static_cast<double>(standard)},
            .items = items};
}

constexpr ParameterRow WithHint(ParameterRow row, const char* hint) {
    row.hint = hint;
    return row;
}

constexpr ParameterRow Own(const char* name, const char* parent, const char* label, ParameterKind kind,
                           const char* hint) {
    return {
        .name = name, .path = nullptr, .parent = parent, .label = label, .kind = kind, .varies = false, .hint = hint};
}

// clang-format off
constexpr ParameterRow kTable[] = {
    Group("style", "style", nullptr, "Style", true),
    Choice("style_shadow_type", "style/shadow-type", "style", "Shadow Type", kShadowTypes, 0, false),
    {.name = "style_angle", .path = "style/angle", .parent = "style", .label = "Angle", .kind = kAngle,
     .valid = kTurns, .slider = {-360, 360}, .standard = {135}},
    {.name = kOriginName, .path = "style/origin", .parent = "style", .label = "Origin", .kind = kPoint,
     .valid = kFar, .slider = kFar, .standard = {0, 1}},
    Number("style_distance", "style/distance", "style", "Distance", {0, 2000}, {0, 250}, 250),
    Number("style_softness", "style/softness", "style", "Softness", {0, 500}, {0, 250}, 250),
    {.name = "style_color", .path = "style/color", .parent = "style", .label = "Color", .kind = kColor,
     .valid = {0, 1}, .slider = {0, 1}, .hint = hints::kColor},
    Choice("style_blend_mode", "style/blend-mode", "style", "Blend Mode", kBlendModes, 0, true),

    Group("opacity", "opacity", nullptr, "Opacity", true),
    Percent(kOpacityStartName, "opacity/opacity-start", "opacity", "Opacity Start", 20),
    Percent(kOpacityEndName, "opacity/opacity-end", "opacity", "Opacity End", 50),
    Percent(kOpacityMasterName, "opacity/opacity-master", "opacity", "Opacity Master", 100),

    Group("easing", "easing", nullptr, "Easing", false),
    Choice("easing_mode", "easing/mode", "easing", "Mode", kEaseModes, 0, true),
    Percent("easing_ease", "easing/ease", "easing", "Ease", 100),
    Group("easing_advanced", "easing/advanced", "easing", "Advanced", false),
    Percent("easing_advanced_distance", "easing/advanced/distance", "easing_advanced", "Distance", 80),
    Percent("easing_advanced_softness", "easing/advanced/softness", "easing_advanced", "Softness", 100),
    Percent("easing_advanced_opacity", "easing/advanced/opacity", "easing_advanced", "Opacity", 100),

    Group("texture", "texture", nullptr, "Texture", false),
    WithHint(Choice(kTextureBlendModeName, "texture/blend-mode", "texture", "Blend Mode", kTextureModes, 10, true),
             hints::kTextureBlendMode),
    Percent(kTextureStrengthName, "texture/strength", "texture", "Strength", 100),

    Group("quality", "quality", nullptr, "Quality", false),
    Number("quality_samples", "quality/samples", "quality", "Samples", {1, 256}, {1, 64}, 36, kInteger),
    Choice("quality_resolution", "quality/resolution", "quality", "Resolution", kResolutions, 2, true),
    Choice("quality_prioritise", "quality/prioritise", "quality", "Prioritise", kPriorities, 0, false),

    Group("compositing", "compositing", nullptr, "Compositing", false),
    Percent(kSourceOpacityName, "compositing/source-opacity", "compositing", "Source Opacity", 100),
    Number("compositing_offset_shadow", "compositing/offset-shadow", "compositing", "Offset Shadow", {0, 100}, {0, 100},
           1),
    Number("compositing_buffer_expansion", "compositing/buffer-expansion", "compositing", "Buffer Expansion", {0, 1000},
           {0, 100}, 0, kInteger),
    WithHint(Choice(kAlphaName, nullptr, "compositing", "Alpha", kAlphas, 0, false), hints::kAlpha),

    Group("preset", nullptr, nullptr, "Preset", false),
    Own(kPresetFileName, "preset", "Preset File", kFile, hints::kPresetFile),
    Own(kLoadPresetName, "preset", "Load Preset", kButton, hints::kLoadPreset),
    Own(kDrawnByName, nullptr, "Drawn by", kLabel, hints::kDrawnBy),
    Own(kOriginIsRelativeName, nullptr, "Origin is relative", kSwitch, hints::kOriginIsRelative),
};
// clang-format on

}  // namespace

std::span<const ParameterRow> ParameterTable() {
    return kTable;
}

std::size_t PlaceOf(std::string_view name) {
    const auto row =
        std::find_if(std::begin(kTable), std::end(kTable), [&](const ParameterRow& each) { return name == each.name; });
    return static_cast<std::size_t>(row - std::begin(kTable));
}

const ParameterRow& RowNamed(std::string_view name) {
    return kTable[PlaceOf(name)];
}

bool IsEffectValue(const ParameterRow& row) {
    return row.path && row.kind != kGroup;
}

}  // namespace umbrant::openfx
