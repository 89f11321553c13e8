// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Defines the table's parameters and a page of them. A host that refuses one goes without it: frames have its default.

#include <string>

#include "openfx/abi/core.h"
#include "openfx/parameters/parameter_table.h"

namespace umbrant::openfx {

/// What a parameter does, from the library, and what only this plug-in can say about it. Empty for some groups.
std::string HintOf(const ParameterRow& row);

void DescribeParameters(OfxParamSetHandle parameters);

}  // namespace umbrant::openfx
