// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/parameter_list.h"

#include "host/animation/animation.h"
#include "host/parameters/param_path.h"

using umbrant::Parameter;
using umbrant::ParameterKind;

namespace {

constexpr double kFixedOne = 65536.0;

ParameterKind KindOf(PF_ParamType type) {
    switch (type) {
        case PF_Param_GROUP_START:
            return ParameterKind::kGroup;
        case PF_Param_SLIDER:
            return ParameterKind::kInteger;
        case PF_Param_FIX_SLIDER:
        case PF_Param_FLOAT_SLIDER:
            return ParameterKind::kNumber;
        case PF_Param_ANGLE:
            return ParameterKind::kAngle;
        case PF_Param_CHECKBOX:
            return ParameterKind::kCheckBox;
        case PF_Param_POPUP:
            return ParameterKind::kPopup;
        case PF_Param_COLOR:
            return ParameterKind::kColor;
        case PF_Param_POINT:
            return ParameterKind::kPoint;
        case PF_Param_POINT_3D:
            return ParameterKind::kPoint3D;
        case PF_Param_LAYER:
            return ParameterKind::kLayer;
        case PF_Param_BUTTON:
            return ParameterKind::kButton;
        default:
            return ParameterKind::kOther;
    }
}

template <typename Slider>
void SetRange(Parameter& parameter, const Slider& slider, double unit) {
    parameter.minimum = static_cast<double>(slider.valid_min) / unit;
    parameter.maximum = static_cast<double>(slider.valid_max) / unit;
    parameter.sliderMinimum = static_cast<double>(slider.slider_min) / unit;
    parameter.sliderMaximum = static_cast<double>(slider.slider_max) / unit;
}

void DescribeRange(const PF_ParamDef& def, Parameter& parameter) {
    const PF_ParamDefUnion& u = def.u;
    switch (def.param_type) {
        case PF_Param_SLIDER:
            return SetRange(parameter, u.sd, 1);
        case PF_Param_FIX_SLIDER:
            parameter.isPercent = (u.fd.display_flags & PF_ValueDisplayFlag_PERCENT) != 0;
            parameter.precision = u.fd.precision;
            return SetRange(parameter, u.fd, kFixedOne);
        case PF_Param_FLOAT_SLIDER:
            parameter.isPercent = (u.fs_d.display_flags & PF_ValueDisplayFlag_PERCENT) != 0;
            parameter.precision = u.fs_d.precision;
            return SetRange(parameter, u.fs_d, 1);
        default:
            return;
    }
}

void DescribeItems(const ParamRow& row, Parameter& parameter) {
    for (const std::string& item : row.items) {
        const bool isSeparator = item.starts_with("(-");
        const std::string form = isSeparator ? std::string() : PathForm(item);
        // An item without a letter or digit is reached by its number alone.
        parameter.items.push_back(form.empty() && !isSeparator ? std::to_string(parameter.items.size() + 1) : form);
        parameter.itemNames.push_back(isSeparator ? std::string() : item);
    }
}

}  // namespace

Parameter DescribeParameter(const ParamSet& declared, int index, const PanelRow& panel) {
    const ParamRow& row = declared.Row(index);
    Parameter parameter;
    parameter.index = index;
    parameter.path = row.path;
    parameter.name = row.name;
    parameter.kind = KindOf(row.def.param_type);
    parameter.defaultText = declared.DefaultText(index);
    parameter.hasValue = !parameter.defaultText.empty();
    parameter.canVary = parameter.hasValue && !WhyStill(row);
    parameter.isHidden = panel.hidden;
    parameter.depth = row.depth;
    DescribeRange(row.def, parameter);
    DescribeItems(row, parameter);
    bool isPercent = false;
    if (parameter.hasValue) parameter.defaultNumbers = NumbersOf(row, isPercent);
    return parameter;
}
