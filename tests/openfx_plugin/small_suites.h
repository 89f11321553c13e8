// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The suites of the small host.

#include "tests/openfx_plugin/small_host.h"

namespace umbrant::openfx {

const OfxPropertySuiteV1& SmallPropertySuite();
const OfxImageEffectSuiteV1& SmallEffectSuite();
const OfxParameterSuiteV1& SmallParameterSuite();
const OfxMessageSuiteV2& SmallMessageSuite();

}  // namespace umbrant::openfx
