// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Parameters: what a plug-in defines, and the values of an instance with their keys.

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tests/openfx/host/property_set.h"

namespace umbrant::ofx {

using ParamValue = std::vector<PropertyValue>;

/// What the standard says of a parameter's type.
struct ParamType {
    std::string_view name;
    std::string_view value;  ///< "int", "double", "string", or empty for a row without a value
    int count = 0;
    std::vector<std::string> kinds;  ///< in the table of properties
};
/// Null for a type that the standard lacks or that this host does not have.
const ParamType* FindParamType(std::string_view name);

class ParamSet;

class Param : public Object {
 public:
    Param(Host& host, std::string name, const ParamType& type, bool instance);

    const std::string& Name() const { return name_; }
    const ParamType& Type() const { return type_; }
    PropertySet& Properties() { return properties_; }

    /// The value at a time: numbers between two keys are interpolated, everything else steps.
    ParamValue At(double time) const;
    ParamValue Constant() const;
    void Set(ParamValue value);
    void SetKey(double time, ParamValue value);
    std::vector<double> KeyTimes() const;
    bool RemoveKey(double time);
    void RemoveKeys();

    ParamSet* owner = nullptr;  ///< of an instance

 private:
    std::string name_;
    const ParamType& type_;
    PropertySet properties_;
    mutable std::mutex mutex_;
    ParamValue constant_;
    std::map<double, ParamValue> keys_;
};

class ParamSet : public Object {
 public:
    ParamSet(Host& host, std::string label, bool instance);

    bool IsInstance() const { return instance_; }
    PropertySet& Properties() { return properties_; }
    const std::vector<std::unique_ptr<Param>>& All() const { return params_; }
    /// Null if there is no such parameter.
    Param* Find(std::string_view name) const;
    Param& Add(const std::string& name, const ParamType& type);
    /// Defines everything that a descriptor has, with its defaults as values.
    void Instantiate(const ParamSet& descriptor);

    /// Called when the plug-in has set a value of an instance.
    std::function<void(Param&)> changed;

 private:
    bool instance_;
    PropertySet properties_;
    std::vector<std::unique_ptr<Param>> params_;
};

}  // namespace umbrant::ofx
