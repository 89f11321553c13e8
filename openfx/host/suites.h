// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the host offers: its own properties and the suites that were fetched from it.

#include "openfx/abi/core.h"
#include "openfx/abi/image_effect_suite.h"
#include "openfx/abi/message_suite.h"
#include "openfx/abi/parameter_suite.h"
#include "openfx/abi/property_suite.h"

namespace umbrant::openfx {

/// Null are the suites that the host does not have. After a successful FetchSuites the first three are never null.
struct Suites {
    const OfxPropertySuiteV1* property = nullptr;
    const OfxImageEffectSuiteV1* effect = nullptr;
    const OfxParameterSuiteV1* parameter = nullptr;
    const OfxMessageSuiteV1* message = nullptr;
    const OfxMessageSuiteV2* persistentMessage = nullptr;
    OfxPropertySetHandle host = nullptr;
};

/// Keeps the host for FetchSuites; calls nothing. [main]
void KeepHost(const OfxHost* host);

/// Fetches the suites, also again. ErrMissingHostFeature without a host, properties, image effects or parameters.
/// [main]
OfxStatus FetchSuites();

/// The suites of the last FetchSuites. [any]
const Suites& TheSuites();

}  // namespace umbrant::openfx
