// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Runs the chosen checks, each in a process of its own, and says how it went: as text, JSON or JUnit's XML.

#include <optional>
#include <string>
#include <vector>

#include "host/result.h"
#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// What a run is asked for.
struct RunnerOptions {
    CheckRunOptions check;
    int strictness = 5;
    int repeat = 1;
    std::string include;  ///< regular expressions over "5.4 title"; empty ones choose everything and nothing
    std::string exclude;
    std::string waivers;
    std::string report = "text";
};

/// One check, all its repetitions.
struct CheckOutcome {
    const Check* check = nullptr;
    CheckResult result;
    std::uint64_t seed = 0;  ///< of the repetition that failed first, else the first
    double milliseconds = 0;
};

struct Totals {
    int passed = 0, failed = 0, skipped = 0, waived = 0;
};
Totals TotalsOf(const std::vector<CheckOutcome>& outcomes);

/// The checks that a run consists of. Fails with ErrorKind::kUsage for a wrong expression, or when none is left.
Result<std::vector<const Check*>> ChosenChecks(const RunnerOptions& options);

/// Runs them and prints the report with `print`, line by line as far as the format allows.
Result<std::vector<CheckOutcome>> RunChecks(const RunnerOptions& asked, void (*print)(const std::string&));

/// The child's side: runs one check and sends its result.
Result<Done> RunOneCheck(const std::string& id, const CheckRunOptions& options, int resultDescriptor);

/// The command line that brings a check's finding back.
std::string RepeatCommand(const RunnerOptions& options, const CheckOutcome& outcome, const Finding& finding);

// host/validate/runner/report.cpp
std::string TextOf(const RunnerOptions& options, const CheckOutcome& outcome);
std::string TextSummary(const std::vector<CheckOutcome>& outcomes);
std::string JsonOf(const RunnerOptions& options, const std::vector<CheckOutcome>& outcomes);
std::string JunitOf(const RunnerOptions& options, const std::vector<CheckOutcome>& outcomes);

}  // namespace umbrant::host
