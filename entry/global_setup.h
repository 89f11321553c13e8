// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Global set-up and set-down, and the state that the whole module shares. [main]

#include <mutex>

#include "hostapi/aegp_types.h"
#include "hostapi/commands.h"

/// Held for the whole of every smart render: at most one runs at a time in the process. Built when the module is
/// loaded, destroyed when it is unloaded. Taken before any other lock of the module.
extern std::recursive_mutex globalMutex;

/// The module's plug-in id. Intended: never assigned, so it stays zero.
extern AEGP_PluginID my_id;

namespace umbrant::effect {

/// Announces version and flags, and keeps `GlobalData` with a probe context and the driver's strings in
/// `out_data->global_data`. Returns 0, also when there is no memory for the record, the record cannot be locked (the
/// handle is then kept with nothing written) or no context can be made; throws 516 for a missing suite.
PF_Err GlobalSetup(PF_InData* in_data, PF_OutData* out_data);

/// Deletes the probe context and the record and clears `in_data->global_data`; does nothing when there is none or it
/// cannot be locked. Leaves no context current when there was a probe context. Returns 0; throws 516 for a missing
/// suite.
PF_Err GlobalSetdown(PF_InData* in_data);

}  // namespace umbrant::effect
