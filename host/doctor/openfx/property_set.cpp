// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/property_set.h"

#include <algorithm>
#include <cstddef>
#include <mutex>

namespace umbrant::host {

namespace {

/// A property of more elements than this is a mistake of the plug-in's, and would only use up memory.
constexpr int kMostElements = 1 << 16;

// Frames are drawn on several threads, each of which may read and write.
std::mutex propertyMutex;

/// The plug-in's type of an element, from ours.
template <typename Type>
Type Outward(const PropertySet::Value& value) {
    return std::get<Type>(value);
}
template <>
char* Outward<char*>(const PropertySet::Value& value) {
    return const_cast<char*>(std::get<std::string>(value).c_str());
}

template <typename Type>
bool Holds(const PropertySet::Value& value) {
    return std::holds_alternative<Type>(value);
}
template <>
bool Holds<char*>(const PropertySet::Value& value) {
    return std::holds_alternative<std::string>(value);
}

PropertySet::Value Inward(int value) {
    return value;
}
PropertySet::Value Inward(double value) {
    return value;
}
PropertySet::Value Inward(void* value) {
    return value;
}
PropertySet::Value Inward(const char* value) {
    return std::string(value ? value : "");
}

template <typename Type>
OfxStatus SetOne(OfxPropertySetHandle set, const char* name, int index, Type value) {
    if (!set || !name) return kOfxStatErrBadHandle;
    if (index < 0 || index >= kMostElements) return kOfxStatErrBadIndex;
    const std::lock_guard lock(propertyMutex);
    PropertySet::Of(set)->Set(name, index, Inward(value));
    return kOfxStatOK;
}

template <typename Type>
OfxStatus SetMany(OfxPropertySetHandle set, const char* name, int count, const Type* values) {
    if (!set || !name) return kOfxStatErrBadHandle;
    if (count < 0 || count > kMostElements || (count > 0 && !values)) return kOfxStatErrBadIndex;
    const std::lock_guard lock(propertyMutex);
    PropertySet::Values all;
    for (int i = 0; i < count; ++i) all.push_back(Inward(values[i]));
    PropertySet::Of(set)->SetAll(name, std::move(all));
    return kOfxStatOK;
}

template <typename Type>
OfxStatus GetMany(OfxPropertySetHandle set, const char* name, int first, int count, Type* out) {
    if (!set || !name) return kOfxStatErrBadHandle;
    const std::lock_guard lock(propertyMutex);
    const PropertySet::Values* const values = PropertySet::Of(set)->Find(name);
    if (!values) return kOfxStatErrUnknown;
    if (!out || first < 0 || count < 0 ||
        static_cast<std::size_t>(first) + static_cast<std::size_t>(count) > values->size())
        return kOfxStatErrBadIndex;
    for (int i = 0; i < count; ++i) {
        const PropertySet::Value& value = (*values)[static_cast<std::size_t>(first + i)];
        if (!Holds<Type>(value)) return kOfxStatErrValue;
        out[i] = Outward<Type>(value);
    }
    return kOfxStatOK;
}

template <typename Type>
OfxStatus GetOne(OfxPropertySetHandle set, const char* name, int index, Type* out) {
    return GetMany(set, name, index, 1, out);
}
template <typename Type>
OfxStatus GetSeveral(OfxPropertySetHandle set, const char* name, int count, Type* out) {
    return GetMany(set, name, 0, count, out);
}

OfxStatus ResetOne(OfxPropertySetHandle set, const char* name) {
    if (!set || !name) return kOfxStatErrBadHandle;
    const std::lock_guard lock(propertyMutex);
    if (!PropertySet::Of(set)->Find(name)) return kOfxStatErrUnknown;
    PropertySet::Of(set)->Reset(name);
    return kOfxStatOK;
}

OfxStatus DimensionOf(OfxPropertySetHandle set, const char* name, int* count) {
    if (!set || !name || !count) return kOfxStatErrBadHandle;
    const std::lock_guard lock(propertyMutex);
    const PropertySet::Values* const values = PropertySet::Of(set)->Find(name);
    if (!values) return kOfxStatErrUnknown;
    *count = static_cast<int>(values->size());
    return kOfxStatOK;
}

}  // namespace

void PropertySet::Set(const std::string& name, int index, Value value) {
    Values& values = values_[name];
    // Elements between are of the same type, and empty.
    while (values.size() <= static_cast<std::size_t>(index)) {
        values.push_back(std::visit([](const auto& any) -> Value { return std::decay_t<decltype(any)>{}; }, value));
    }
    values[static_cast<std::size_t>(index)] = std::move(value);
}

void PropertySet::Reset(const std::string& name) {
    const auto initial = initial_.find(name);
    if (initial == initial_.end()) {
        values_.erase(name);
    } else {
        values_[name] = initial->second;
    }
}

const PropertySet::Values* PropertySet::Find(const std::string& name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? nullptr : &found->second;
}

bool PropertySet::Has(const std::string& name, const std::string& text) const {
    const Values* const values = Find(name);
    return values && std::find(values->begin(), values->end(), Value(text)) != values->end();
}

const OfxPropertySuiteV1& PropertySuite() {
    static const OfxPropertySuiteV1 suite = {
        SetOne<void*>,     SetOne<const char*>,  SetOne<double>,     SetOne<int>,
        SetMany<void*>,    SetMany<const char*>, SetMany<double>,    SetMany<int>,
        GetOne<void*>,     GetOne<char*>,        GetOne<double>,     GetOne<int>,
        GetSeveral<void*>, GetSeveral<char*>,    GetSeveral<double>, GetSeveral<int>,
        ResetOne,          DimensionOf};
    return suite;
}

}  // namespace umbrant::host
