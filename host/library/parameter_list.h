// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Converts declared rows to the library's Parameter.

#include <umbrant/parameter.h>

#include "host/parameters/param_set.h"
#include "host/suites/panel_state.h"

namespace umbrant::host {

/// A row of `declared`, whose values are the defaults, with its state in the panel.
umbrant::Parameter DescribeParameter(const ParamSet& declared, int index, const PanelRow& panel);

}  // namespace umbrant::host
