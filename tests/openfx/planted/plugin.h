// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A small effect: the source, multiplied by a gain, with a transparent border of `border` pixels.

#include "tests/openfx/host/abi_suites.h"
#include "tests/openfx/planted/flaw.h"

namespace umbrant::ofx::planted {

struct Suites {
    OfxHost* host = nullptr;
    const OfxPropertySuiteV1* property = nullptr;
    const OfxImageEffectSuiteV1* effect = nullptr;
    const OfxParameterSuiteV1* param = nullptr;
    const OfxMemorySuiteV1* memory = nullptr;
    const OfxMultiThreadSuiteV1* thread = nullptr;
    const OfxMessageSuiteV2* message = nullptr;
    const OfxProgressSuiteV1* progress = nullptr;
};
extern Suites suites;

/// Ends an action with a status.
struct Refusal {
    OfxStatus status;
};
inline void Need(OfxStatus status) {
    if (status != kOfxStatOK) throw Refusal{status};
}

inline OfxImageEffectHandle EffectOf(const void* handle) {
    return static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
}
/// The property set of an effect, and a parameter and a clip of an instance.
OfxPropertySetHandle PropertiesOf(OfxImageEffectHandle effect);
OfxParamHandle ParamOf(OfxImageEffectHandle effect, const char* name);
OfxImageClipHandle ClipOf(OfxImageEffectHandle effect, const char* name);

OfxStatus Describe(OfxImageEffectHandle effect);
OfxStatus DescribeInContext(OfxImageEffectHandle effect);
OfxStatus GetRegion(OfxImageEffectHandle effect, OfxPropertySetHandle in, OfxPropertySetHandle out);
OfxStatus IsIdentity(OfxImageEffectHandle effect, OfxPropertySetHandle out);
OfxStatus Render(OfxImageEffectHandle effect, OfxPropertySetHandle in);

}  // namespace umbrant::ofx::planted
