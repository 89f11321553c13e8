// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Defines the table's parameters and a page of them. A host that refuses one goes without it: frames have its default.

#include "openfx/abi/core.h"

namespace umbrant::openfx {

void DescribeParameters(OfxParamSetHandle parameters);

}  // namespace umbrant::openfx
