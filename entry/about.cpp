// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The about command.

#include "entry/about.h"

#include "entry/suites/suite_handler.h"
#include "entry/version.h"

namespace umbrant::effect {

std::string VersionedEffectName() {
    return std::string(kEffectName) + " v" + std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
           std::to_string(kVersionBugFix);
}

PF_Err About(PF_InData* in_data, PF_OutData* out_data) {
    if (in_data->appl_id == kAppID_Premiere) return PF_Err_NONE;
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const std::string text = VersionedEffectName() + "\n" + kEffectDescription + "\n\n";
    // Intended: the text itself is the format string. It has no '%'.
    suites.ANSICallbacksSuite1()->sprintf(out_data->return_msg, text.c_str());
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
