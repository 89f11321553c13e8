// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The run's outcome as text, and in the two formats that other programs read.

#include <fmt/format.h>

#include <map>
#include <nlohmann/json.hpp>

#include "host/validate/runner/runner.h"

namespace umbrant::host {

namespace {

using nlohmann::ordered_json;

std::string ForShell(const std::string& text) {
    const bool plain =
        text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./+-=,:") ==
        std::string::npos;
    if (plain && !text.empty()) return text;
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string ForXml(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\n':
                escaped += "&#10;";
                break;
            default:
                // XML 1.0 has no way to write the other control characters.
                escaped += static_cast<unsigned char>(c) < ' ' && c != '\t' ? '?' : c;
        }
    }
    return escaped;
}

bool IsFailure(Verdict verdict) {
    return verdict == Verdict::kFail || verdict == Verdict::kCrash || verdict == Verdict::kTimeout;
}

std::map<std::string, double> FiguresOf(const std::vector<CheckOutcome>& outcomes) {
    std::map<std::string, double> figures;
    for (const CheckOutcome& outcome : outcomes) {
        for (const auto& [name, amount] : outcome.result.figures) figures[name] += amount;
    }
    return figures;
}

}  // namespace

std::string RepeatCommand(const RunnerOptions& options, const CheckOutcome& outcome, const Finding& finding) {
    std::string id = outcome.check->id;
    id.insert(id.find('.'), "\\");
    std::string command = fmt::format("umbrant validate {} --strictness {} --include {} --seed {}",
                                      ForShell(options.check.module.string()), outcome.check->Level(),
                                      ForShell("^" + id + " "), outcome.seed);
    if (options.check.timeoutMilliseconds != CheckRunOptions().timeoutMilliseconds) {
        command += fmt::format(" --timeout-ms {}", options.check.timeoutMilliseconds);
    }
    if (options.check.inProcess) command += " --in-process";
    if (!finding.repeat.empty()) command += " " + finding.repeat;
    return command;
}

std::string TextOf(const RunnerOptions& options, const CheckOutcome& outcome) {
    const CheckResult& result = outcome.result;
    std::string text = fmt::format("{:<8} {:<5} {} ({:.0f} ms)\n", VerdictName(result.verdict), outcome.check->id,
                                   outcome.check->title, outcome.milliseconds);
    if (result.verdict == Verdict::kSkip) text += fmt::format("         {}\n", result.skipReason);
    for (const Finding& finding : result.findings) {
        const char* label = finding.waiver.empty() ? VerdictName(finding.weight) : "waived";
        text += fmt::format("         {}: {}\n", label, finding.text);
        if (!finding.waiver.empty()) {
            text += fmt::format("           because {}\n", finding.waiver);
        } else if (finding.weight != Verdict::kWarn) {
            text += fmt::format("           seed {}; again with: {}\n", outcome.seed,
                                RepeatCommand(options, outcome, finding));
        }
    }
    return text;
}

std::string TextSummary(const std::vector<CheckOutcome>& outcomes) {
    std::string text;
    for (const auto& [name, amount] : FiguresOf(outcomes)) {
        text += fmt::format("{}{}: {:.6g}", text.empty() ? "" : ", ", name, amount);
    }
    if (!text.empty()) text += "\n";
    const Totals totals = TotalsOf(outcomes);
    return text + fmt::format("{} passed, {} failed, {} skipped, {} waived\n", totals.passed, totals.failed,
                              totals.skipped, totals.waived);
}

std::string JsonOf(const RunnerOptions& options, const std::vector<CheckOutcome>& outcomes) {
    ordered_json checks = ordered_json::array();
    for (const CheckOutcome& outcome : outcomes) {
        ordered_json findings = ordered_json::array();
        for (const Finding& finding : outcome.result.findings) {
            ordered_json object{{"text", finding.text}, {"weight", VerdictName(finding.weight)}};
            if (!finding.waiver.empty()) object["waiver"] = finding.waiver;
            if (finding.weight != Verdict::kWarn) object["repeat"] = RepeatCommand(options, outcome, finding);
            findings.push_back(std::move(object));
        }
        ordered_json object{{"id", outcome.check->id},
                            {"level", outcome.check->Level()},
                            {"title", outcome.check->title},
                            {"verdict", VerdictName(outcome.result.verdict)},
                            {"milliseconds", outcome.milliseconds},
                            {"seed", outcome.seed},
                            {"findings", std::move(findings)},
                            {"figures", outcome.result.figures}};
        if (!outcome.result.skipReason.empty()) object["skipped"] = outcome.result.skipReason;
        checks.push_back(std::move(object));
    }
    const Totals totals = TotalsOf(outcomes);
    const ordered_json report{{"module", options.check.module.string()},
                              {"strictness", options.strictness},
                              {"seed", options.check.seed},
                              {"passed", totals.passed},
                              {"failed", totals.failed},
                              {"skipped", totals.skipped},
                              {"waived", totals.waived},
                              {"figures", FiguresOf(outcomes)},
                              {"checks", std::move(checks)}};
    return report.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string JunitOf(const RunnerOptions& options, const std::vector<CheckOutcome>& outcomes) {
    const Totals totals = TotalsOf(outcomes);
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    text += fmt::format("<testsuite name=\"{}\" tests=\"{}\" failures=\"{}\" skipped=\"{}\">\n",
                        ForXml(options.check.module.string()), outcomes.size(), totals.failed, totals.skipped);
    for (const CheckOutcome& outcome : outcomes) {
        text +=
            fmt::format("  <testcase classname=\"level {}\" name=\"{} {}\" time=\"{:.3f}\">\n", outcome.check->Level(),
                        outcome.check->id, ForXml(outcome.check->title), outcome.milliseconds / 1000);
        if (outcome.result.verdict == Verdict::kSkip) {
            text += fmt::format("    <skipped message=\"{}\"/>\n", ForXml(outcome.result.skipReason));
        }
        for (const Finding& finding : outcome.result.findings) {
            if (!IsFailure(finding.weight) || !finding.waiver.empty()) {
                text += fmt::format("    <system-out>{}</system-out>\n", ForXml(finding.text));
                continue;
            }
            text += fmt::format("    <failure type=\"{}\" message=\"{}\">{}</failure>\n", VerdictName(finding.weight),
                                ForXml(finding.text), ForXml(RepeatCommand(options, outcome, finding)));
        }
        text += "  </testcase>\n";
    }
    return text + "</testsuite>\n";
}

}  // namespace umbrant::host
