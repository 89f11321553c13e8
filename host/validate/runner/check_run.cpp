// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/check_run.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "host/accounting/event_log.h"
#include "host/validate/runner/trace.h"

namespace umbrant::host {

namespace {

constexpr const char* kVerdictNames[] = {"pass", "warn", "fail", "crash", "timeout", "skip", "waived"};

/// The heavier of two: a check that both warned and failed has failed.
int Weight(Verdict verdict) {
    switch (verdict) {
        case Verdict::kWarn:
            return 1;
        case Verdict::kFail:
            return 2;
        case Verdict::kTimeout:
            return 3;
        case Verdict::kCrash:
            return 4;
        default:
            return 0;
    }
}

}  // namespace

const char* VerdictName(Verdict verdict) {
    return kVerdictNames[static_cast<std::size_t>(verdict)];
}

std::optional<Verdict> VerdictOf(const std::string& name) {
    const auto* found = std::find(std::begin(kVerdictNames), std::end(kVerdictNames), name);
    if (found == std::end(kVerdictNames)) return std::nullopt;
    return static_cast<Verdict>(found - std::begin(kVerdictNames));
}

std::optional<FaultPlan> FaultPlan::FromText(const std::string& text) {
    // The callee may hold colons itself ("AcquireSuite:PF World Suite"), so the last two count.
    const std::size_t second = text.rfind(':');
    if (second == std::string::npos || second == 0) return std::nullopt;
    const std::size_t first = text.rfind(':', second - 1);
    if (first == std::string::npos || first == 0) return std::nullopt;
    FaultPlan plan;
    plan.callee = text.substr(0, first);
    char* end = nullptr;
    plan.call = static_cast<int>(std::strtol(text.c_str() + first + 1, &end, 10));
    if (end != text.c_str() + second || plan.call < 1) return std::nullopt;
    plan.error = static_cast<int>(std::strtol(text.c_str() + second + 1, &end, 10));
    if (*end != '\0' || end == text.c_str() + second + 1 || plan.error == 0) return std::nullopt;
    return plan;
}

std::string FaultPlan::Text() const {
    return callee + ":" + std::to_string(call) + ":" + std::to_string(error);
}

std::string NotMeasured(const std::string& what) {
    return "could not be measured on this machine: " + what;
}

CheckRun::CheckRun(const CheckRunOptions& options) : options_(options), random_(options.seed) {}

int CheckRun::Draw(int low, int high) {
    // Not std::uniform_int_distribution: its numbers differ between libraries, and a seed must mean the same anywhere.
    return low + static_cast<int>(random_() % (static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low) + 1));
}

double CheckRun::DrawReal(double low, double high) {
    return low + (high - low) * (static_cast<double>(random_() >> 11) / 9007199254740992.0);
}

void CheckRun::Fail(const std::string& text) {
    Note({text, Verdict::kFail, {}, {}});
}

void CheckRun::Warn(const std::string& text) {
    Note({text, Verdict::kWarn, {}, {}});
}

void CheckRun::Note(Finding finding) {
    const auto same = [&](const Finding& other) { return other.text == finding.text; };
    if (std::any_of(result_.findings.begin(), result_.findings.end(), same)) return;
    if (Weight(finding.weight) > Weight(result_.verdict)) result_.verdict = finding.weight;
    result_.findings.push_back(std::move(finding));
}

void CheckRun::FailAndEnd(const std::string& text) {
    Fail(text);
    throw CheckRunOver();
}

void CheckRun::FailAsNoModule(const std::string& text) {
    result_.isNoModule = true;
    FailAndEnd(text);
}

void CheckRun::Skip(const std::string& reason) {
    result_.skipReason = reason;
    // Warnings do not make up for what was not looked at; they are reported all the same.
    if (!Failed()) result_.verdict = Verdict::kSkip;
    throw CheckRunOver();
}

void CheckRun::Count(const std::string& figure, double amount) {
    result_.figures[figure] += amount;
}

void CheckRun::NoteCall(const std::string& callee, int times) {
    int& most = result_.calls[callee];
    most = std::max(most, times);
}

void CheckRun::KeepEvents(const EventLog& log) {
    if (!options_.trace.empty()) AppendTrace(options_.trace, log.Events());
}

bool CheckRun::Failed() const {
    return Weight(result_.verdict) > Weight(Verdict::kWarn);
}

CheckResult CheckRun::Result() const {
    return result_;
}

void CheckRun::Merge(const CheckResult& part) {
    for (const Finding& finding : part.findings) Note(finding);
    for (const auto& [figure, amount] : part.figures) result_.figures[figure] += amount;
    for (const auto& [callee, times] : part.calls) NoteCall(callee, times);
    result_.isNoModule = result_.isNoModule || part.isNoModule;
    if (part.verdict == Verdict::kSkip && !Failed()) {
        result_.verdict = Verdict::kSkip;
        result_.skipReason = part.skipReason;
    }
}

int Check::Level() const {
    return std::atoi(id);
}

const std::vector<Check>& AllChecks() {
    static const std::vector<Check> checks = [] {
        std::vector<Check> all;
        for (const auto level : {LoadChecks, DeclarationChecks, OrderChecks, MemoryChecks, FrameChecks, RectangleChecks,
                                 PanelChecks, ParameterChecks, PixelChecks, FaultChecks, DriverChecks, ThreadChecks,
                                 LockChecks, ResultChecks, EnduranceChecks}) {
            for (const Check& check : level()) all.push_back(check);
        }
        const auto number = [](const Check& check) {
            return std::pair(check.Level(), std::atoi(std::strchr(check.id, '.') + 1));
        };
        std::sort(all.begin(), all.end(), [&](const Check& a, const Check& b) { return number(a) < number(b); });
        return all;
    }();
    return checks;
}

}  // namespace umbrant::host
