// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/waivers.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

namespace umbrant::host {

namespace {

using nlohmann::json;

Failure Wrong(const std::filesystem::path& file, const std::string& reason) {
    return {ErrorKind::kUsage, fmt::format("the waiver file '{}' {}", file.string(), reason)};
}

bool IsKnown(const std::string& id) {
    const auto& checks = AllChecks();
    return std::any_of(checks.begin(), checks.end(), [&](const Check& check) { return id == check.id; });
}

/// What is wrong with an entry, or nothing.
std::string ReadEntry(const json& entry, Waiver& waiver) {
    if (!entry.is_object()) return "holds an entry that is not an object";
    for (const auto& [key, value] : entry.items()) {
        if (key == "always" ? !value.is_boolean() : !value.is_string()) return fmt::format("has a wrong '{}'", key);
        if (key == "check") {
            waiver.check = value;
        } else if (key == "finding") {
            waiver.finding = value;
        } else if (key == "reason") {
            waiver.reason = value;
        } else if (key == "always") {
            waiver.always = value;
        } else {
            return fmt::format("has an entry with '{}'; known are check, finding, reason and always", key);
        }
    }
    if (!IsKnown(waiver.check)) {
        return fmt::format("names the check '{}', which does not exist; --list shows all checks", waiver.check);
    }
    if (waiver.finding.empty()) return fmt::format("has an entry for check {} without a finding", waiver.check);
    if (waiver.reason.empty()) return fmt::format("has an entry for check {} without a reason", waiver.check);
    waiver.pattern = Pattern::Of(waiver.finding);
    if (!waiver.pattern) {
        return fmt::format("has the finding '{}', which is not a regular expression", waiver.finding);
    }
    return "";
}

}  // namespace

Result<std::vector<Waiver>> ReadWaivers(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    if (!in || !(text << in.rdbuf())) {
        return Failure{ErrorKind::kFile, fmt::format("cannot read the waiver file '{}'", file.string())};
    }
    const json object = json::parse(text.str(), nullptr, false);
    if (object.is_discarded()) return Wrong(file, "is not JSON");
    if (!object.is_object() || !object.contains("waivers") || !object["waivers"].is_array()) {
        return Wrong(file, "has no list 'waivers'");
    }
    std::vector<Waiver> waivers;
    for (const json& entry : object["waivers"]) {
        Waiver waiver;
        if (const std::string reason = ReadEntry(entry, waiver); !reason.empty()) return Wrong(file, reason);
        waivers.push_back(std::move(waiver));
    }
    return waivers;
}

void ApplyWaivers(const Check& check, CheckResult& result, std::vector<Waiver>& waivers) {
    bool heavy = false;
    bool waived = false;
    for (Finding& finding : result.findings) {
        for (Waiver& waiver : waivers) {
            if (waiver.check != check.id || !waiver.pattern->IsIn(finding.text)) continue;
            waiver.used = true;
            finding.waiver = waiver.reason;
        }
        if (finding.weight == Verdict::kWarn) continue;
        (finding.waiver.empty() ? heavy : waived) = true;
    }
    if (!heavy && waived) result.verdict = Verdict::kWaived;
}

std::vector<Finding> UnusedWaivers(const Check& check, const std::vector<Waiver>& waivers) {
    std::vector<Finding> findings;
    for (const Waiver& waiver : waivers) {
        if (waiver.check != check.id || waiver.used || !waiver.always) continue;
        findings.push_back(
            {fmt::format("the waived finding '{}' did not occur; remove it from the waiver file", waiver.finding),
             Verdict::kFail,
             {},
             {}});
    }
    return findings;
}

}  // namespace umbrant::host
