// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Properties of parameters. No row that may be shown later is described as hidden or disabled: there are hosts that
// would never show it.

#include "openfx/parameters/describe_parameters.h"

#include <umbrant/parameter.h>

#include "openfx/abi/effect_properties.h"
#include "openfx/abi/parameter_names.h"
#include "openfx/abi/parameter_properties.h"
#include "openfx/host/properties.h"
#include "openfx/host/suites.h"
#include "openfx/parameters/parameter_table.h"

namespace umbrant::openfx {

namespace {

using enum ParameterKind;

const char* TypeOf(ParameterKind kind) {
    switch (kind) {
        case kGroup:
            return kOfxParamTypeGroup;
        case kInteger:
            return kOfxParamTypeInteger;
        case kColor:
            return kOfxParamTypeRGB;
        case kPoint:
            return kOfxParamTypeDouble2D;
        case kChoice:
            return kOfxParamTypeChoice;
        case kButton:
            return kOfxParamTypePushButton;
        case kSwitch:
            return kOfxParamTypeBoolean;
        case kFile:
        case kLabel:
            return kOfxParamTypeString;
        default:
            return kOfxParamTypeDouble;
    }
}

/// All four limits: a host may hold numbers without them in a range of its own. The slider's come last, since setting
/// the others resets them.
template <typename Number>
void DescribeLimits(const Properties& parameter, const ParameterRow& row, int dimensions) {
    const auto set = [&](const char* name, double value) {
        for (int i = 0; i < dimensions; ++i) parameter.Set(name, static_cast<Number>(value), i);
    };
    set(kOfxParamPropMin, row.valid.low);
    set(kOfxParamPropMax, row.valid.high);
    set(kOfxParamPropDisplayMin, row.slider.low);
    set(kOfxParamPropDisplayMax, row.slider.high);
}

void DescribeDouble(const Properties& parameter, const ParameterRow& row) {
    parameter.Set(kOfxParamPropDoubleType, row.kind == kAngle ? kOfxParamDoubleTypeAngle : kOfxParamDoubleTypePlain);
    parameter.Set(kOfxParamPropDefault, row.standard[0]);
    parameter.Set(kOfxParamPropIncrement, 1.0);
    parameter.Set(kOfxParamPropDigits, 2);
    DescribeLimits<double>(parameter, row, 1);
}

/// Whether the host takes the default as a part of the project's size.
bool DescribePoint(const Properties& parameter, const ParameterRow& row) {
    parameter.Set(kOfxParamPropDoubleType, kOfxParamDoubleTypeXYAbsolute);
    const bool isRelative = parameter.Set(kOfxParamPropDefaultCoordinateSystem, kOfxParamCoordinatesNormalised);
    parameter.SetAll(kOfxParamPropDefault, {row.standard[0], row.standard[1]});
    parameter.Set(kOfxParamPropUseHostOverlayHandle, 1);
    parameter.Set(kOfxParamPropIncrement, 1.0);
    parameter.Set(kOfxParamPropDigits, 2);
    DescribeLimits<double>(parameter, row, 2);
    return isRelative;
}

void DescribeChoice(const Properties& parameter, const ParameterRow& row) {
    int index = 0;
    for (const char* item : row.items) parameter.Set(kOfxParamPropChoiceOption, item, index++);
    parameter.Set(kOfxParamPropDefault, static_cast<int>(row.standard[0]));
    // Explicit, since hosts differ; a host that cannot says so.
    const bool canVary = Properties(TheSuites().host).Int(kOfxParamHostPropSupportsChoiceAnimation).value_or(0) != 0;
    parameter.Set(kOfxParamPropAnimates, row.varies && canVary ? 1 : 0);
}

void DescribeString(const Properties& parameter, const char* mode) {
    parameter.Set(kOfxParamPropStringMode, mode);
    parameter.Set(kOfxParamPropDefault, "");
    parameter.Set(kOfxParamPropAnimates, 0);
    parameter.Set(kOfxParamPropEvaluateOnChange, 0);
}

/// Hosts without parts of the project's size put the default at its numbers in pixels; the first instance corrects that
/// and notes it here.
void DescribeSwitch(const Properties& parameter, bool isOn) {
    parameter.Set(kOfxParamPropDefault, isOn ? 1 : 0);
    parameter.Set(kOfxParamPropAnimates, 0);
    parameter.Set(kOfxParamPropEvaluateOnChange, 0);
    parameter.Set(kOfxParamPropSecret, 1);
}

void DescribeKind(const Properties& parameter, const ParameterRow& row, bool& takesRelative) {
    switch (row.kind) {
        case kGroup:
            parameter.Set(kOfxParamPropGroupOpen, row.varies ? 1 : 0);
            break;
        case kDouble:
        case kAngle:
            DescribeDouble(parameter, row);
            break;
        case kInteger:
            parameter.Set(kOfxParamPropDefault, static_cast<int>(row.standard[0]));
            DescribeLimits<int>(parameter, row, 1);
            break;
        case kColor:
            parameter.SetAll(kOfxParamPropDefault, {row.standard[0], row.standard[1], row.standard[2]});
            break;
        case kPoint:
            takesRelative = DescribePoint(parameter, row);
            break;
        case kChoice:
            DescribeChoice(parameter, row);
            break;
        case kFile:
            DescribeString(parameter, kOfxParamStringIsFilePath);
            break;
        case kLabel:
            DescribeString(parameter, kOfxParamStringIsLabel);
            parameter.Set(kOfxParamPropPersistant, 0);
            break;
        case kSwitch:
            DescribeSwitch(parameter, !takesRelative);
            break;
        case kButton:
            break;
    }
}

void DescribePage(OfxParamSetHandle parameters) {
    if (Properties(TheSuites().host).Int(kOfxParamHostPropMaxPages).value_or(1) == 0) return;
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().parameter->paramDefine(parameters, kOfxParamTypePage, kPageName, &set) != kOfxStatOK) return;
    const Properties page(set);
    page.Set(kOfxPropLabel, "Controls");
    int index = 0;
    for (const ParameterRow& row : ParameterTable()) {
        if (row.kind != kGroup && row.kind != kSwitch) page.Set(kOfxParamPropPageChild, row.name, index++);
    }
}

}  // namespace

std::string HintOf(const ParameterRow& row) {
    std::string hint(row.path ? DescriptionOf(row.path) : std::string_view());
    if (!hint.empty() && *row.hint) hint += ' ';
    return hint + row.hint;
}

void DescribeParameters(OfxParamSetHandle parameters) {
    bool takesRelative = true;
    for (const ParameterRow& row : ParameterTable()) {
        OfxPropertySetHandle set = nullptr;
        if (TheSuites().parameter->paramDefine(parameters, TypeOf(row.kind), row.name, &set) != kOfxStatOK) continue;
        const Properties parameter(set);
        parameter.Set(kOfxPropLabel, row.label);
        parameter.Set(kOfxParamPropScriptName, row.name);
        if (const std::string hint = HintOf(row); !hint.empty()) parameter.Set(kOfxParamPropHint, hint.c_str());
        if (row.parent) parameter.Set(kOfxParamPropParent, row.parent);
        DescribeKind(parameter, row, takesRelative);
    }
    DescribePage(parameters);
}

}  // namespace umbrant::openfx
