// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Foreign code is examined in a process of its own, a copy of this program: a crash, an exit and an endless loop are
// then answers like any other.

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/result.h"

namespace umbrant::host {

/// An examination that such a process makes: what it was asked, and a function that notes each step, as "during
/// OfxActionLoad", before it is taken. Returns the answer.
using Examination = std::function<nlohmann::json(const nlohmann::json& request,
                                                 const std::function<void(const std::string& when)>& note)>;

/// What came of one.
struct ExaminationEnd {
    nlohmann::json answer{};  ///< null where the process ended before it had one
    std::string untimely{};   ///< then how: "crashed with signal 11 (Segmentation fault) during OfxActionLoad"
    bool isAtStart = false;   ///< and whether that was before the second step
};

/// Has a process examine a subject. A step may take as long as `limit`. Fails with `ErrorKind::kInternal` where no
/// process can be started.
Result<ExaminationEnd> ExamineInProcess(const std::string& subject, const nlohmann::json& request,
                                        std::chrono::seconds limit);

/// The exit code when the arguments ask for that process and its socket is there. Nothing otherwise. To be called first
/// in main.
std::optional<int> RunExaminationProcess(int argc, const char* const* argv);

}  // namespace umbrant::host
