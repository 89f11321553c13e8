// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "pixel/world_rows.h"

#include "entry/suites/suite_scoper.h"
#include "hostapi/suites/umbrant_host_suite.h"

namespace umbrant::effect {

std::optional<PF_Err> WalkRows(PF_InData* in_data, PF_EffectWorld* world, const RowWork& work) {
    const AEFX_SuiteScoper<UMBRANT_HostSuite2, true> suite(in_data, kUmbrantHostSuiteName, kUmbrantHostSuiteVersion2,
                                                           nullptr, nullptr);
    if (!suite.get()) return std::nullopt;
    RowWork row = work;
    return suite->WalkRows(in_data->effect_ref, world, &row, [](void* refcon, A_long y, void* pixels) -> PF_Err {
        (*static_cast<const RowWork*>(refcon))(y, pixels);
        return PF_Err_NONE;
    });
}

}  // namespace umbrant::effect
