// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Iterate8 Suite" 1: walks over 8-bit worlds.

#include "hostapi/suites/iterate8_suite.h"

#include "host/suites/pf/iterate.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

template <FixedText Call, auto Function>
using Slot = Served<kPFIterate8SuiteName, Call, Function>;
using Calls = IterateCalls<PF_Pixel>;

}  // namespace

const PF_Iterate8Suite1 kIterate8Suite = {
    .iterate = Slot<"iterate", Calls::Iterate>(),
    .iterate_origin = Slot<"iterate_origin", Calls::IterateOrigin>(),
    .iterate_lut = Slot<"iterate_lut", IterateLutCall>(),
    .iterate_origin_non_clip_src = Slot<"iterate_origin_non_clip_src", Calls::IterateOriginNonClip>(),
    .iterate_generic = Slot<"iterate_generic", IterateGeneric>(),
};

}  // namespace umbrant::host
