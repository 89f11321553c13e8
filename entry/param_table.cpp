// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The rows. Ranges and defaults are the declared ones, oddities included: defaults above a slider's maximum, slider
// ranges wider than the valid ones. Projects and presets rely on them.

#include "entry/param_table.h"

#include "pixel/blend_modes.h"

namespace umbrant::effect {

namespace {

constexpr PF_ParamFlags kCannotTimeVary = PF_ParamFlag_CANNOT_TIME_VARY;
constexpr PF_ParamFlags kSupervise = PF_ParamFlag_SUPERVISE;
constexpr PF_ParamFlags kCollapsed = PF_ParamFlag_START_COLLAPSED;
constexpr PF_ParamUIFlags kDisabled = PF_PUI_DISABLED;
constexpr const char* kVersionedName = nullptr;

constexpr PF_ValueDisplayFlags kPlain = PF_ValueDisplayFlag_NONE;
constexpr PF_ValueDisplayFlags kPercent = PF_ValueDisplayFlag_PERCENT;

struct Valid {
    float min, max;
};
struct Slider {
    float min, max;
};

constexpr ParamRow Input(ParamIndex index) {
    return {.index = index, .diskId = 0, .type = PF_Param_LAYER, .name = ""};
}

constexpr ParamRow Group(ParamIndex index, A_long diskId, const char* name, PF_ParamFlags flags = PF_ParamFlag_NONE,
                         PF_ParamUIFlags uiFlags = PF_PUI_NONE) {
    return {.index = index,
            .diskId = diskId,
            .type = PF_Param_GROUP_START,
            .name = name,
            .flags = flags,
            .uiFlags = uiFlags};
}

constexpr ParamRow GroupEnd(ParamIndex index, A_long diskId) {
    return {.index = index, .diskId = diskId, .type = PF_Param_GROUP_END, .name = ""};
}

constexpr ParamRow Panel(ParamIndex index, A_long diskId, A_short width, A_short height, A_short arbitraryId) {
    return {.index = index,
            .diskId = diskId,
            .type = PF_Param_ARBITRARY_DATA,
            .name = "",
            .flags = kCannotTimeVary,
            .uiFlags = PF_PUI_CONTROL | PF_PUI_DONT_ERASE_CONTROL,
            .uiWidth = width,
            .uiHeight = height,
            .arbitraryId = arbitraryId};
}

constexpr ParamRow Button(ParamIndex index, A_long diskId, const char* name, const char* label) {
    return {
        .index = index, .diskId = diskId, .type = PF_Param_BUTTON, .name = name, .flags = kSupervise, .label = label};
}

constexpr ParamRow DriverText(ParamIndex index, A_long diskId, const char* name,
                              char (GlobalData::*driverString)[100]) {
    return {.index = index,
            .diskId = diskId,
            .type = PF_Param_POPUP,
            .name = name,
            .flags = kCannotTimeVary,
            .uiFlags = kDisabled,
            .itemCount = 1,
            .initialItem = 1,
            .driverString = driverString};
}

constexpr ParamRow Popup(ParamIndex index, A_long diskId, const char* name, const char* items, A_short count,
                         A_short initial, PF_ParamFlags flags = PF_ParamFlag_NONE) {
    return {.index = index,
            .diskId = diskId,
            .type = PF_Param_POPUP,
            .name = name,
            .flags = flags,
            .items = items,
            .itemCount = count,
            .initialItem = initial};
}

constexpr ParamRow FloatSlider(ParamIndex index, A_long diskId, const char* name, Valid valid, Slider slider,
                               float initial, PF_Precision precision, PF_ValueDisplayFlags display,
                               PF_ParamUIFlags uiFlags = PF_PUI_NONE) {
    return {.index = index,
            .diskId = diskId,
            .type = PF_Param_FLOAT_SLIDER,
            .name = name,
            .uiFlags = uiFlags,
            .slider = {valid.min, valid.max, slider.min, slider.max, initial, precision, display}};
}

constexpr ParamRow Angle(ParamIndex index, A_long diskId, const char* name, A_long degrees) {
    return {.index = index, .diskId = diskId, .type = PF_Param_ANGLE, .name = name, .initialDegrees = degrees};
}

/// Starts at the layer's top left corner.
constexpr ParamRow Point(ParamIndex index, A_long diskId, const char* name) {
    return {.index = index, .diskId = diskId, .type = PF_Param_POINT, .name = name};
}

constexpr ParamRow Color(ParamIndex index, A_long diskId, const char* name, PF_Pixel colour) {
    return {.index = index, .diskId = diskId, .type = PF_Param_COLOR, .name = name, .initialColour = colour};
}

/// Starts with no layer chosen.
constexpr ParamRow Layer(ParamIndex index, A_long diskId, const char* name) {
    return {.index = index, .diskId = diskId, .type = PF_Param_LAYER, .name = name};
}

}  // namespace

// clang-format off
constexpr ParamTable kParamTable = {{
    Input(PARAM_INPUT),

    Group(PARAM_ABOUT_GROUP_START, 54, "About & Support", kCollapsed),
    Panel(PARAM_ABOUT_PANEL, 55, 250, 75, 55),
    Button(PARAM_PRODUCT_PAGE, 56, kVersionedName, "Product Page"),
    Button(PARAM_FREE_PLUGINS, 57, "", "Free Plugins"),
    Button(PARAM_GET_SUPPORT, 58, "GPU Spec:", "Get Support"),  // the name is the heading of the four rows below it
    DriverText(PARAM_GPU_VENDOR, 60, "Vendor", &GlobalData::gl_vendor),
    DriverText(PARAM_GPU_RENDERER, 61, "Renderer", &GlobalData::gl_renderer),
    DriverText(PARAM_GPU_GL_VERSION, 59, "OpenGL Version", &GlobalData::gl_version),
    DriverText(PARAM_GPU_SHADER_VERSION, 62, "Shader Version", &GlobalData::glsl_version),
    Group(PARAM_ABOUT_SPACER_START, 63, "", PF_ParamFlag_NONE, kDisabled),
    GroupEnd(PARAM_ABOUT_SPACER_END, 64),
    GroupEnd(PARAM_ABOUT_GROUP_END, 65),

    Group(PARAM_STYLE_GROUP_START, 46, "Style"),
    Popup(PARAM_SHADOW_TYPE, 11, "Shadow Type", "Normal|Inner|Radial", 3, 1, kCannotTimeVary),
    Angle(PARAM_ANGLE, 2, "Angle", 135),
    Point(PARAM_ORIGIN, 3, "Origin"),
    FloatSlider(PARAM_DISTANCE, 4, "Distance", Valid{0, 2000}, Slider{0, 200}, 250, 2, kPlain),
    FloatSlider(PARAM_SOFTNESS, 5, "Softness", Valid{0, 500}, Slider{0, 200}, 250, 2, kPlain),
    Color(PARAM_COLOR, 6, "Color", {.alpha = 255, .red = 0, .green = 0, .blue = 0}),
    Popup(PARAM_BLEND_MODE, 7, "Blend Mode", kShadowBlendModeItems, 15, 1),
    GroupEnd(PARAM_STYLE_GROUP_END, 47),

    Group(PARAM_OPACITY_GROUP_START, 48, "Opacity"),
    FloatSlider(PARAM_OPACITY_START, 8, "Opacity Start", Valid{0, 100}, Slider{0, 100}, 20, 2, kPercent),
    FloatSlider(PARAM_OPACITY_END, 9, "Opacity End", Valid{0, 100}, Slider{0, 100}, 50, 2, kPercent),
    FloatSlider(PARAM_OPACITY_MASTER, 44, "Opacity Master", Valid{0, 100}, Slider{0, 100}, 100, 2, kPercent),
    GroupEnd(PARAM_OPACITY_GROUP_END, 49),

    Group(PARAM_EASING_GROUP_START, 10, "Easing", kCollapsed),
    Popup(PARAM_EASE_MODE, 11, "Mode", "Ease In|Ease In & Out", 2, 1),  // Intended: shares the shadow type's disk id
    FloatSlider(PARAM_EASE, 12, "Ease", Valid{0, 100}, Slider{0, 100}, 100, 2, kPercent),
    Group(PARAM_ADVANCED_GROUP_START, 13, "Advanced", kCollapsed),
    Group(PARAM_PER_ATTRIBUTE_LABEL_START, 14, "Easing Per Attribute"),
    GroupEnd(PARAM_PER_ATTRIBUTE_LABEL_END, 15),
    FloatSlider(PARAM_EASE_DISTANCE, 16, "Distance", Valid{0, 100}, Slider{0, 500}, 80, 2, kPercent),
    FloatSlider(PARAM_EASE_SOFTNESS, 17, "Softness", Valid{0, 100}, Slider{0, 500}, 100, 2, kPercent),
    FloatSlider(PARAM_EASE_OPACITY, 18, "Opacity", Valid{0, 100}, Slider{0, 500}, 100, 2, kPercent),
    GroupEnd(PARAM_ADVANCED_GROUP_END, 19),
    GroupEnd(PARAM_EASING_GROUP_END, 20),

    Group(PARAM_TEXTURE_GROUP_START, 39, "Texture", kCollapsed),
    Layer(PARAM_TEXTURE_LAYER, 40, "Layer"),
    Popup(PARAM_TEXTURE_BLEND_MODE, 41, "Blend Mode", kTextureBlendModeItems, 15, 15),
    FloatSlider(PARAM_TEXTURE_STRENGTH, 42, "Strength", Valid{0, 100}, Slider{0, 100}, 100, 2, kPercent),
    GroupEnd(PARAM_TEXTURE_GROUP_END, 43),

    Group(PARAM_QUALITY_GROUP_START, 21, "Quality", kCollapsed),
    FloatSlider(PARAM_SAMPLES, 22, "Samples", Valid{1, 256}, Slider{0, 64}, 36, 0, kPlain),
    Popup(PARAM_RESOLUTION, 23, "Resolution", "Draft|Low|Moderate|High|Extreme", 5, 3),
    Popup(PARAM_PRIORITISE, 24, "Prioritise", "Speed|Memory Usage", 2, 1, kCannotTimeVary),
    GroupEnd(PARAM_QUALITY_GROUP_END, 25),

    Group(PARAM_COMPOSITING_GROUP_START, 26, "Compositing", kCollapsed),
    FloatSlider(PARAM_SOURCE_OPACITY, 27, "Source Opacity", Valid{0, 100}, Slider{0, 100}, 100, 2, kPercent),
    FloatSlider(PARAM_OFFSET_SHADOW, 28, "Offset Shadow", Valid{0, 100}, Slider{0, 500}, 1, 2, kPlain),
    FloatSlider(PARAM_BUFFER_EXPANSION, 50, "Buffer Expansion", Valid{0, 1000}, Slider{0, 100}, 0, 0, kPlain),
    GroupEnd(PARAM_COMPOSITING_GROUP_END, 29),

    Group(PARAM_DEBUG_GROUP_START, 51, "Debug"),
    FloatSlider(PARAM_DEBUG_LEFT, 30, "Left", Valid{-5000, 5000}, Slider{-500, 500}, 0, 2, kPlain),
    FloatSlider(PARAM_DEBUG_TOP, 31, "Top", Valid{-5000, 5000}, Slider{-500, 500}, 0, 2, kPlain),
    FloatSlider(PARAM_DEBUG_RIGHT, 32, "Right", Valid{-5000, 5000}, Slider{-500, 500}, 0, 2, kPlain),
    FloatSlider(PARAM_DEBUG_BOTTOM, 33, "Bottom", Valid{-5000, 5000}, Slider{-500, 500}, 0, 2, kPlain),
    FloatSlider(PARAM_DEBUG_BUFFER_OPACITY, 52, "Buffer Opacity", Valid{0, 100}, Slider{0, 100}, 0, 2, kPercent),
    FloatSlider(PARAM_DEBUG_COUNTER, 45, "Counter", Valid{0, 99999}, Slider{0, 99999}, 0, 0, kPlain, kDisabled),
    GroupEnd(PARAM_DEBUG_GROUP_END, 53),
}};
// clang-format on

static_assert(
    [] {
        for (int i = 0; i < PARAM_NUM_PARAMS; ++i) {
            if (kParamTable[static_cast<size_t>(i)].index != i) return false;
        }
        return true;
    }(),
    "row i is parameter i");

}  // namespace umbrant::effect
