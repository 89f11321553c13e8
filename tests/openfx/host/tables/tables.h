// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the standard says of properties and actions, as data.

#include <string>
#include <string_view>
#include <vector>

namespace umbrant::ofx {

/// One property. A name that ends with "_" is the beginning of a family: the name of a clip follows.
struct PropertyRow {
    std::string_view name;
    std::string_view types;      ///< "int", "double", "string", "pointer", or several with "/"
    std::string_view dimension;  ///< a number, "N", or "2n"
    std::string_view values;     ///< the allowed values with "|", or empty
    std::string_view where;      ///< the objects that have it, with "; "
    std::string_view since;      ///< "<=1.1", "1.2", ...
    bool hostMayLackIt;
};

/// One action and the statuses that it may answer, as "OK, Failed".
struct ActionRow {
    std::string_view name;
    std::string_view answers;
};

const std::vector<PropertyRow>& PropertyTable();
const std::vector<ActionRow>& ActionTable();

/// The row of a property, also of one of a family; null if the standard has no such name.
const PropertyRow* FindProperty(std::string_view name);
/// Null if the standard has no such action.
const ActionRow* FindAction(std::string_view name);

/// True if an object of this kind ("image", "parameter (numeric)") has the property.
bool LivesIn(const PropertyRow& row, std::string_view kind);

/// "OK", "Failed", "ErrMemory"; the number for others.
std::string StatusName(int status);
/// The parts of a text between separators.
std::vector<std::string> Split(std::string_view text, std::string_view separator);

}  // namespace umbrant::ofx
