// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Parameter values from the texts that people type.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "host/parameters/color_names.h"
#include "host/parameters/echo_text.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"
#include "host/parameters/param_set.h"
#include "host/parameters/set_row.h"
#include "host/parameters/value_text.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return text;
}

/// A finite decimal number, and nothing else, or nothing.
std::optional<double> Number(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) return std::nullopt;
    return value;
}

Failure Wrong(const ParamRow& row, const std::string& reason) {
    return {ErrorKind::kUsage, fmt::format("{} {}", RowLabel(row), reason)};
}

Failure NotANumber(const ParamRow& row, std::string_view text, std::string_view wanted) {
    return Wrong(row, fmt::format("takes {}, not '{}'", wanted, EchoText(text)));
}

Result<Done> SetSlider(ParamRow& row, std::string_view text) {
    const bool percent = IsPercent(row.def);
    std::string_view digits = Trimmed(text);
    if (percent && digits.ends_with('%')) digits.remove_suffix(1);
    const std::optional<double> value = Number(digits);
    if (value && KindOf(row.def) == ParamKind::kInteger && *value != std::floor(*value)) {
        return NotANumber(row, text, "a whole number");
    }
    const NumberRange limits = *SliderRange(row.def);
    const std::string range =
        fmt::format("{} to {}{}", NumberText(limits.validMin), NumberText(limits.validMax), percent ? " %" : "");
    if (!value) return NotANumber(row, text, fmt::format("a number from {}", range));
    if (*value < limits.validMin || *value > limits.validMax) {
        return Wrong(row, fmt::format("takes {}, not {}", range, NumberText(*value)));
    }
    SetNumbers(row, {{*value}});
    return Done{};
}

/// Degrees from "405", "405deg", "405°" and, as panels show them, "1x45": one turn and 45 degrees. A sign before the
/// turns is that of the whole, unless the degrees have a sign as well: "-1x45" and "-1x-45" are -405.
std::optional<double> Degrees(std::string_view text) {
    text = Trimmed(text);
    for (const std::string_view unit : {"deg", "\u00B0"}) {
        if (!text.ends_with(unit)) continue;
        text = Trimmed(text.substr(0, text.size() - unit.size()));
        break;
    }
    const std::size_t x = text.find('x');
    if (x == std::string_view::npos) return Number(text);
    const std::string_view rest = text.substr(x + 1);
    const std::optional<double> turns = Number(text.substr(0, x));
    const std::optional<double> degrees = Number(rest);
    if (!turns || !degrees || *turns != std::floor(*turns)) return std::nullopt;
    const bool hasSign = rest.front() == '-' || rest.front() == '+';
    return *turns * 360 + (text.starts_with('-') && !hasSign ? -*degrees : *degrees);
}

Result<Done> SetAngle(ParamRow& row, std::string_view text) {
    const std::optional<double> degrees = Degrees(text);
    if (!degrees) return NotANumber(row, text, "an angle in degrees, such as 405, 405deg or 1x45");
    if (std::abs(*degrees) > kFixedLimit) {
        return Wrong(row,
                     fmt::format("takes -{0} to {0} degrees, not {1}", NumberText(kFixedLimit), NumberText(*degrees)));
    }
    SetNumbers(row, {{*degrees}});
    return Done{};
}

/// The numbers between the commas, as many as asked for, or nothing.
template <std::size_t N>
std::optional<std::array<double, N>> Numbers(std::string_view text) {
    std::array<double, N> numbers{};
    for (std::size_t i = 0; i < N; ++i) {
        const std::size_t comma = text.find(',');
        if ((comma == std::string_view::npos) != (i + 1 == N)) return std::nullopt;
        const std::optional<double> number = Number(text.substr(0, comma));
        if (!number) return std::nullopt;
        numbers[i] = *number;
        if (comma != std::string_view::npos) text.remove_prefix(comma + 1);
    }
    return numbers;
}

/// "x%,y%" without its percent signs, or nothing.
std::optional<std::string> WithoutPercent(std::string_view text) {
    text = Trimmed(text);
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    std::string_view x = Trimmed(text.substr(0, comma));
    if (!x.ends_with('%') || !text.ends_with('%')) return std::nullopt;
    x.remove_suffix(1);
    text.remove_suffix(1);
    return std::string(x) + std::string(text.substr(comma));
}

Result<Done> SetPoint(ParamRow& row, std::string_view text) {
    const std::optional<std::string> percent = WithoutPercent(text);
    const auto numbers = Numbers<2>(percent ? std::string_view(*percent) : text);
    if (!numbers) return NotANumber(row, text, "a point as x,y in pixels of the full-size layer");
    for (const double number : *numbers) {
        if (std::abs(number) > kFixedLimit) {
            return Wrong(row, fmt::format("takes -{0} to {0} {1}, not {2}", NumberText(kFixedLimit),
                                          percent ? "percent" : "pixels", NumberText(number)));
        }
    }
    row.point = LayerPoint{(*numbers)[0], (*numbers)[1], percent.has_value()};
    return Done{};
}

Result<Done> SetPoint3D(ParamRow& row, std::string_view text) {
    const auto numbers = Numbers<3>(text);
    if (!numbers) return NotANumber(row, text, "a point as x,y,z");
    PF_Point3DDef& point = row.def.u.point3d_d;
    point.x_value = (*numbers)[0];
    point.y_value = (*numbers)[1];
    point.z_value = (*numbers)[2];
    return Done{};
}

Result<Done> SetColor(ParamRow& row, std::string_view text) {
    const std::optional<std::uint32_t> value = ColorFromText(Trimmed(text));
    if (!value) return NotANumber(row, text, "a colour as #rrggbb, #rgb or a CSS name");
    const auto channel = [&](int shift) { return static_cast<A_u_char>(*value >> shift & 0xFF); };
    SetByteColor(row.def, {PF_MAX_CHAN8, channel(16), channel(8), channel(0)});
    return Done{};
}

Result<Done> SetCheckBox(ParamRow& row, std::string_view text) {
    const std::string word = PathForm(text);
    const auto is = [&](std::initializer_list<const char*> words) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    const bool on = is({"on", "true", "yes", "1"});
    if (!on && !is({"off", "false", "no", "0"})) return NotANumber(row, text, "on or off");
    row.def.u.bd.value = on ? 1 : 0;
    return Done{};
}

Result<Done> SetPopup(ParamRow& row, std::string_view text) {
    PF_PopupDef& popup = row.def.u.pd;
    const std::string typed = PathForm(text);
    std::vector<std::string> forms;
    std::vector<int> matches;
    for (std::size_t i = 0; i < row.items.size(); ++i) {
        const std::string form = ItemForm(row.items[i]);
        if (form.empty()) continue;
        forms.push_back(form);
        if (form == typed) matches.push_back(static_cast<int>(i) + 1);
    }
    if (matches.size() == 1) {
        popup.value = matches.front();
        return Done{};
    }
    if (matches.size() > 1) {
        return Wrong(row, fmt::format("has several items '{}'; use a number: {}", typed, fmt::join(matches, ", ")));
    }
    if (const std::optional<double> number = Number(text)) {
        if (*number != std::floor(*number) || *number < 1 || *number > popup.num_choices) {
            return Wrong(
                row, fmt::format("takes an item number from 1 to {}, not {}", popup.num_choices, NumberText(*number)));
        }
        const auto item = static_cast<std::size_t>(*number);
        if (item <= row.items.size() && IsSeparator(row.items[item - 1])) {
            return Wrong(row, fmt::format("cannot be set to {}, which is a separator line; the items are: {}", item,
                                          fmt::join(forms, ", ")));
        }
        popup.value = static_cast<PF_ParamValue>(item);
        return Done{};
    }
    std::vector<std::string> near = Nearest(typed, forms, 1);
    const std::string echo = EchoText(text);
    if (forms.empty()) {
        return Wrong(row, fmt::format("has no item '{}'; use a number from 1 to {}", echo, popup.num_choices));
    }
    return Wrong(row, near.empty() ? fmt::format("has no item '{}'; the items are: {}", echo, fmt::join(forms, ", "))
                                   : fmt::format("has no item '{}'; closest: '{}' (of {})", echo, near.front(),
                                                 fmt::join(forms, ", ")));
}

/// Why a row cannot be set from text, or nothing.
const char* Unsettable(ParamKind kind) {
    switch (kind) {
        case ParamKind::kGroup:
            return "is a group and has no value; name a row inside it";
        case ParamKind::kGroupEnd:
            return "ends a group and has no value; name a row inside the group";
        case ParamKind::kButton:
            return "is a button and has no value";
        case ParamKind::kLayer:
            return "is a layer; pass an image instead of a value";
        case ParamKind::kCustom:
            return "holds the effect's own data, which cannot be set from a text";
        case ParamKind::kPath:
        case ParamKind::kNone:
            return "has no value that can be set from a text";
        default:
            return nullptr;
    }
}

}  // namespace

Result<Done> SetRowFromText(ParamRow& row, std::string_view text) {
    const ParamKind kind = KindOf(row.def);
    if (const char* reason = Unsettable(kind)) return Wrong(row, reason);
    switch (kind) {
        case ParamKind::kInteger:
        case ParamKind::kFixed:
        case ParamKind::kFloat:
            return SetSlider(row, text);
        case ParamKind::kAngle:
            return SetAngle(row, text);
        case ParamKind::kCheckBox:
            return SetCheckBox(row, text);
        case ParamKind::kColor:
            return SetColor(row, text);
        case ParamKind::kPoint:
            return SetPoint(row, text);
        case ParamKind::kPoint3D:
            return SetPoint3D(row, text);
        default:
            return SetPopup(row, text);
    }
}

Result<Done> SetRowColor(ParamRow& row, const FloatColor& color) {
    if (KindOf(row.def) != ParamKind::kColor) {
        return Wrong(row, fmt::format("is a {} and takes no colour", ParamTypeName(row.def.param_type)));
    }
    for (const float channel : {color.red, color.green, color.blue}) {
        // Written so that not-a-number is outside.
        if (channel >= -kColorLimit && channel <= kColorLimit) continue;
        return Wrong(row, fmt::format("takes channels from -{0} to {0}, not {1},{2},{3}", kColorLimit, color.red,
                                      color.green, color.blue));
    }
    SetFloatColor(row.def, color);
    return Done{};
}

Result<Done> ParamSet::SetFromText(std::string_view path, std::string_view text) {
    const int index = TRY(Find(path));
    return SetRowFromText(rows_[static_cast<std::size_t>(index)], text);
}

}  // namespace umbrant::host
