// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Properties as this host keeps them. Any property can be set, of any length, as plug-ins of many vendors set more than
// a host knows; reading one that is absent or of another type fails.

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "openfx/abi/property_suite.h"

namespace umbrant::host {

class PropertySet {
 public:
    using Value = std::variant<int, double, std::string, void*>;
    using Values = std::vector<Value>;

    /// The set behind a plug-in's handle, which is one that `Handle` returned.
    static PropertySet* Of(OfxPropertySetHandle handle) { return reinterpret_cast<PropertySet*>(handle); }
    OfxPropertySetHandle Handle() { return reinterpret_cast<OfxPropertySetHandle>(this); }

    /// Sets a property of the host's; it is also what a reset returns to.
    void Declare(const std::string& name, Values values) { initial_[name] = values_[name] = std::move(values); }
    void Set(const std::string& name, int index, Value value);
    /// Replaces the whole property.
    void SetAll(const std::string& name, Values values) { values_[name] = std::move(values); }
    void Reset(const std::string& name);

    /// Null when the property is absent.
    const Values* Find(const std::string& name) const;
    /// An element, or the fallback where it is absent or of another type.
    template <typename Type>
    Type Get(const std::string& name, Type fallback, std::size_t index = 0) const {
        const Values* const values = Find(name);
        if (!values || index >= values->size()) return fallback;
        const auto* const value = std::get_if<Type>(&(*values)[index]);
        return value ? *value : fallback;
    }
    /// Whether one of its elements is this text.
    bool Has(const std::string& name, const std::string& text) const;

 private:
    std::map<std::string, Values> values_;
    std::map<std::string, Values> initial_;
};

/// The functions that plug-ins call. Any thread.
const OfxPropertySuiteV1& PropertySuite();

}  // namespace umbrant::host
