// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF iterateFloat Suite" 1: walks over 32-bit float worlds.

#include "hostapi/suites/iterate_float_suite.h"

#include "host/suites/pf/iterate.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

template <FixedText Call, auto Function>
using Slot = Served<kPFIterateFloatSuiteName, Call, Function>;
using Calls = IterateCalls<PF_PixelFloat>;

}  // namespace

const PF_iterateFloatSuite1 kIterateFloatSuite = {
    .iterate = Slot<"iterate", Calls::Iterate>(),
    .iterate_origin = Slot<"iterate_origin", Calls::IterateOrigin>(),
    .iterate_origin_non_clip_src = Slot<"iterate_origin_non_clip_src", Calls::IterateOriginNonClip>(),
};

}  // namespace umbrant::host
