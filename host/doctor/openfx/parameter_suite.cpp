// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Parameters: declared, and read and set without animation.

#include <cstdarg>
#include <map>

#include "host/doctor/openfx/effect.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/abi/parameter_names.h"
#include "openfx/abi/parameter_properties.h"

namespace umbrant::host {

namespace {

/// A curve; no such parameter has a value of its own.
constexpr char kParametric[] = "OfxParamTypeParametric";

enum class Element { kInt, kDouble, kText };

struct TypeFacts {
    int count;
    Element element;
};

const std::map<std::string, TypeFacts>& Types() {
    static const std::map<std::string, TypeFacts> types = {
        {kOfxParamTypeInteger, {1, Element::kInt}},    {kOfxParamTypeDouble, {1, Element::kDouble}},
        {kOfxParamTypeBoolean, {1, Element::kInt}},    {kOfxParamTypeChoice, {1, Element::kInt}},
        {kOfxParamTypeStrChoice, {1, Element::kText}}, {kOfxParamTypeRGBA, {4, Element::kDouble}},
        {kOfxParamTypeRGB, {3, Element::kDouble}},     {kOfxParamTypeDouble2D, {2, Element::kDouble}},
        {kOfxParamTypeInteger2D, {2, Element::kInt}},  {kOfxParamTypeDouble3D, {3, Element::kDouble}},
        {kOfxParamTypeInteger3D, {3, Element::kInt}},  {kOfxParamTypeString, {1, Element::kText}},
        {kOfxParamTypeCustom, {1, Element::kText}},    {kOfxParamTypeGroup, {0, Element::kInt}},
        {kOfxParamTypePage, {0, Element::kInt}},       {kOfxParamTypePushButton, {0, Element::kInt}},
        {kOfxParamTypeBytes, {0, Element::kInt}},      {kParametric, {0, Element::kInt}}};
    return types;
}

OpenFxParameterSet* SetOf(OfxParamSetHandle handle) {
    return reinterpret_cast<OpenFxParameterSet*>(handle);
}
OpenFxParameter* ParameterOf(OfxParamHandle handle) {
    return reinterpret_cast<OpenFxParameter*>(handle);
}

OfxStatus Define(OfxParamSetHandle set, const char* type, const char* name, OfxPropertySetHandle* properties) {
    if (!set || !type || !name) return kOfxStatErrBadHandle;
    const int count = ValueCount(type);
    if (count < 0) return kOfxStatErrUnknown;
    if (SetOf(set)->Find(name)) return kOfxStatErrExists;
    auto parameter = std::make_unique<OpenFxParameter>();
    parameter->name = name;
    parameter->type = type;
    parameter->properties.Declare(kOfxPropType, {std::string(kOfxTypeParameter)});
    parameter->properties.Declare(kOfxPropName, {parameter->name});
    parameter->properties.Declare(kOfxPropLabel, {parameter->name});
    parameter->properties.Declare(kOfxParamPropType, {parameter->type});
    const Element element = Types().at(type).element;
    const PropertySet::Value zero = element == Element::kInt      ? PropertySet::Value(0)
                                    : element == Element::kDouble ? PropertySet::Value(0.0)
                                                                  : PropertySet::Value(std::string());
    if (count > 0)
        parameter->properties.Declare(kOfxParamPropDefault, PropertySet::Values(static_cast<std::size_t>(count), zero));
    if (properties) *properties = parameter->properties.Handle();
    SetOf(set)->parameters.push_back(std::move(parameter));
    return kOfxStatOK;
}

OfxStatus GetHandle(OfxParamSetHandle set, const char* name, OfxParamHandle* handle, OfxPropertySetHandle* properties) {
    if (!set || !name || !handle) return kOfxStatErrBadHandle;
    OpenFxParameter* const parameter = SetOf(set)->Find(name);
    if (!parameter) return kOfxStatErrUnknown;
    *handle = reinterpret_cast<OfxParamHandle>(parameter);
    if (properties) *properties = parameter->properties.Handle();
    return kOfxStatOK;
}

OfxStatus SetProperties(OfxParamSetHandle set, OfxPropertySetHandle* properties) {
    if (!set || !properties) return kOfxStatErrBadHandle;
    *properties = SetOf(set)->properties.Handle();
    return kOfxStatOK;
}

OfxStatus ParameterProperties(OfxParamHandle parameter, OfxPropertySetHandle* properties) {
    if (!parameter || !properties) return kOfxStatErrBadHandle;
    *properties = ParameterOf(parameter)->properties.Handle();
    return kOfxStatOK;
}

/// Writes the value through the pointers that follow.
OfxStatus ReadValue(OfxParamHandle handle, va_list out) {
    if (!handle) return kOfxStatErrBadHandle;
    const OpenFxParameter& parameter = *ParameterOf(handle);
    if (parameter.value.empty()) return kOfxStatErrUnsupported;
    for (const PropertySet::Value& value : parameter.value) {
        if (const auto* whole = std::get_if<int>(&value)) {
            *va_arg(out, int*) = *whole;
        } else if (const auto* number = std::get_if<double>(&value)) {
            *va_arg(out, double*) = *number;
        } else if (const auto* text = std::get_if<std::string>(&value)) {
            *va_arg(out, char**) = const_cast<char*>(text->c_str());
        }
    }
    return kOfxStatOK;
}

OfxStatus WriteValue(OfxParamHandle handle, va_list in) {
    if (!handle) return kOfxStatErrBadHandle;
    OpenFxParameter& parameter = *ParameterOf(handle);
    if (parameter.value.empty()) return kOfxStatErrUnsupported;
    for (PropertySet::Value& value : parameter.value) {
        if (std::holds_alternative<int>(value)) {
            value = va_arg(in, int);
        } else if (std::holds_alternative<double>(value)) {
            value = va_arg(in, double);
        } else {
            const char* const text = va_arg(in, const char*);
            value = std::string(text ? text : "");
        }
    }
    return kOfxStatOK;
}

OfxStatus GetValue(OfxParamHandle parameter, ...) {
    va_list out;
    va_start(out, parameter);
    const OfxStatus status = ReadValue(parameter, out);
    va_end(out);
    return status;
}

OfxStatus GetValueAtTime(OfxParamHandle parameter, OfxTime time, ...) {
    va_list out;
    va_start(out, time);
    const OfxStatus status = ReadValue(parameter, out);
    va_end(out);
    return status;
}

OfxStatus SetValue(OfxParamHandle parameter, ...) {
    va_list in;
    va_start(in, parameter);
    const OfxStatus status = WriteValue(parameter, in);
    va_end(in);
    return status;
}

OfxStatus SetValueAtTime(OfxParamHandle parameter, OfxTime time, ...) {
    va_list in;
    va_start(in, time);
    const OfxStatus status = WriteValue(parameter, in);
    va_end(in);
    return status;
}

OfxStatus NoDerivative(OfxParamHandle, OfxTime, ...) {
    return kOfxStatErrUnsupported;
}
OfxStatus NoIntegral(OfxParamHandle, OfxTime, OfxTime, ...) {
    return kOfxStatErrUnsupported;
}

OfxStatus NumKeys(OfxParamHandle parameter, unsigned int* count) {
    if (!parameter || !count) return kOfxStatErrBadHandle;
    *count = 0;
    return kOfxStatOK;
}
OfxStatus NoKeyTime(OfxParamHandle, unsigned int, OfxTime*) {
    return kOfxStatErrBadIndex;
}
OfxStatus NoKeyIndex(OfxParamHandle, OfxTime, int, int* index) {
    if (index) *index = -1;
    return kOfxStatFailed;
}
OfxStatus NoKey(OfxParamHandle, OfxTime) {
    return kOfxStatErrBadIndex;
}
OfxStatus NoKeys(OfxParamHandle parameter) {
    return parameter ? kOfxStatOK : kOfxStatErrBadHandle;
}

OfxStatus Copy(OfxParamHandle to, OfxParamHandle from, OfxTime, const OfxRangeD*) {
    if (!to || !from) return kOfxStatErrBadHandle;
    if (ParameterOf(to)->type != ParameterOf(from)->type) return kOfxStatErrValue;
    ParameterOf(to)->value = ParameterOf(from)->value;
    return kOfxStatOK;
}

OfxStatus EditBegin(OfxParamSetHandle set, const char*) {
    return set ? kOfxStatOK : kOfxStatErrBadHandle;
}
OfxStatus EditEnd(OfxParamSetHandle set) {
    return set ? kOfxStatOK : kOfxStatErrBadHandle;
}

}  // namespace

OpenFxParameter* OpenFxParameterSet::Find(const std::string& name) const {
    for (const auto& each : parameters) {
        if (each->name == name) return each.get();
    }
    return nullptr;
}

int ValueCount(const std::string& parameterType) {
    const auto found = Types().find(parameterType);
    return found == Types().end() ? -1 : found->second.count;
}

const OfxParameterSuiteV1& ParameterSuite() {
    static const OfxParameterSuiteV1 suite = {Define,     GetHandle,      SetProperties, ParameterProperties,
                                              GetValue,   GetValueAtTime, NoDerivative,  NoIntegral,
                                              SetValue,   SetValueAtTime, NumKeys,       NoKeyTime,
                                              NoKeyIndex, NoKey,          NoKeys,        Copy,
                                              EditBegin,  EditEnd};
    return suite;
}

}  // namespace umbrant::host
