// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The report as text and as JSON. It is made to be sent to others, so the user's home is written as "~".

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "host/cli/doctor/part_report.h"

namespace umbrant::host {

namespace {

const char* Word(PartCondition condition) {
    switch (condition) {
        case PartCondition::kGood:
            return "ok";
        case PartCondition::kNote:
            return "note";
        case PartCondition::kProblem:
            break;
    }
    return "problem";
}

/// The text with the path of the home folder as "~".
std::string WithoutHome(std::string text) {
    const char* const set = std::getenv("HOME");
    std::string home = set ? set : "";
    while (home.ends_with('/')) home.pop_back();
    if (home.empty()) return text;
    for (std::size_t at = text.find(home); at != std::string::npos; at = text.find(home, at + 1)) {
        const char next = at + home.size() < text.size() ? text[at + home.size()] : '/';
        const bool isWhole = next == '/' || next == '\'' || next == ':' || next == ',' || next == ' ';
        if (isWhole) text.replace(at, home.size(), "~");
    }
    return text;
}

}  // namespace

PartReport ProblemOf(const std::string& subject, const Failure& failure) {
    const std::size_t end = failure.sentence.rfind("; ");
    PartReport finding{subject, PartCondition::kProblem, failure.sentence, "", failure.kind};
    if (end != std::string::npos) {
        finding.text = failure.sentence.substr(0, end);
        finding.advice = failure.sentence.substr(end + 2);
    }
    return finding;
}

std::string ReportText(const std::vector<PartReport>& findings, const std::vector<std::string>& environment) {
    std::size_t width = 0;
    for (const PartReport& finding : findings) width = std::max(width, finding.subject.size());
    std::string text;
    for (const PartReport& finding : findings) {
        text += fmt::format("{:<7}  {:<{}}  {}\n", Word(finding.condition), finding.subject, width, finding.text);
        if (!finding.advice.empty()) text += fmt::format("{:{}}-> {}\n", "", width + 11, finding.advice);
    }
    for (const std::string& variable : environment) text += fmt::format("{:<7}  {}\n", "set", variable);
    return WithoutHome(text);
}

std::string ReportJson(const std::vector<PartReport>& findings, const std::vector<std::string>& environment) {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const PartReport& finding : findings) {
        nlohmann::ordered_json row = {
            {"subject", finding.subject}, {"condition", Word(finding.condition)}, {"text", WithoutHome(finding.text)}};
        if (!finding.advice.empty()) row["advice"] = WithoutHome(finding.advice);
        rows.push_back(std::move(row));
    }
    nlohmann::ordered_json variables = nlohmann::ordered_json::array();
    for (const std::string& variable : environment) variables.push_back(WithoutHome(variable));
    const nlohmann::ordered_json report = {{"findings", rows}, {"environment", variables}};
    return report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace umbrant::host
