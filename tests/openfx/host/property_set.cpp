// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The properties of an object, and what a plug-in may do with them.

#include "tests/openfx/host/property_set.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "tests/openfx/host/host.h"
#include "tests/openfx/host/tables/property_rules.h"

namespace umbrant::ofx {

namespace {

PropertyValue Zero(std::string_view type) {
    if (type == "int") return 0;
    if (type == "double") return 0.0;
    if (type == "string") return std::string();
    return static_cast<void*>(nullptr);
}

std::string TextOf(const PropertyValue& value) {
    if (const auto* number = std::get_if<int>(&value)) return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&value)) return "'" + *text + "'";
    if (const auto* number = std::get_if<double>(&value)) return std::to_string(*number);
    return "a pointer";
}

/// The properties that an object of one of these kinds has. A host makes thousands of objects of few kinds, from
/// several threads; to read the table's texts for each of them takes three quarters of a test's time.
const std::vector<const PropertyRow*>& RowsOf(const std::vector<std::string>& kinds) {
    static std::mutex mutex;
    static std::map<std::vector<std::string>, std::vector<const PropertyRow*>> known;
    const std::lock_guard lock(mutex);
    const auto [rows, isNew] = known.try_emplace(kinds);
    if (isNew) {
        for (const PropertyRow& row : PropertyTable()) {
            const bool here =
                std::any_of(kinds.begin(), kinds.end(), [&](const std::string& name) { return LivesIn(row, name); });
            if (here) rows->second.push_back(&row);
        }
    }
    return rows->second;
}

}  // namespace

std::string_view TypeOf(const PropertyValue& value) {
    static constexpr std::string_view kNames[] = {"int", "double", "string", "pointer"};
    return kNames[value.index()];
}

PropertySet::PropertySet(Host& host, PropertySetKind kind) : Object(host), kind_(std::move(kind)) {
    if (kind_.kinds.front() == "inArgs" || kind_.kinds.front() == "outArgs") return;
    for (const PropertyRow* row : RowsOf(kind_.kinds)) Define(*row);
}

PropertySet::Property PropertySet::Made(const PropertyRow& row) const {
    const bool several = row.types.find('/') != std::string_view::npos;
    const bool any = row.dimension == "N" || row.dimension == "2n";
    Property property{std::string(several && !kind_.valueType.empty() ? kind_.valueType : row.types),
                      several ? kind_.valueCount
                      : any   ? 0
                              : std::stoi(std::string(row.dimension))};
    const auto initial = Defaults().find(row.name);
    const PropertyValue value = initial != Defaults().end() ? initial->second : Zero(property.type);
    property.values.assign(static_cast<std::size_t>(property.dimension), value);
    property.defaults = property.values;
    return property;
}

void PropertySet::Define(const PropertyRow& row) {
    if (!TheHost().Lacks(row)) properties_[std::string(row.name)] = Made(row);
}

void PropertySet::Put(const std::string& name, std::vector<PropertyValue> values) {
    const PropertyRow* row = FindProperty(name);
    if (row == nullptr || TheHost().Lacks(*row)) return;
    const std::lock_guard lock(mutex_);
    if (!properties_.contains(name)) properties_[name] = Made(*row);
    properties_[name].values = values;
    properties_[name].defaults = std::move(values);
}

bool PropertySet::Has(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    return properties_.contains(name);
}

int PropertySet::Count(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = properties_.find(name);
    return found == properties_.end() ? 0 : static_cast<int>(found->second.values.size());
}

PropertyValue PropertySet::Value(const std::string& name, int index, PropertyValue otherwise) const {
    const std::lock_guard lock(mutex_);
    const auto found = properties_.find(name);
    if (found == properties_.end() || index >= static_cast<int>(found->second.values.size())) return otherwise;
    const PropertyValue& value = found->second.values[static_cast<std::size_t>(index)];
    return value.index() == otherwise.index() ? value : otherwise;
}

int PropertySet::Int(const std::string& name, int index) const {
    return std::get<int>(Value(name, index, 0));
}
double PropertySet::Double(const std::string& name, int index) const {
    return std::get<double>(Value(name, index, 0.0));
}
std::string PropertySet::String(const std::string& name, int index) const {
    return std::get<std::string>(Value(name, index, std::string()));
}
void* PropertySet::Pointer(const std::string& name, int index) const {
    return std::get<void*>(Value(name, index, static_cast<void*>(nullptr)));
}

std::vector<std::string> PropertySet::Strings(const std::string& name) const {
    std::vector<std::string> texts;
    for (int index = 0; index < Count(name); ++index) texts.push_back(String(name, index));
    return texts;
}

bool PropertySet::WasSet(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = properties_.find(name);
    return found != properties_.end() && found->second.set;
}

void PropertySet::CopyFrom(const PropertySet& other) {
    const std::scoped_lock lock(mutex_, other.mutex_);
    for (const auto& [name, property] : other.properties_) {
        if (const auto found = properties_.find(name); found != properties_.end()) found->second = property;
    }
}

std::string PropertySet::Where(std::string_view function, std::string_view name) const {
    return std::string(function) + ": the property " + std::string(name) + " of " + kind_.label;
}

OfxStatus PropertySet::Find(std::string_view function, const char* name, Property*& property) {
    if (name == nullptr) {
        TheHost().record.Violation(std::string(function) + ": no name for a property of " + kind_.label);
        return kOfxStatErrUnknown;
    }
    if (const auto found = properties_.find(name); found != properties_.end()) {
        property = &found->second;
        return kOfxStatOK;
    }
    const PropertyRow* row = FindProperty(name);
    if (row == nullptr) {
        TheHost().record.Violation(Where(function, name) + " is unknown to the standard");
    } else if (std::none_of(kind_.kinds.begin(), kind_.kinds.end(),
                            [&](const std::string& kind) { return LivesIn(*row, kind); })) {
        TheHost().record.Violation(Where(function, name) + " belongs to " +
                                   (row->where.empty() ? "no object" : std::string(row->where)));
    }
    return kOfxStatErrUnknown;
}

OfxStatus PropertySet::CheckWrite(std::string_view function, const char* name, const Property& property,
                                  const PropertyValue& value) {
    Record& record = TheHost().record;
    if (kind_.access == Access::kReadOnly ||
        (kind_.access == Access::kSomeWritable && !WritableOnInstances().contains(name))) {
        record.Violation(Where(function, name) + " is read-only");
        return kOfxStatErrValue;
    }
    if (TypeOf(value) != property.type) {
        record.Violation(Where(function, name) + " has the type " + property.type + ", not " +
                         std::string(TypeOf(value)));
        return kOfxStatErrValue;
    }
    const PropertyRow* row = FindProperty(name);
    if (!row->values.empty() && property.type != "pointer") {
        const std::string text =
            property.type == "int" ? std::to_string(std::get<int>(value)) : std::get<std::string>(value);
        const auto allowed = Split(row->values, "|");
        if (std::find(allowed.begin(), allowed.end(), text) == allowed.end()) {
            record.Violation(Where(function, name) + " may be " + std::string(row->values) + ", not " + TextOf(value));
            return kOfxStatErrValue;
        }
    }
    return kOfxStatOK;
}

void PropertySet::Follow(std::string_view name, const Property& property) {
    for (const auto& [leader, follower] : Followers()) {
        const auto found = properties_.find(std::string(follower));
        if (leader == name && found != properties_.end()) found->second.values = property.values;
    }
}

OfxStatus PropertySet::SetOne(std::string_view function, const char* name, int index, PropertyValue value) {
    const std::lock_guard lock(mutex_);
    Property* property = nullptr;
    if (const OfxStatus status = Find(function, name, property)) return status;
    if (const OfxStatus status = CheckWrite(function, name, *property, value)) return status;
    const int count = static_cast<int>(property->values.size());
    // A property of any dimension may grow by one at its end.
    if (index < 0 || index >= count + (property->dimension == 0 ? 1 : 0)) {
        // An earlier index may be what failed.
        if (!TheHost().record.HasFaults()) {
            TheHost().record.Violation(Where(function, name) + " has " + std::to_string(count) +
                                       " value(s), no index " + std::to_string(index));
        }
        return kOfxStatErrBadIndex;
    }
    if (index == count) property->values.resize(property->values.size() + 1);
    property->values[static_cast<std::size_t>(index)] = std::move(value);
    property->set = true;
    Follow(name, *property);
    return kOfxStatOK;
}

OfxStatus PropertySet::SetAll(std::string_view function, const char* name, std::vector<PropertyValue> values) {
    const std::lock_guard lock(mutex_);
    Property* property = nullptr;
    if (const OfxStatus status = Find(function, name, property)) return status;
    for (const PropertyValue& value : values) {
        if (const OfxStatus status = CheckWrite(function, name, *property, value)) return status;
    }
    if (property->dimension != 0 && static_cast<int>(values.size()) != property->dimension) {
        TheHost().record.Violation(Where(function, name) + " has " + std::to_string(property->dimension) +
                                   " value(s), not " + std::to_string(values.size()));
        return kOfxStatErrBadIndex;
    }
    property->values = std::move(values);
    property->set = true;
    Follow(name, *property);
    return kOfxStatOK;
}

OfxStatus PropertySet::GetOne(std::string_view function, const char* name, int index, std::string_view type,
                              PropertyValue& value) {
    const std::lock_guard lock(mutex_);
    Property* property = nullptr;
    if (const OfxStatus status = Find(function, name, property)) return status;
    if (property->type != type) {
        TheHost().record.Violation(Where(function, name) + " has the type " + property->type + ", not " +
                                   std::string(type));
        return kOfxStatErrValue;
    }
    if (index < 0 || index >= static_cast<int>(property->values.size())) {
        TheHost().record.Violation(Where(function, name) + " has " + std::to_string(property->values.size()) +
                                   " value(s), no index " + std::to_string(index));
        return kOfxStatErrBadIndex;
    }
    value = property->values[static_cast<std::size_t>(index)];
    return kOfxStatOK;
}

OfxStatus PropertySet::Reset(const char* name) {
    const std::lock_guard lock(mutex_);
    Property* property = nullptr;
    if (const OfxStatus status = Find("propReset", name, property)) return status;
    if (kind_.access == Access::kReadOnly) {
        TheHost().record.Violation(Where("propReset", name) + " is read-only");
        return kOfxStatErrValue;
    }
    property->values = property->defaults;
    return kOfxStatOK;
}

OfxStatus PropertySet::Dimension(const char* name, int& count) {
    const std::lock_guard lock(mutex_);
    Property* property = nullptr;
    if (const OfxStatus status = Find("propGetDimension", name, property)) return status;
    count = static_cast<int>(property->values.size());
    return kOfxStatOK;
}

}  // namespace umbrant::ofx
