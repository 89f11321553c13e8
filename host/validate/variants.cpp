// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the judge can say about the rows of an effect that it has never seen: which can be set, and to what.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/validate/stage.h"

namespace {

constexpr double kFixedOne = 65536.0;

PF_Fixed Saturated(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<PF_Fixed>(std::clamp<double>(std::round(value), std::numeric_limits<PF_Fixed>::min(),
                                                    std::numeric_limits<PF_Fixed>::max()));
}

bool IsSeparator(const std::string& item) {
    return item.starts_with("(");
}

}  // namespace

std::string RowName(const ParamRow& row) {
    return row.path.empty() ? fmt::format("#{}", row.index) : row.path;
}

std::vector<int> SettableRows(const ParamSet& params) {
    std::vector<int> rows;
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0 || (row.def.ui_flags & PF_PUI_DISABLED)) continue;
        switch (row.def.param_type) {
            case PF_Param_SLIDER:
            case PF_Param_FIX_SLIDER:
            case PF_Param_FLOAT_SLIDER:
            case PF_Param_ANGLE:
            case PF_Param_CHECKBOX:
            case PF_Param_COLOR:
            case PF_Param_POINT:
            case PF_Param_POINT_3D:
            case PF_Param_POPUP:
                rows.push_back(row.index);
                break;
            default:
                break;
        }
    }
    return rows;
}

bool SetNumber(ParamRow& row, double value) {
    PF_ParamDefUnion& u = row.def.u;
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
            u.sd.value = Saturated(value);
            return true;
        case PF_Param_FIX_SLIDER:
            u.fd.value = Saturated(value * kFixedOne);
            return true;
        case PF_Param_FLOAT_SLIDER:
            u.fs_d.value = value;
            return true;
        case PF_Param_ANGLE:
            u.ad.value = Saturated(value * kFixedOne);
            return true;
        default:
            return false;
    }
}

std::optional<NumberRange> RangeOf(const ParamRow& row) {
    const PF_ParamDefUnion& u = row.def.u;
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
            return NumberRange{double(u.sd.valid_min), double(u.sd.valid_max), double(u.sd.slider_min),
                               double(u.sd.slider_max)};
        case PF_Param_FIX_SLIDER:
            return NumberRange{u.fd.valid_min / kFixedOne, u.fd.valid_max / kFixedOne, u.fd.slider_min / kFixedOne,
                               u.fd.slider_max / kFixedOne};
        case PF_Param_FLOAT_SLIDER:
            return NumberRange{double(u.fs_d.valid_min), double(u.fs_d.valid_max), double(u.fs_d.slider_min),
                               double(u.fs_d.slider_max)};
        case PF_Param_ANGLE:
            return NumberRange{-3600, 3600, 0, 360};
        default:
            return std::nullopt;
    }
}

double LowNumber(const NumberRange& range, double steps) {
    // A range around zero is low at zero.
    const double least = range.validMin < 0 && range.validMax > 0 ? 0 : range.validMin;
    return std::min(least + steps, range.validMax);
}

std::vector<Variant> StyleVariants(const ParamSet& params, int mostItems) {
    std::vector<Variant> variants{{"the defaults", [](ParamSet&) {}}};
    for (const int index : SettableRows(params)) {
        const ParamRow& row = params.Row(index);
        const PF_PopupDef& popup = row.def.u.pd;
        if (row.def.param_type != PF_Param_POPUP || popup.num_choices > mostItems) continue;
        for (int item = 1; item <= popup.num_choices; ++item) {
            const auto at = static_cast<std::size_t>(item) - 1;
            if (item == popup.value || (at < row.items.size() && IsSeparator(row.items[at]))) continue;
            variants.push_back({fmt::format("{} {}", RowName(row), item),
                                [index, item](ParamSet& set) { set.RawRow(index).def.u.pd.value = item; }});
        }
    }
    return variants;
}
