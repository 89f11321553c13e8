// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/openfx_doctor.h"

#include <fmt/format.h>

#include <system_error>

#include "host/doctor/examination_process.h"
#include "host/doctor/openfx/bundle.h"
#include "host/doctor/openfx/examination.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

/// This project's plug-in, and the file that has to be in its folder.
constexpr char kOwnBinary[] = "Umbrant.ofx";
constexpr char kOwnModule[] = "umbrant2.so";

std::string SentenceOf(const std::filesystem::path& bundle, const json& plugins) {
    std::string text;
    for (const json& each : plugins) {
        const auto textOf = [&each](const char* name) { return each.at(name).get<std::string>(); };
        const int parameters = each.at("parameters").get<int>();
        text += fmt::format("{}'{}' ({} {}) has {} parameter{} and {}", text.empty() ? "" : "; ", textOf("label"),
                            textOf("identifier"), textOf("version"), parameters, parameters == 1 ? "" : "s",
                            textOf("frame"));
    }
    return fmt::format("'{}' is in order: {}.", bundle.string(), text);
}

}  // namespace

Result<std::string> DiagnoseOpenFx(const std::filesystem::path& named, std::chrono::seconds limit) {
    const OpenFxBundle bundle = TRY(CheckBundle(named));
    std::error_code error;
    const auto module = bundle.binary.parent_path() / kOwnModule;
    if (bundle.binary.filename() == kOwnBinary && !std::filesystem::exists(module, error)) {
        return Failure{ErrorKind::kModule,
                       fmt::format("'{}' has no {} beside {}; it was not copied as a whole, so copy it again",
                                   bundle.folder.string(), kOwnModule, kOwnBinary)};
    }
    const json request = {{"binary", bundle.binary.string()}, {"bundle", bundle.folder.string()}};
    const ExaminationEnd end = TRY(ExamineInProcess(kOpenFxSubject, request, limit));
    if (end.answer.is_null()) {
        return Failure{end.isAtStart ? ErrorKind::kModule : ErrorKind::kEffect,
                       fmt::format("'{}' {}; a host would {} with it", bundle.folder.string(), end.untimely,
                                   end.untimely.starts_with("hangs") ? "hang" : "end")};
    }
    if (end.answer.contains("failure")) {
        return Failure{static_cast<ErrorKind>(end.answer.at("kind").get<int>()),
                       end.answer.at("failure").get<std::string>()};
    }
    return SentenceOf(bundle.folder, end.answer.at("plugins"));
}

json ExamineOpenFx(const json& request, const std::function<void(const std::string& when)>& note) {
    const auto facts =
        ExamineBinary(request.at("binary").get<std::string>(), request.at("bundle").get<std::string>(), note);
    if (!facts) return {{"kind", static_cast<int>(facts.error().kind)}, {"failure", facts.error().sentence}};
    json plugins = json::array();
    for (const OpenFxPluginFacts& each : *facts) {
        plugins.push_back({{"identifier", each.identifier},
                           {"version", each.version},
                           {"label", each.label},
                           {"parameters", each.parameters},
                           {"frame", each.frame}});
    }
    return {{"plugins", std::move(plugins)}};
}

}  // namespace umbrant::host
