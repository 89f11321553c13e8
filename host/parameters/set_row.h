// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Setting one row, wherever it is kept.

#include <string>
#include <string_view>

#include "host/parameters/float_color.h"
#include "host/parameters/param_row.h"
#include "host/result.h"

namespace umbrant::host {

/// Sets the row's value as ParamSet::SetFromText does.
Result<Done> SetRowFromText(ParamRow& row, std::string_view text);

/// Sets a colour's numbers. Fails with `ErrorKind::kUsage`, changing nothing, for a row that is no colour and for
/// channels beyond kColorLimit.
Result<Done> SetRowColor(ParamRow& row, const FloatColor& color);

/// The row's value as ParamSet::ValueText gives it.
std::string ValueTextOf(const ParamRow& row);

}  // namespace umbrant::host
