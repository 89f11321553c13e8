// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/passes/work_extent.h"

#include <atomic>

namespace umbrant::effect {

namespace {
std::atomic<bool> works{false};
}

bool WorksEverywhere() {
    return works;
}

void SetWorksEverywhere(bool everywhere) {
    works = everywhere;
}

}  // namespace umbrant::effect
