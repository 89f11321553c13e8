// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a program knows of a session in a module's process: what that process reported with its answers.

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "host/module/module.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// The records of one session. Reading them from a message throws nlohmann::json::exception when they are not there.
struct SessionRecords {
    Registration effect;
    ParamSet params;
    PanelState panel;
    PF_OutFlags outFlags = PF_OutFlag_NONE;
    PF_OutFlags2 outFlags2 = PF_OutFlag2_NONE;
    A_u_long version = 0;
    Balance open;
    std::vector<std::string> misbehaviour;
    std::set<std::string> acquired;
    std::set<std::string> refused;
    std::vector<CommandRecord> commands;

    /// Reads the answer to a session's set-up. Values that are there already are kept.
    void TakeDeclaration(const nlohmann::json& answer);
    /// Adds what any answer reports about the session; an answer without such records changes nothing.
    void TakeRecords(const nlohmann::json& answer);
};

}  // namespace umbrant::host
