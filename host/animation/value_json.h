// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A parameter's value in JSON: a number where it is one, otherwise the text that ParamSet::SetFromText takes.

#include <nlohmann/json.hpp>
#include <string>

#include "host/parameters/param_set.h"

namespace umbrant::host {

/// `text` is a value of the row as ParamSet shows it.
nlohmann::ordered_json ValueJson(const ParamRow& row, const std::string& text);

}  // namespace umbrant::host
