// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Parameter values as texts that people read, and that read_param_text.cpp reads again.

#include <fmt/format.h>

#include <string>

#include "host/parameters/param_kind.h"
#include "host/parameters/param_set.h"
#include "host/parameters/set_row.h"
#include "host/parameters/value_text.h"

namespace umbrant::host {

namespace {

std::string ColorText(const PF_Pixel& color) {
    return fmt::format("#{:02x}{:02x}{:02x}", color.red, color.green, color.blue);
}

std::string PopupText(const ParamRow& row, A_long value) {
    if (value >= 1 && value <= static_cast<A_long>(row.items.size())) {
        std::string form = ItemForm(row.items[static_cast<std::size_t>(value) - 1]);
        if (!form.empty()) return form;
    }
    return std::to_string(value);
}

std::string PointText(const ParamRow& row, bool current) {
    if (current && row.point) {
        const char* unit = row.point->isPercent ? "%" : "";
        return fmt::format("{0}{2},{1}{2}", NumberText(row.point->x), NumberText(row.point->y), unit);
    }
    const PF_PointDef& point = row.def.u.td;
    return NumberText(point.x_dephault / kFixedOne) + "%," + NumberText(point.y_dephault / kFixedOne) + "%";
}

std::string Text(const ParamRow& row, bool current) {
    const PF_ParamDefUnion& u = row.def.u;
    switch (KindOf(row.def)) {
        case ParamKind::kInteger:
            return std::to_string(current ? u.sd.value : u.sd.dephault);
        case ParamKind::kFixed:
            return NumberText((current ? u.fd.value : u.fd.dephault) / kFixedOne);
        case ParamKind::kFloat:
            return current ? NumberText(u.fs_d.value) : NumberText(u.fs_d.dephault);
        case ParamKind::kAngle:
            return NumberText((current ? u.ad.value : u.ad.dephault) / kFixedOne);
        case ParamKind::kCheckBox:
            return (current ? u.bd.value : u.bd.dephault) ? "on" : "off";
        case ParamKind::kColor:
            return ColorText(current ? u.cd.value : u.cd.dephault);
        case ParamKind::kPoint:
            return PointText(row, current);
        case ParamKind::kPoint3D:
            return current ? fmt::format("{},{},{}", u.point3d_d.x_value, u.point3d_d.y_value, u.point3d_d.z_value)
                           : fmt::format("{},{},{}", u.point3d_d.x_dephault, u.point3d_d.y_dephault,
                                         u.point3d_d.z_dephault);
        case ParamKind::kPopup:
            return PopupText(row, current ? u.pd.value : u.pd.dephault);
        default:
            return "";
    }
}

}  // namespace

std::string ValueTextOf(const ParamRow& row) {
    return Text(row, true);
}

std::string ParamSet::ValueText(int index) const {
    return ValueTextOf(Row(index));
}

std::string ParamSet::DefaultText(int index) const {
    return Text(Row(index), false);
}

const char* ParamTypeName(PF_ParamType type) {
    switch (KindOf(type)) {
        case ParamKind::kLayer:
            return "layer";
        case ParamKind::kInteger:
        case ParamKind::kFixed:
        case ParamKind::kFloat:
            return "slider";
        case ParamKind::kAngle:
            return "angle";
        case ParamKind::kCheckBox:
            return "check box";
        case ParamKind::kColor:
            return "colour";
        case ParamKind::kPoint:
            return "point";
        case ParamKind::kPoint3D:
            return "3D point";
        case ParamKind::kPopup:
            return "popup";
        case ParamKind::kCustom:
            return "custom data";
        case ParamKind::kPath:
            return "mask path";
        case ParamKind::kGroup:
            return "group";
        case ParamKind::kGroupEnd:
            return "group end";
        case ParamKind::kButton:
            return "button";
        default:
            return "no data";
    }
}

}  // namespace umbrant::host
