// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "frei0r/filter_parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

/// Not-a-number becomes 0.
double Inside(double value) {
    return value > 0 ? std::min(value, 1.0) : 0;
}

std::string Number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

}  // namespace

const std::vector<FilterParameter>& FilterParameters() {
    using enum FilterKind;
    // The range is that of the panel's slider, as far as its values are allowed; where the default is beyond it, all
    // that is allowed.
    static const std::vector<FilterParameter> parameters = {
        {"Shadow type",
         "style/shadow-type",
         kItem,
         0,
         0,
         {"normal", "inner", "radial"},
         {0},
         "0 normal, 0.5 inner, 1 radial"},
        {"Angle", "style/angle", kNumber, 0, 360, {}, {0.375}, "0 to 360 degrees"},
        {"Origin", "style/origin", kPlace, 0, 0, {}, {0, 0}, "origin of a radial shadow, in fractions of the frame"},
        {"Distance", "style/distance", kNumber, 0, 2000, {}, {0.125}, "0 to 2000 pixels"},
        {"Softness", "style/softness", kNumber, 0, 500, {}, {0.5}, "0 to 500"},
        {"Color", "style/color", kColor, 0, 0, {}, {0, 0, 0}, "of the shadow"},
        {"Blend mode",
         "style/blend-mode",
         kItem,
         0,
         0,
         {"normal", "add", "screen", "overlay", "soft-light", "hard-light", "darken", "multiply", "color-burn",
          "classic-color-burn", "linear-burn", "darker-color"},
         {0},
         "normal, add, screen, overlay, soft light, hard light, darken, multiply, color burn, classic color burn, "
         "linear burn, darker color, at even distances from 0 to 1"},
        {"Opacity start", "opacity/opacity-start", kNumber, 0, 100, {}, {0.2}, "0 to 100 %"},
        {"Opacity end", "opacity/opacity-end", kNumber, 0, 100, {}, {0.5}, "0 to 100 %"},
        {"Opacity master", "opacity/opacity-master", kNumber, 0, 100, {}, {1}, "0 to 100 %"},
        {"Easing mode", "easing/mode", kItem, 0, 0, {"ease-in", "ease-in-out"}, {0}, "0 ease in, 1 ease in and out"},
        {"Ease", "easing/ease", kNumber, 0, 100, {}, {1}, "0 to 100 %"},
        {"Easing of distance", "easing/advanced/distance", kNumber, 0, 100, {}, {0.8}, "0 to 100 %"},
        {"Easing of softness", "easing/advanced/softness", kNumber, 0, 100, {}, {1}, "0 to 100 %"},
        {"Easing of opacity", "easing/advanced/opacity", kNumber, 0, 100, {}, {1}, "0 to 100 %"},
        {"Samples", "quality/samples", kNumber, 1, 256, {}, {35.0 / 255}, "1 to 256 copies"},
        {"Resolution",
         "quality/resolution",
         kItem,
         0,
         0,
         {"draft", "low", "moderate", "high", "extreme"},
         {0.5},
         "0 draft, 0.25 low, 0.5 moderate, 0.75 high, 1 extreme"},
        {"Source opacity", "compositing/source-opacity", kNumber, 0, 100, {}, {1}, "of the frame itself, 0 to 100 %"},
        {"Offset shadow", "compositing/offset-shadow", kNumber, 0, 100, {}, {0.01}, "0 to 100"},
    };
    return parameters;
}

std::string EffectText(const FilterParameter& parameter, const FilterValue& value) {
    switch (parameter.kind) {
        case FilterKind::kNumber:
            return Number(parameter.low + Inside(value[0]) * (parameter.high - parameter.low));
        case FilterKind::kItem: {
            const auto last = static_cast<double>(parameter.items.size() - 1);
            return parameter.items[static_cast<std::size_t>(std::lround(Inside(value[0]) * last))];
        }
        case FilterKind::kColor: {
            const auto byte = [](double channel) { return static_cast<unsigned>(std::lround(Inside(channel) * 255)); };
            char text[8];
            std::snprintf(text, sizeof text, "#%02x%02x%02x", byte(value[0]) & 255, byte(value[1]) & 255,
                          byte(value[2]) & 255);
            return text;
        }
        case FilterKind::kPlace:
            return Number(Inside(value[0]) * 100) + "%," + Number(Inside(value[1]) * 100) + "%";
    }
    return "";
}
