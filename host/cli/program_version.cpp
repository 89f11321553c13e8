// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/program_version.h"

namespace umbrant::host {

std::string ProgramVersion() {
    return UMBRANT_VERSION;
}

}  // namespace umbrant::host
