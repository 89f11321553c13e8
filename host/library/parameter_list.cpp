// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/parameter_list.h"

#include "host/animation/animation.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"
#include "host/parameters/parameter_description.h"

namespace umbrant::host {

using umbrant::Parameter;
using umbrant::ParameterKind;

namespace {

ParameterKind PublicKind(ParamKind kind) {
    switch (kind) {
        case ParamKind::kGroup:
            return ParameterKind::kGroup;
        case ParamKind::kInteger:
            return ParameterKind::kInteger;
        case ParamKind::kFixed:
        case ParamKind::kFloat:
            return ParameterKind::kNumber;
        case ParamKind::kAngle:
            return ParameterKind::kAngle;
        case ParamKind::kCheckBox:
            return ParameterKind::kCheckBox;
        case ParamKind::kPopup:
            return ParameterKind::kPopup;
        case ParamKind::kColor:
            return ParameterKind::kColor;
        case ParamKind::kPoint:
            return ParameterKind::kPoint;
        case ParamKind::kPoint3D:
            return ParameterKind::kPoint3D;
        case ParamKind::kLayer:
            return ParameterKind::kLayer;
        case ParamKind::kButton:
            return ParameterKind::kButton;
        default:
            return ParameterKind::kOther;
    }
}

void DescribeRange(const PF_ParamDef& def, Parameter& parameter) {
    const auto range = SliderRange(def);
    if (!range) return;
    parameter.minimum = range->validMin;
    parameter.maximum = range->validMax;
    parameter.sliderMinimum = range->sliderMin;
    parameter.sliderMaximum = range->sliderMax;
    parameter.isPercent = IsPercent(def);
    if (const auto precision = Precision(def)) parameter.precision = *precision;
}

void DescribeItems(const ParamRow& row, Parameter& parameter) {
    for (const std::string& item : row.items) {
        const bool isSeparator = item.starts_with("(-");
        const std::string form = isSeparator ? std::string() : PathForm(item);
        // An item without a letter or digit is selected only by its number.
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
    parameter.kind = PublicKind(KindOf(row.def));
    parameter.defaultText = declared.DefaultText(index);
    parameter.hasValue = !parameter.defaultText.empty();
    parameter.canVary = parameter.hasValue && !WhyNotAnimatable(row);
    parameter.isHidden = panel.hidden;
    parameter.depth = row.depth;
    DescribeRange(row.def, parameter);
    DescribeItems(row, parameter);
    if (parameter.hasValue) parameter.defaultNumbers = NumbersOf(row).values;
    return parameter;
}

}  // namespace umbrant::host

namespace umbrant {

std::string_view DescriptionOf(std::string_view path) {
    return host::DescriptionOf(path);
}

}  // namespace umbrant
