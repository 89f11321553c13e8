// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Declared rows in the library's words.

#include <umbrant/parameter.h>

#include "host/parameters/param_set.h"
#include "host/suites/panel_state.h"

/// A row of `declared`, whose values are the defaults, beside what the panel shows of it.
umbrant::Parameter DescribeParameter(const ParamSet& declared, int index, const PanelRow& panel);
