// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The session's records as messages carry them between a program and the process of a module. What is read from a
// message throws nlohmann::json::exception when it is not there.

#include <atomic>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/module/module.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// What the module's process is at, on a page that both processes see, so that its end can be explained.
struct ModuleStatus {
    enum Phase : int { kLoads, kBetween, kInCommand, kUnloads };
    std::atomic<int> phase{kLoads};
    std::atomic<int> command{0};         ///< the one under way, or the last one; -1 before the first
    std::atomic<int> stage{0};           ///< RenderStage of a render under way
    std::atomic<std::int64_t> begin{0};  ///< of the command, nanoseconds of the steady clock
};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<std::int64_t>::is_always_lock_free);

nlohmann::json FailureJson(const Failure& failure);
Failure ReadFailure(const nlohmann::json& object);

nlohmann::json RegistrationJson(const Registration& effect);
Registration RegistrationOf(const nlohmann::json& object);

/// The declaration alone; its values are those of a new instance.
nlohmann::json DeclarationJson(const ParamSet& params);
/// The set that was declared.
ParamSet DeclarationOf(const nlohmann::json& object);

/// The values of rows that have one.
nlohmann::json ValuesJson(const ParamSet& params);
/// Sets them in a set of the same declaration; those of another one are left out.
void SetValues(const nlohmann::json& object, ParamSet& params);

nlohmann::json PanelJson(const std::vector<PanelRow>& rows);
std::vector<PanelRow> PanelOf(const nlohmann::json& object);

nlohmann::json CommandsJson(const std::vector<CommandRecord>& commands);
std::vector<CommandRecord> CommandsOf(const nlohmann::json& object);

/// Everything of a session's options that is not a function or a log.
nlohmann::json OptionsJson(const SessionOptions& options);
SessionOptions OptionsOf(const nlohmann::json& object);

/// Everything of a request that is neither a world nor a function nor the values.
nlohmann::json RequestJson(const FrameRequest& request);
FrameRequest RequestOf(const nlohmann::json& object);

/// The size, depth and block of a world; pixels travel in shared memory. `block` is 0 for an empty world.
struct WorldFacts {
    std::uint64_t block = 0;
    int width = 0;
    int height = 0;
    int depth = 8;
};
WorldFacts FactsOf(const World& world, std::uint64_t block);
/// Whether such a world can be: sizes that a world may have, and one of the three depths.
bool IsUsable(const WorldFacts& facts);

}  // namespace umbrant::host
