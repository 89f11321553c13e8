// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Numbers and texts.

#include "openfx/parameters/value_mapping.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace umbrant::openfx {

namespace {

constexpr double kMostColor = 65504;
constexpr double kMostAngle = 32000;

double Inside(double value, const Range& range, double otherwise) {
    return std::isnan(value) ? otherwise : std::clamp(value, range.low, range.high);
}

std::string NumberText(double value) {
    char text[64];
    const auto end = std::to_chars(std::begin(text), std::end(text), value).ptr;
    return {text, end};
}

/// Colours that are whole 8-bit numbers are set as such, so that every depth has the colour that the panel would give.
EffectValue ColorValue(const HostNumbers& numbers) {
    bool isByte = true;
    int bytes[3];
    float floats[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double channel = Inside(numbers[i], {-kMostColor, kMostColor}, 0);
        floats[i] = static_cast<float>(channel);
        bytes[i] = static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255));
        isByte &= std::abs(channel * 255 - bytes[i]) < 1e-4;
    }
    if (!isByte) return Color{floats[0], floats[1], floats[2]};
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", static_cast<unsigned>(bytes[0]) & 255,
                  static_cast<unsigned>(bytes[1]) & 255, static_cast<unsigned>(bytes[2]) & 255);
    return std::string(text);
}

std::size_t ItemOf(const ParameterRow& row, double number) {
    const double last = static_cast<double>(row.items.size()) - 1;
    return static_cast<std::size_t>(std::lround(Inside(number, {0, last}, row.standard[0])));
}

/// The form in which the library writes items: "Ease In & Out" is "ease-in-out".
std::string ItemForm(const char* item) {
    std::string form;
    for (const char* c = item; *c; ++c) {
        if (std::isalnum(static_cast<unsigned char>(*c))) {
            form += static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
        } else if (!form.empty() && form.back() != '-') {
            form += '-';
        }
    }
    return form;
}

std::optional<double> NumberOf(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// A coordinate in pixels, or in percent of a length.
std::optional<double> CoordinateOf(std::string_view text, double length) {
    const bool isPercent = text.ends_with('%');
    if (isPercent) text.remove_suffix(1);
    const auto number = NumberOf(text);
    return number && isPercent ? *number / 100 * length : number;
}

std::optional<HostNumbers> ColorOf(const std::string& text) {
    if (text.size() != 7 || text[0] != '#') return std::nullopt;
    HostNumbers numbers{};
    for (std::size_t i = 0; i < 3; ++i) {
        int byte = 0;
        const char* const begin = text.data() + 1 + 2 * i;
        const auto [end, error] = std::from_chars(begin, begin + 2, byte, 16);
        if (error != std::errc() || end != begin + 2) return std::nullopt;
        numbers[i] = byte / 255.0;
    }
    return numbers;
}

}  // namespace

EffectValue EffectValueOf(const ParameterRow& row, const HostNumbers& numbers, const LayerPlace& layer) {
    switch (row.kind) {
        case ParameterKind::kChoice:
            return std::string(row.items[ItemOf(row, numbers[0])]);
        case ParameterKind::kColor:
            return ColorValue(numbers);
        case ParameterKind::kPoint: {
            const OfxPointD point = PointInLayer({numbers[0], numbers[1]}, layer);
            return NumberText(Inside(point.x, row.valid, 0)) + "," + NumberText(Inside(point.y, row.valid, 0));
        }
        case ParameterKind::kAngle: {
            const double angle = Inside(numbers[0], row.valid, row.standard[0]);
            // Whole turns change nothing, and the effect's angles end before the host's.
            return std::abs(angle) > kMostAngle ? std::fmod(angle, 360) : angle;
        }
        case ParameterKind::kInteger:
            return std::round(Inside(numbers[0], row.valid, row.standard[0]));
        default:
            return Inside(numbers[0], row.valid, row.standard[0]);
    }
}

bool IsDefault(const ParameterRow& row, const HostNumbers& numbers, const LayerPlace& layer) {
    if (row.kind != ParameterKind::kPoint) return numbers == row.standard;
    const OfxPointD point = PointInLayer({numbers[0], numbers[1]}, layer);
    return point.x == 0 && point.y == 0;
}

std::optional<HostNumbers> HostNumbersOf(const ParameterRow& row, const std::string& text, const LayerPlace& layer,
                                         double layerWidth, double layerHeight) {
    switch (row.kind) {
        case ParameterKind::kChoice:
            for (std::size_t i = 0; i < row.items.size(); ++i) {
                if (ItemForm(row.items[i]) == text) return HostNumbers{static_cast<double>(i)};
            }
            return std::nullopt;
        case ParameterKind::kColor:
            return ColorOf(text);
        case ParameterKind::kPoint: {
            const std::size_t comma = text.find(',');
            if (comma == std::string::npos) return std::nullopt;
            const auto x = CoordinateOf(std::string_view(text).substr(0, comma), layerWidth);
            const auto y = CoordinateOf(std::string_view(text).substr(comma + 1), layerHeight);
            if (!x || !y) return std::nullopt;
            return HostNumbers{layer.left + *x * layer.pixelAspect, layer.top - *y};
        }
        default:
            if (const auto number = CoordinateOf(text, 100)) return HostNumbers{*number};
            return std::nullopt;
    }
}

}  // namespace umbrant::openfx
