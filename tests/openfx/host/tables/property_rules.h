// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the tables of properties do not have as columns.

#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/openfx/host/property_set.h"

namespace umbrant::ofx {

/// What a plug-in may set on instances.
const std::set<std::string_view>& WritableOnInstances();
/// Initial values other than 0 and "".
const std::map<std::string_view, PropertyValue>& Defaults();
/// Properties whose setting also sets another one.
const std::vector<std::pair<std::string_view, std::string_view>>& Followers();

}  // namespace umbrant::ofx
