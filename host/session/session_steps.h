// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The steps in which a session is set up and set down, each one command. Inside host/session only.

#include <optional>
#include <vector>

#include "host/session/session_state.h"

namespace umbrant::host {

/// All of a session: global, parameters, sequence, flags. What was set up before a failure is set down.
std::optional<Failure> SetUpAll(SessionState& state);
/// One more instance in a process whose global set-up and parameters are there: sequence and flags, likewise.
std::optional<Failure> SetUpInstance(SessionState& state);
/// Whatever was set up is set down again; returns the first failure.
std::optional<Failure> SetDown(SessionState& state);

/// The panel before anybody has touched it.
std::vector<PanelRow> DeclaredPanel(const ParamSet& params);

}  // namespace umbrant::host
