// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether a shared object of the program can be loaded. In a process of its own: libraries behind it may end theirs.

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/loading/own_object.h"
#include "host/result.h"

namespace umbrant::host {

inline constexpr char kOwnObjectSubject[] = "own-object";

/// Loads the object in a process of its own. Fails with `ErrorKind::kInternal` and what would work.
Result<Done> CheckOwnObject(const OwnObject& object);

/// The examination in its own process.
nlohmann::json ExamineOwnObject(const nlohmann::json& request,
                                const std::function<void(const std::string& when)>& note);

}  // namespace umbrant::host
