// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Fetches the suites.

#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

const OfxHost* theHost = nullptr;
Suites theSuites;

template <typename Suite>
const Suite* Fetch(const char* name, int version) {
    return static_cast<const Suite*>(theHost->fetchSuite(theHost->host, name, version));
}

}  // namespace

void KeepHost(const OfxHost* host) {
    theHost = host;
}

OfxStatus FetchSuites() {
    if (!theHost || !theHost->fetchSuite) return kOfxStatErrMissingHostFeature;
    Suites suites;
    suites.host = theHost->host;
    suites.property = Fetch<OfxPropertySuiteV1>(kOfxPropertySuite, 1);
    suites.effect = Fetch<OfxImageEffectSuiteV1>(kOfxImageEffectSuite, 1);
    suites.parameter = Fetch<OfxParameterSuiteV1>(kOfxParameterSuite, 1);
    if (!suites.property || !suites.effect || !suites.parameter) return kOfxStatErrMissingHostFeature;
    suites.persistentMessage = Fetch<OfxMessageSuiteV2>(kOfxMessageSuite, 2);
    suites.message = Fetch<OfxMessageSuiteV1>(kOfxMessageSuite, 1);
    theSuites = suites;
    return kOfxStatOK;
}

const Suites& TheSuites() {
    return theSuites;
}

}  // namespace umbrant::openfx
