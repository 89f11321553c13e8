// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Property sets that know the standard: which properties an object has, of which type, dimension and values.

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tests/openfx/host/object.h"
#include "tests/openfx/host/tables/tables.h"

namespace umbrant::ofx {

using PropertyValue = std::variant<int, double, std::string, void*>;
/// The name of a value's type in the standard's tables: "int", "double", "string", "pointer".
std::string_view TypeOf(const PropertyValue& value);

/// Who may change a set besides the host.
enum class Access {
    kReadOnly,      ///< images, clips, arguments
    kWritable,      ///< descriptors, results of actions
    kSomeWritable,  ///< instances: the properties that the standard lists
};

struct PropertySetKind {
    std::string label;               ///< for sentences: "the image of clip Source"
    std::vector<std::string> kinds;  ///< as in PropertyRow::where
    Access access = Access::kReadOnly;
    /// Of the properties that have several types: which one, and how many values (defaults and limits of parameters).
    std::string_view valueType{};
    int valueCount = 1;
};

/// Each function of the plug-in's side takes the name of the suite function for sentences, and may run on any thread.
class PropertySet : public Object {
 public:
    /// Has every property of its kinds, except those that the host is to lack. Sets of arguments begin empty.
    PropertySet(Host& host, PropertySetKind kind);

    /// The host's side. Put creates the property if the set lacks it, unless the host is to lack it.
    void Put(const std::string& name, std::vector<PropertyValue> values);
    bool Has(const std::string& name) const;
    int Count(const std::string& name) const;
    /// The value, or that of an empty property: 0 or "".
    int Int(const std::string& name, int index = 0) const;
    double Double(const std::string& name, int index = 0) const;
    std::string String(const std::string& name, int index = 0) const;
    void* Pointer(const std::string& name, int index = 0) const;
    std::vector<std::string> Strings(const std::string& name) const;
    /// True if the plug-in has set the property.
    bool WasSet(const std::string& name) const;
    /// Takes the values of another set of this kind that this one has as well.
    void CopyFrom(const PropertySet& other);
    const std::string& Label() const { return kind_.label; }

    /// The plug-in's side.
    OfxStatus SetOne(std::string_view function, const char* name, int index, PropertyValue value);
    OfxStatus SetAll(std::string_view function, const char* name, std::vector<PropertyValue> values);
    OfxStatus GetOne(std::string_view function, const char* name, int index, std::string_view type,
                     PropertyValue& value);
    OfxStatus Reset(const char* name);
    OfxStatus Dimension(const char* name, int& count);

 private:
    struct Property {
        std::string type;
        int dimension = 1;  ///< 0: any
        std::vector<PropertyValue> values{};
        std::vector<PropertyValue> defaults{};
        bool set = false;
    };

    void Define(const PropertyRow& row);
    Property Made(const PropertyRow& row) const;
    /// Finds a property for the plug-in, or the status and, where the standard has no such property here, a violation.
    OfxStatus Find(std::string_view function, const char* name, Property*& property);
    OfxStatus CheckWrite(std::string_view function, const char* name, const Property& property,
                         const PropertyValue& value);
    /// Sets what follows this property.
    void Follow(std::string_view name, const Property& property);
    PropertyValue Value(const std::string& name, int index, PropertyValue otherwise) const;
    /// "propSetInt: the property OfxPropLabel of the effect's descriptor"
    std::string Where(std::string_view function, std::string_view name) const;

    PropertySetKind kind_;
    mutable std::mutex mutex_;
    std::map<std::string, Property> properties_;
};

}  // namespace umbrant::ofx
