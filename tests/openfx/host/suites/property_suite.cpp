// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxPropertySuite: the plug-in's side of property sets.

#include <utility>

#include "tests/openfx/host/host.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

constexpr const char* kSet = "a property set";

PropertyValue ValueOf(int value) {
    return value;
}
PropertyValue ValueOf(double value) {
    return value;
}
PropertyValue ValueOf(const char* value) {
    return std::string(value);
}
PropertyValue ValueOf(void* value) {
    return value;
}

bool IsNullText(const char* text) {
    return text == nullptr;
}
template <typename T>
bool IsNullText(T) {
    return false;
}

void Hand(const PropertyValue& value, int* out) {
    *out = std::get<int>(value);
}
void Hand(const PropertyValue& value, double* out) {
    *out = std::get<double>(value);
}
void Hand(const PropertyValue& value, char** out) {
    *out = Host::TemporaryString(std::get<std::string>(value));
}
void Hand(const PropertyValue& value, void** out) {
    *out = std::get<void*>(value);
}

/// Begins a function; null with a status if it must not go on.
PropertySet* Begin(const char* function, OfxPropertySetHandle handle, OfxStatus& status) {
    Host& host = *Host::Current();
    status = host.Enter(function);
    if (status != kOfxStatOK) return nullptr;
    PropertySet* set = host.Find<PropertySet>(handle, function, kSet);
    if (set == nullptr) status = kOfxStatErrBadHandle;
    return set;
}

OfxStatus NullValue(const char* function, const char* name) {
    Host::Current()->record.Violation(std::string(function) + ": a null pointer for the property " +
                                      (name == nullptr ? "(null)" : name));
    return kOfxStatErrValue;
}

template <typename T>
OfxStatus SetOne(const char* function, OfxPropertySetHandle handle, const char* name, int index, T value) {
    OfxStatus status = kOfxStatOK;
    PropertySet* set = Begin(function, handle, status);
    if (set == nullptr) return status;
    if (IsNullText(value)) return NullValue(function, name);
    return set->SetOne(function, name, index, ValueOf(value));
}

template <typename T>
OfxStatus SetAll(const char* function, OfxPropertySetHandle handle, const char* name, int count, T const* values) {
    OfxStatus status = kOfxStatOK;
    PropertySet* set = Begin(function, handle, status);
    if (set == nullptr) return status;
    if (values == nullptr && count > 0) return NullValue(function, name);
    std::vector<PropertyValue> all;
    for (int i = 0; i < count; ++i) {
        if (IsNullText(values[i])) return NullValue(function, name);
        all.push_back(ValueOf(values[i]));
    }
    return set->SetAll(function, name, std::move(all));
}

template <typename T>
OfxStatus GetSeveral(const char* function, OfxPropertySetHandle handle, const char* name, int first, int count,
                     std::string_view type, T* out) {
    OfxStatus status = kOfxStatOK;
    PropertySet* set = Begin(function, handle, status);
    if (set == nullptr) return status;
    if (out == nullptr) return NullValue(function, name);
    std::vector<PropertyValue> values(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        status = set->GetOne(function, name, first + i, type, values[static_cast<std::size_t>(i)]);
        // What was not got stays as it was.
        if (status != kOfxStatOK) return status;
    }
    for (int i = 0; i < count; ++i) Hand(values[static_cast<std::size_t>(i)], out + i);
    return kOfxStatOK;
}

OfxStatus SetPointer(OfxPropertySetHandle set, const char* name, int index, void* value) {
    return SetOne("propSetPointer", set, name, index, value);
}
OfxStatus SetString(OfxPropertySetHandle set, const char* name, int index, const char* value) {
    return SetOne("propSetString", set, name, index, value);
}
OfxStatus SetDouble(OfxPropertySetHandle set, const char* name, int index, double value) {
    return SetOne("propSetDouble", set, name, index, value);
}
OfxStatus SetInt(OfxPropertySetHandle set, const char* name, int index, int value) {
    return SetOne("propSetInt", set, name, index, value);
}
OfxStatus SetPointerN(OfxPropertySetHandle set, const char* name, int count, void* const* values) {
    return SetAll("propSetPointerN", set, name, count, values);
}
OfxStatus SetStringN(OfxPropertySetHandle set, const char* name, int count, const char* const* values) {
    return SetAll("propSetStringN", set, name, count, values);
}
OfxStatus SetDoubleN(OfxPropertySetHandle set, const char* name, int count, const double* values) {
    return SetAll("propSetDoubleN", set, name, count, values);
}
OfxStatus SetIntN(OfxPropertySetHandle set, const char* name, int count, const int* values) {
    return SetAll("propSetIntN", set, name, count, values);
}
OfxStatus GetPointer(OfxPropertySetHandle set, const char* name, int index, void** out) {
    return GetSeveral("propGetPointer", set, name, index, 1, "pointer", out);
}
OfxStatus GetString(OfxPropertySetHandle set, const char* name, int index, char** out) {
    return GetSeveral("propGetString", set, name, index, 1, "string", out);
}
OfxStatus GetDouble(OfxPropertySetHandle set, const char* name, int index, double* out) {
    return GetSeveral("propGetDouble", set, name, index, 1, "double", out);
}
OfxStatus GetInt(OfxPropertySetHandle set, const char* name, int index, int* out) {
    return GetSeveral("propGetInt", set, name, index, 1, "int", out);
}
OfxStatus GetPointerN(OfxPropertySetHandle set, const char* name, int count, void** out) {
    return GetSeveral("propGetPointerN", set, name, 0, count, "pointer", out);
}
OfxStatus GetStringN(OfxPropertySetHandle set, const char* name, int count, char** out) {
    return GetSeveral("propGetStringN", set, name, 0, count, "string", out);
}
OfxStatus GetDoubleN(OfxPropertySetHandle set, const char* name, int count, double* out) {
    return GetSeveral("propGetDoubleN", set, name, 0, count, "double", out);
}
OfxStatus GetIntN(OfxPropertySetHandle set, const char* name, int count, int* out) {
    return GetSeveral("propGetIntN", set, name, 0, count, "int", out);
}
OfxStatus Reset(OfxPropertySetHandle handle, const char* name) {
    OfxStatus status = kOfxStatOK;
    PropertySet* set = Begin("propReset", handle, status);
    return set == nullptr ? status : set->Reset(name);
}
OfxStatus GetDimension(OfxPropertySetHandle handle, const char* name, int* count) {
    OfxStatus status = kOfxStatOK;
    PropertySet* set = Begin("propGetDimension", handle, status);
    if (set == nullptr) return status;
    return count == nullptr ? NullValue("propGetDimension", name) : set->Dimension(name, *count);
}

}  // namespace

const OfxPropertySuiteV1& PropertySuite() {
    static const OfxPropertySuiteV1 suite = {SetPointer,  SetString,  SetDouble,  SetInt,    SetPointerN, SetStringN,
                                             SetDoubleN,  SetIntN,    GetPointer, GetString, GetDouble,   GetInt,
                                             GetPointerN, GetStringN, GetDoubleN, GetIntN,   Reset,       GetDimension};
    return suite;
}

}  // namespace umbrant::ofx
