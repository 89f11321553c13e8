// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/program_version.h"

#include <fmt/format.h>

namespace umbrant::host {

std::string ProgramVersion() {
    return UMBRANT_VERSION;
}

std::string EffectVersionText(A_u_long packed) {
    const A_u_long major = (packed >> 26 & 15) << 3 | (packed >> 19 & 7);
    return fmt::format("{}.{}.{}", major, packed >> 15 & 15, packed >> 11 & 15);
}

}  // namespace umbrant::host
