// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What `umbrant doctor` finds out about one part of the program and its system.

#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

enum class PartCondition {
    kGood,
    kNote,     ///< works, but a person may want to know
    kProblem,  ///< something that the program offers does not work
};

struct PartReport {
    std::string subject;  ///< one or two words: "module"
    PartCondition condition = PartCondition::kGood;
    std::string text;                       ///< what was found, without a full stop
    std::string advice{};                   ///< what to do; empty where nothing is to be done
    ErrorKind kind = ErrorKind::kInternal;  ///< of a problem: decides the exit code

    bool operator==(const PartReport&) const = default;
};

/// The sentence of a failure as a problem. The text after its last semicolon is the advice.
PartReport ProblemOf(const std::string& subject, const Failure& failure);

// Each of these examines its part and never fails. `module` is the file that --module names, or empty.
std::vector<PartReport> FindProgram();
std::vector<PartReport> FindModuleAndRenderer(const std::string& module);
std::vector<PartReport> FindOwnObjects();
std::vector<PartReport> FindColorSpaces();
std::vector<PartReport> FindFonts();
std::vector<PartReport> FindClipTools();
std::vector<PartReport> FindOpenFxBundles(int limit);
std::vector<PartReport> FindPresets();
std::vector<PartReport> FindMemoryAndDisk();

/// The environment's variables that change what the program does, as "NAME=value".
std::vector<std::string> RelevantEnvironment();

/// One line for each finding, with its advice beneath, for people.
std::string ReportText(const std::vector<PartReport>& findings, const std::vector<std::string>& environment);
/// The same as JSON.
std::string ReportJson(const std::vector<PartReport>& findings, const std::vector<std::string>& environment);

}  // namespace umbrant::host
