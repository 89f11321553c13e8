// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Says of an OpenFX bundle, in one sentence, that it is in order or what is wrong with it.

#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/result.h"

namespace umbrant::host {

inline constexpr char kOpenFxSubject[] = "openfx";

/// Examines a bundle. Returns the sentence of one that is in order. Fails with `ErrorKind::kFile`, `ErrorKind::kModule`
/// and `ErrorKind::kEffect`, by what is wrong.
Result<std::string> DiagnoseOpenFx(const std::filesystem::path& named, std::chrono::seconds limit);

/// The examination in its own process.
nlohmann::json ExamineOpenFx(const nlohmann::json& request, const std::function<void(const std::string& when)>& note);

}  // namespace umbrant::host
