// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Passes work only where a layer, grown by their reach, is not empty. That changes no byte; to prove it, tests turn it
// off. Nothing outside the tests does.

namespace umbrant::effect {

/// Whether passes work everywhere, also where nothing is. Off unless a test says otherwise.
bool WorksEverywhere();
void SetWorksEverywhere(bool everywhere);

}  // namespace umbrant::effect
