// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Findings that a module's makers have accepted, each with its reason, in a file next to the module:
//
//     {"waivers": [{"check": "8.5", "finding": "the render waits", "reason": "renders are serialised on purpose"}]}
//
// `finding` is a regular expression that is looked for in the finding's sentence. A waiver that fits nothing although
// its check ran is itself a failure, so that the file does not outlive what it excuses; `"always": false` is for
// findings that depend on the driver or on timing.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/result.h"
#include "host/validate/runner/check_run.h"
#include "host/validate/runner/pattern.h"

namespace umbrant::host {

struct Waiver {
    std::string check;
    std::string finding;
    std::optional<Pattern> pattern;
    std::string reason;
    bool always = true;
    bool used = false;
};

/// Fails with ErrorKind::kFile when the file cannot be read, with kUsage when it does not say what it should.
Result<std::vector<Waiver>> ReadWaivers(const std::filesystem::path& file);

/// Marks the findings that are waived, and turns the verdict into kWaived when all that weigh are.
void ApplyWaivers(const Check& check, CheckResult& result, std::vector<Waiver>& waivers);

/// The finding about a waiver of the check that was not used, when it should have been.
std::vector<Finding> UnusedWaivers(const Check& check, const std::vector<Waiver>& waivers);

}  // namespace umbrant::host
