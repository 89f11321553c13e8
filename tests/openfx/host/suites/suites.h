// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's suites: one table of C functions each. All find the host that exists.

#include <string>
#include <vector>

#include "tests/openfx/host/abi_suites.h"

namespace umbrant::ofx {

/// The table of a suite; null if this host does not have it in this version.
const void* SuiteNamed(const char* name, int version);
/// Every suite as "OfxPropertySuite/1".
const std::vector<std::string>& AllSuites();

const OfxPropertySuiteV1& PropertySuite();
const OfxImageEffectSuiteV1& ImageEffectSuite();
const OfxParameterSuiteV1& ParameterSuite();
const OfxMemorySuiteV1& MemorySuite();
const OfxMultiThreadSuiteV1& MultiThreadSuite();
const OfxMessageSuiteV1& MessageSuite1();
const OfxMessageSuiteV2& MessageSuite2();
const OfxProgressSuiteV1& ProgressSuite1();
const OfxProgressSuiteV2& ProgressSuite2();
const OfxTimeLineSuiteV1& TimeLineSuite();
const OfxInteractSuiteV1& InteractSuite();

}  // namespace umbrant::ofx
