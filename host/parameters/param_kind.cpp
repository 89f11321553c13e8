// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/param_kind.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/parameters/float_color.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

template <typename Slider>
NumberRange RangeOf(const Slider& slider, double unit) {
    return {static_cast<double>(slider.valid_min) / unit, static_cast<double>(slider.valid_max) / unit,
            static_cast<double>(slider.slider_min) / unit, static_cast<double>(slider.slider_max) / unit,
            static_cast<double>(slider.dephault) / unit};
}

PF_Fixed Rounded(double value) {
    return static_cast<PF_Fixed>(std::lround(value * kFixedOne));
}

/// The nearest number that the type holds; 0 for not-a-number.
PF_Fixed Saturated(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<PF_Fixed>(std::clamp<double>(std::round(value), std::numeric_limits<PF_Fixed>::min(),
                                                    std::numeric_limits<PF_Fixed>::max()));
}

A_u_char Channel(double value) {
    return static_cast<A_u_char>(std::lround(std::clamp(value, 0.0, 255.0)));
}

bool HasItem(const ParamRow& row, double number) {
    if (number != std::floor(number) || number < 1 || number > row.def.u.pd.num_choices) return false;
    const auto item = static_cast<std::size_t>(number);
    return item > row.items.size() || !row.items[item - 1].starts_with("(-");
}

}  // namespace

ParamKind KindOf(PF_ParamType type) {
    switch (type) {
        case PF_Param_LAYER:
            return ParamKind::kLayer;
        case PF_Param_SLIDER:
            return ParamKind::kInteger;
        case PF_Param_FIX_SLIDER:
            return ParamKind::kFixed;
        case PF_Param_FLOAT_SLIDER:
            return ParamKind::kFloat;
        case PF_Param_ANGLE:
            return ParamKind::kAngle;
        case PF_Param_CHECKBOX:
            return ParamKind::kCheckBox;
        case PF_Param_COLOR:
            return ParamKind::kColor;
        case PF_Param_POINT:
            return ParamKind::kPoint;
        case PF_Param_POINT_3D:
            return ParamKind::kPoint3D;
        case PF_Param_POPUP:
            return ParamKind::kPopup;
        case PF_Param_GROUP_START:
            return ParamKind::kGroup;
        case PF_Param_GROUP_END:
            return ParamKind::kGroupEnd;
        case PF_Param_BUTTON:
            return ParamKind::kButton;
        case PF_Param_ARBITRARY_DATA:
            return ParamKind::kCustom;
        case PF_Param_PATH:
            return ParamKind::kPath;
        default:
            return ParamKind::kNone;
    }
}

bool IsSlider(ParamKind kind) {
    return kind == ParamKind::kInteger || kind == ParamKind::kFixed || kind == ParamKind::kFloat;
}

bool HasValue(ParamKind kind) {
    switch (kind) {
        case ParamKind::kInteger:
        case ParamKind::kFixed:
        case ParamKind::kFloat:
        case ParamKind::kAngle:
        case ParamKind::kCheckBox:
        case ParamKind::kColor:
        case ParamKind::kPoint:
        case ParamKind::kPoint3D:
        case ParamKind::kPopup:
            return true;
        default:
            return false;
    }
}

bool IsDiscrete(ParamKind kind) {
    return kind == ParamKind::kPopup || kind == ParamKind::kCheckBox;
}

const char** TextPointer(PF_ParamDef& def) {
    switch (KindOf(def)) {
        case ParamKind::kPopup:
            return &def.u.pd.u.namesptr;
        case ParamKind::kButton:
            return &def.u.button_d.u.namesptr;
        case ParamKind::kCheckBox:
            return &def.u.bd.u.nameptr;
        default:
            return nullptr;
    }
}

std::optional<NumberRange> SliderRange(const PF_ParamDef& def) {
    switch (KindOf(def)) {
        case ParamKind::kInteger:
            return RangeOf(def.u.sd, 1);
        case ParamKind::kFixed:
            return RangeOf(def.u.fd, kFixedOne);
        case ParamKind::kFloat:
            return RangeOf(def.u.fs_d, 1);
        default:
            return std::nullopt;
    }
}

PF_ValueDisplayFlags DisplayFlags(const PF_ParamDef& def) {
    switch (KindOf(def)) {
        case ParamKind::kFixed:
            return def.u.fd.display_flags;
        case ParamKind::kFloat:
            return def.u.fs_d.display_flags;
        default:
            return PF_ValueDisplayFlag_NONE;
    }
}

bool IsPercent(const PF_ParamDef& def) {
    return (DisplayFlags(def) & PF_ValueDisplayFlag_PERCENT) != 0;
}

std::optional<int> Precision(const PF_ParamDef& def) {
    switch (KindOf(def)) {
        case ParamKind::kFixed:
            return def.u.fd.precision;
        case ParamKind::kFloat:
            return def.u.fs_d.precision;
        default:
            return std::nullopt;
    }
}

ParamNumbers NumbersOf(const ParamRow& row) {
    const PF_ParamDefUnion& u = row.def.u;
    switch (KindOf(row.def)) {
        case ParamKind::kInteger:
            return {{static_cast<double>(u.sd.value)}};
        case ParamKind::kFixed:
            return {{u.fd.value / kFixedOne}};
        case ParamKind::kFloat:
            return {{u.fs_d.value}};
        case ParamKind::kAngle:
            return {{u.ad.value / kFixedOne}};
        case ParamKind::kCheckBox:
            return {{u.bd.value ? 1.0 : 0.0}};
        case ParamKind::kPopup:
            return {{static_cast<double>(u.pd.value)}};
        case ParamKind::kColor:
            return {{static_cast<double>(u.cd.value.red), static_cast<double>(u.cd.value.green),
                     static_cast<double>(u.cd.value.blue)}};
        case ParamKind::kPoint3D:
            return {{u.point3d_d.x_value, u.point3d_d.y_value, u.point3d_d.z_value}};
        case ParamKind::kPoint: {
            const LayerPoint declared{u.td.x_dephault / kFixedOne, u.td.y_dephault / kFixedOne, true};
            const LayerPoint point = row.point.value_or(declared);
            return {{point.x, point.y}, point.isPercent};
        }
        default:
            return {{0}};
    }
}

void SetNumbers(ParamRow& row, const ParamNumbers& numbers) {
    const std::vector<double>& values = numbers.values;
    if (std::any_of(values.begin(), values.end(), [](double value) { return std::isnan(value); })) return;
    PF_ParamDefUnion& u = row.def.u;
    const auto within = [](double value, double low, double high) { return std::clamp(value, low, high); };
    const auto range = SliderRange(row.def);
    switch (KindOf(row.def)) {
        case ParamKind::kInteger:
            u.sd.value = static_cast<PF_ParamValue>(within(std::round(values[0]), range->validMin, range->validMax));
            break;
        case ParamKind::kFixed:
            u.fd.value = Rounded(within(values[0], range->validMin, range->validMax));
            break;
        case ParamKind::kFloat:
            u.fs_d.value = within(values[0], range->validMin, range->validMax);
            break;
        case ParamKind::kAngle:
            u.ad.value = Rounded(within(values[0], -kFixedLimit, kFixedLimit));
            break;
        case ParamKind::kCheckBox:
            u.bd.value = values[0] != 0 ? 1 : 0;
            break;
        case ParamKind::kColor:
            SetByteColor(row.def, {PF_MAX_CHAN8, Channel(values[0]), Channel(values[1]), Channel(values[2])});
            break;
        case ParamKind::kPoint:
            row.point = LayerPoint{within(values[0], -kFixedLimit, kFixedLimit),
                                   within(values[1], -kFixedLimit, kFixedLimit), numbers.isPercent};
            break;
        case ParamKind::kPoint3D:
            if (std::any_of(values.begin(), values.end(), [](double value) { return std::isinf(value); })) return;
            u.point3d_d.x_value = values[0];
            u.point3d_d.y_value = values[1];
            u.point3d_d.z_value = values[2];
            break;
        case ParamKind::kPopup:
            if (HasItem(row, values[0])) u.pd.value = static_cast<PF_ParamValue>(values[0]);
            break;
        default:
            break;
    }
}

bool SetNumberUnchecked(ParamRow& row, double value) {
    PF_ParamDefUnion& u = row.def.u;
    switch (KindOf(row.def)) {
        case ParamKind::kInteger:
            u.sd.value = Saturated(value);
            return true;
        case ParamKind::kFixed:
            u.fd.value = Saturated(value * kFixedOne);
            return true;
        case ParamKind::kFloat:
            u.fs_d.value = value;
            return true;
        case ParamKind::kAngle:
            u.ad.value = Saturated(value * kFixedOne);
            return true;
        default:
            return false;
    }
}

}  // namespace umbrant::host
