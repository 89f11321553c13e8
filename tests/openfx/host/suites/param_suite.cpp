// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxParameterSuite: definitions, values, keys.

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdarg>
#include <utility>

#include "tests/openfx/host/host.h"
#include "tests/openfx/host/param.h"
#include "tests/openfx/host/suites/begin.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

Record& TheRecord() {
    return Host::Current()->record;
}

ParamSet* BeginSet(const char* function, OfxParamSetHandle handle, OfxStatus& status) {
    return Begin<ParamSet>(function, handle, "a parameter set", status);
}
/// Begins a function on a parameter that has values.
Param* BeginValue(const char* function, OfxParamHandle handle, OfxStatus& status) {
    auto* param = Begin<Param>(function, handle, "a parameter", status);
    if (param == nullptr || param->Type().count > 0) return param;
    TheRecord().Violation(std::string(function) + ": the parameter " + param->Name() + " has no value");
    status = kOfxStatErrUnsupported;
    return nullptr;
}

bool IsScriptName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(),
                                        [](unsigned char c) { return c == '_' || (c < 0x80 && std::isalnum(c) != 0); });
}

OfxStatus Define(OfxParamSetHandle handle, const char* type, const char* name, OfxPropertySetHandle* properties) {
    OfxStatus status = kOfxStatOK;
    ParamSet* set = BeginSet("paramDefine", handle, status);
    if (set == nullptr) return status;
    if (set->IsInstance()) {
        TheRecord().Violation("paramDefine was called outside of OfxImageEffectActionDescribeInContext");
        return kOfxStatErrBadHandle;
    }
    const std::string text = name == nullptr ? "" : name;
    if (!IsScriptName(text)) {
        TheRecord().Violation("paramDefine: the name '" + text + "' has other characters than letters, digits and _");
        return kOfxStatErrValue;
    }
    const ParamType* known = type == nullptr ? nullptr : FindParamType(type);
    if (known == nullptr) {
        TheRecord().Violation("paramDefine: the parameter " + text + " has an unknown type");
        return kOfxStatErrUnsupported;
    }
    if (set->Find(text) != nullptr) {
        TheRecord().Violation("paramDefine: the parameter " + text + " is defined twice");
        return kOfxStatErrExists;
    }
    Param& param = set->Add(text, *known);
    if (properties != nullptr) *properties = param.Properties().As<OfxPropertySetHandle>();
    return kOfxStatOK;
}

OfxStatus GetHandle(OfxParamSetHandle handle, const char* name, OfxParamHandle* param,
                    OfxPropertySetHandle* properties) {
    OfxStatus status = kOfxStatOK;
    ParamSet* set = BeginSet("paramGetHandle", handle, status);
    if (set == nullptr) return status;
    Param* found = name == nullptr ? nullptr : set->Find(name);
    if (found == nullptr) {
        // The definition may be what failed.
        if (TheRecord().HasFaults()) return kOfxStatErrUnknown;
        TheRecord().Violation("paramGetHandle: no parameter " + std::string(name == nullptr ? "(null)" : name));
        return kOfxStatErrUnknown;
    }
    *param = found->As<OfxParamHandle>();
    if (properties != nullptr) *properties = found->Properties().As<OfxPropertySetHandle>();
    return kOfxStatOK;
}

OfxStatus SetGetPropertySet(OfxParamSetHandle handle, OfxPropertySetHandle* properties) {
    OfxStatus status = kOfxStatOK;
    ParamSet* set = BeginSet("paramSetGetPropertySet", handle, status);
    if (set != nullptr) *properties = set->Properties().As<OfxPropertySetHandle>();
    return status;
}

OfxStatus GetPropertySet(OfxParamHandle handle, OfxPropertySetHandle* properties) {
    OfxStatus status = kOfxStatOK;
    auto* param = Begin<Param>("paramGetPropertySet", handle, "a parameter", status);
    if (param != nullptr) *properties = param->Properties().As<OfxPropertySetHandle>();
    return status;
}

void HandOver(const Param& param, const ParamValue& value, std::va_list out) {
    for (const PropertyValue& part : value) {
        if (param.Type().value == "int") *va_arg(out, int*) = std::get<int>(part);
        if (param.Type().value == "double") *va_arg(out, double*) = std::get<double>(part);
        if (param.Type().value == "string") *va_arg(out, char**) = Host::TemporaryString(std::get<std::string>(part));
    }
}

OfxStatus GetValue(OfxParamHandle handle, ...) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramGetValue", handle, status);
    if (param == nullptr) return status;
    if (Host::Current()->InRender() && !param->KeyTimes().empty()) {
        TheRecord().Violation("paramGetValue: the parameter " + param->Name() +
                              " is animated; a render must use paramGetValueAtTime");
    }
    std::va_list out;
    va_start(out, handle);
    HandOver(*param, param->Constant(), out);
    va_end(out);
    return kOfxStatOK;
}

OfxStatus GetValueAtTime(OfxParamHandle handle, OfxTime time, ...) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramGetValueAtTime", handle, status);
    if (param == nullptr) return status;
    std::va_list out;
    va_start(out, time);
    HandOver(*param, param->At(time), out);
    va_end(out);
    return kOfxStatOK;
}

/// This host has no derivatives and integrals, as many hosts.
OfxStatus GetDerivative(OfxParamHandle handle, OfxTime, ...) {
    OfxStatus status = kOfxStatOK;
    return BeginValue("paramGetDerivative", handle, status) == nullptr ? status : OfxStatus(kOfxStatErrUnsupported);
}
OfxStatus GetIntegral(OfxParamHandle handle, OfxTime, OfxTime, ...) {
    OfxStatus status = kOfxStatOK;
    return BeginValue("paramGetIntegral", handle, status) == nullptr ? status : OfxStatus(kOfxStatErrUnsupported);
}

/// Reads the values of a variadic call. False, with a violation, for values that the parameter cannot have.
bool ReadValue(const char* function, Param& param, std::va_list in, ParamValue& value) {
    for (int i = 0; i < param.Type().count; ++i) {
        if (param.Type().value == "int") value.emplace_back(va_arg(in, int));
        if (param.Type().value == "double") value.emplace_back(va_arg(in, double));
        if (param.Type().value == "string") {
            const char* text = va_arg(in, const char*);
            value.emplace_back(std::string(text == nullptr ? "" : text));
        }
    }
    const std::string where = std::string(function) + ": the parameter " + param.Name();
    if (const RunningAction* action = Host::Action(); Host::Current()->InRender()) {
        TheRecord().Violation(where + " was set during " + action->name);
        return false;
    }
    for (const PropertyValue& part : value) {
        const double* number = std::get_if<double>(&part);
        if (number != nullptr && !std::isfinite(*number)) {
            TheRecord().Violation(where + " was set to a number that is not finite");
            return false;
        }
    }
    const bool choice = param.Type().name == "OfxParamTypeChoice";
    const int last = choice ? param.Properties().Count("OfxParamPropChoiceOption") - 1 : 1;
    const bool limited = choice || param.Type().name == "OfxParamTypeBoolean";
    if (limited && (std::get<int>(value.front()) < 0 || std::get<int>(value.front()) > last)) {
        TheRecord().Violation(where + " has no value " + std::to_string(std::get<int>(value.front())));
        return false;
    }
    return true;
}

/// Reports the plug-in's own change to it, as the standard requires.
void Announce(Param& param) {
    if (param.owner != nullptr && param.owner->changed) param.owner->changed(param);
}

OfxStatus SetValue(OfxParamHandle handle, ...) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramSetValue", handle, status);
    if (param == nullptr) return status;
    ParamValue value;
    std::va_list in;
    va_start(in, handle);
    const bool valid = ReadValue("paramSetValue", *param, in, value);
    va_end(in);
    if (!valid) return kOfxStatErrValue;
    param->Set(std::move(value));
    Announce(*param);
    return kOfxStatOK;
}

OfxStatus SetValueAtTime(OfxParamHandle handle, OfxTime time, ...) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramSetValueAtTime", handle, status);
    if (param == nullptr) return status;
    ParamValue value;
    std::va_list in;
    va_start(in, time);
    const bool valid = ReadValue("paramSetValueAtTime", *param, in, value);
    va_end(in);
    if (!valid) return kOfxStatErrValue;
    param->SetKey(time, std::move(value));
    Announce(*param);
    return kOfxStatOK;
}

OfxStatus GetNumKeys(OfxParamHandle handle, unsigned int* count) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramGetNumKeys", handle, status);
    if (param != nullptr) *count = static_cast<unsigned>(param->KeyTimes().size());
    return status;
}

OfxStatus GetKeyTime(OfxParamHandle handle, unsigned int nth, OfxTime* time) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramGetKeyTime", handle, status);
    if (param == nullptr) return status;
    const std::vector<double> times = param->KeyTimes();
    if (nth >= times.size()) return kOfxStatErrBadIndex;
    *time = times[nth];
    return kOfxStatOK;
}

OfxStatus GetKeyIndex(OfxParamHandle handle, OfxTime time, int direction, int* index) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramGetKeyIndex", handle, status);
    if (param == nullptr) return status;
    const std::vector<double> times = param->KeyTimes();
    *index = -1;
    for (int i = 0; i < static_cast<int>(times.size()); ++i) {
        const double at = times[static_cast<std::size_t>(i)];
        if (direction == 0 && at == time) *index = i;
        if (direction < 0 && at < time) *index = i;
        if (direction > 0 && at > time && *index < 0) *index = i;
    }
    return *index < 0 ? OfxStatus(kOfxStatFailed) : OfxStatus(kOfxStatOK);
}

OfxStatus DeleteKey(OfxParamHandle handle, OfxTime time) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramDeleteKey", handle, status);
    if (param == nullptr) return status;
    return param->RemoveKey(time) ? OfxStatus(kOfxStatOK) : OfxStatus(kOfxStatErrBadIndex);
}

OfxStatus DeleteAllKeys(OfxParamHandle handle) {
    OfxStatus status = kOfxStatOK;
    Param* param = BeginValue("paramDeleteAllKeys", handle, status);
    if (param != nullptr) param->RemoveKeys();
    return status;
}

OfxStatus Copy(OfxParamHandle to, OfxParamHandle from, OfxTime, const OfxRangeD*) {
    OfxStatus status = kOfxStatOK;
    Param* target = BeginValue("paramCopy", to, status);
    if (target == nullptr) return status;
    auto* source = Host::Current()->Find<Param>(from, "paramCopy", "a parameter");
    if (source == nullptr || source->Type().name != target->Type().name) return kOfxStatErrBadHandle;
    target->Set(source->Constant());
    return kOfxStatOK;
}

OfxStatus EditBegin(OfxParamSetHandle handle, const char*) {
    OfxStatus status = kOfxStatOK;
    if (BeginSet("paramEditBegin", handle, status) != nullptr) TheRecord().Open("paramEditBegin", 1);
    return status;
}

OfxStatus EditEnd(OfxParamSetHandle handle) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("paramEditEnd");
    if (host.Find<ParamSet>(handle, "paramEditEnd", "a parameter set") == nullptr) return kOfxStatErrBadHandle;
    host.record.Open("paramEditBegin", -1);
    return fault;
}

}  // namespace

const OfxParameterSuiteV1& ParameterSuite() {
    static const OfxParameterSuiteV1 suite = {
        Define,        GetHandle,   SetGetPropertySet, GetPropertySet, GetValue,   GetValueAtTime,
        GetDerivative, GetIntegral, SetValue,          SetValueAtTime, GetNumKeys, GetKeyTime,
        GetKeyIndex,   DeleteKey,   DeleteAllKeys,     Copy,           EditBegin,  EditEnd,
    };
    return suite;
}

}  // namespace umbrant::ofx
