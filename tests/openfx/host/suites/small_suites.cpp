// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxProgressSuite, OfxTimeLineSuite, OfxInteractSuite. The host makes no interacts, so every handle of one is wrong.

#include "tests/openfx/host/effect.h"
#include "tests/openfx/host/host.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

/// Begins a function whose first argument is an effect.
OfxStatus Begin(const char* function, void* handle) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter(function)) return status;
    return host.Find<EffectObject>(handle, function, "an effect") == nullptr ? kOfxStatErrBadHandle : kOfxStatOK;
}

OfxStatus Start(void* effect, const char*) {
    const OfxStatus status = Begin("progressStart", effect);
    if (status == kOfxStatOK) Host::Current()->record.Open("progressStart", 1);
    return status;
}
OfxStatus StartNamed(void* effect, const char* label, const char*) {
    return Start(effect, label);
}

OfxStatus Update(void* effect, double part) {
    if (const OfxStatus status = Begin("progressUpdate", effect)) return status;
    if (!(part >= 0 && part <= 1)) {
        Host::Current()->record.Violation("progressUpdate: a progress is from 0 to 1");
        return kOfxStatErrValue;
    }
    return kOfxStatOK;
}

OfxStatus End(void* effect) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("progressEnd");
    if (host.Find<EffectObject>(effect, "progressEnd", "an effect") == nullptr) return kOfxStatErrBadHandle;
    host.record.Open("progressStart", -1);
    return fault;
}

OfxStatus GetTime(void* effect, double* time) {
    if (const OfxStatus status = Begin("getTime", effect)) return status;
    *time = 0;
    return kOfxStatOK;
}

OfxStatus GotoTime(void* effect, double) {
    return Begin("gotoTime", effect);
}

OfxStatus GetTimeBounds(void* effect, double* first, double* last) {
    if (const OfxStatus status = Begin("getTimeBounds", effect)) return status;
    *first = 0;
    *last = 99;
    return kOfxStatOK;
}

OfxStatus NoInteract(const char* function, const void* handle) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter(function)) return status;
    host.record.Violation(std::string(function) + " was called, but this host has no interacts");
    return handle == nullptr ? kOfxStatErrBadHandle : kOfxStatErrUnsupported;
}
OfxStatus SwapBuffers(OfxInteractHandle handle) {
    return NoInteract("interactSwapBuffers", handle);
}
OfxStatus Redraw(OfxInteractHandle handle) {
    return NoInteract("interactRedraw", handle);
}
OfxStatus GetInteractSet(OfxInteractHandle handle, OfxPropertySetHandle*) {
    return NoInteract("interactGetPropertySet", handle);
}

}  // namespace

const OfxProgressSuiteV1& ProgressSuite1() {
    static const OfxProgressSuiteV1 suite = {Start, Update, End};
    return suite;
}
const OfxProgressSuiteV2& ProgressSuite2() {
    static const OfxProgressSuiteV2 suite = {StartNamed, Update, End};
    return suite;
}
const OfxTimeLineSuiteV1& TimeLineSuite() {
    static const OfxTimeLineSuiteV1 suite = {GetTime, GotoTime, GetTimeBounds};
    return suite;
}
const OfxInteractSuiteV1& InteractSuite() {
    static const OfxInteractSuiteV1 suite = {SwapBuffers, Redraw, GetInteractSet};
    return suite;
}

}  // namespace umbrant::ofx
