// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/own_object_examination.h"

#include <fmt/format.h>

#include <chrono>
#include <variant>

#include "host/doctor/examination_process.h"

namespace umbrant::host {

namespace {

/// Hundreds of libraries may come with one, from a slow disk.
constexpr std::chrono::seconds kLimit{300};

}  // namespace

Result<Done> CheckOwnObject(const OwnObject& object) {
    const auto end = TRY(ExamineInProcess(
        kOwnObjectSubject, {{"file", object.file}, {"purpose", object.purpose}, {"entry", object.entry}}, kLimit));
    if (!end.untimely.empty()) {
        return Failure{ErrorKind::kInternal,
                       fmt::format("{}, {}, {}; install the program again, with the libraries that it needs",
                                   object.file, object.purpose, end.untimely)};
    }
    if (end.answer.contains("failure")) return Failure{ErrorKind::kInternal, end.answer["failure"].get<std::string>()};
    return Done{};
}

nlohmann::json ExamineOwnObject(const nlohmann::json& request,
                                const std::function<void(const std::string& when)>& note) {
    note("while it was loaded");
    const auto file = request["file"].get<std::string>();
    const auto purpose = request["purpose"].get<std::string>();
    const auto entry = request["entry"].get<std::string>();
    const auto opened = OpenOwnObject({file.c_str(), purpose.c_str(), entry.c_str()});
    if (const auto* reason = std::get_if<std::string>(&opened)) return {{"failure", *reason}};
    return nlohmann::json::object();
}

}  // namespace umbrant::host
