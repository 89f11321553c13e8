// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF iterate16 Suite" 1: walks over 16-bit worlds.

#include "hostapi/suites/iterate16_suite.h"

#include "host/suites/pf/iterate.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

template <FixedText Call, auto Function>
using Slot = Served<kPFIterate16SuiteName, Call, Function>;
using Calls = IterateCalls<PF_Pixel16>;

}  // namespace

const PF_iterate16Suite1 kIterate16Suite = {
    .iterate = Slot<"iterate", Calls::Iterate>(),
    .iterate_origin = Slot<"iterate_origin", Calls::IterateOrigin>(),
    .iterate_origin_non_clip_src = Slot<"iterate_origin_non_clip_src", Calls::IterateOriginNonClip>(),
};

}  // namespace umbrant::host
