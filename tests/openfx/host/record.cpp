// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Keeps violations, calls and faults under one lock.

#include "tests/openfx/host/record.h"

#include <algorithm>
#include <utility>

namespace umbrant::ofx {

void Record::Violation(const std::string& sentence) {
    const std::lock_guard lock(mutex_);
    if (std::find(violations_.begin(), violations_.end(), sentence) == violations_.end()) {
        violations_.push_back(sentence);
    }
}

std::vector<std::string> Record::Violations() const {
    const std::lock_guard lock(mutex_);
    return violations_;
}

std::string Record::ViolationText() const {
    std::string text;
    for (const std::string& sentence : Violations()) text += sentence + "\n";
    return text;
}

void Record::ClearViolations() {
    const std::lock_guard lock(mutex_);
    violations_.clear();
}

void Record::SetFaults(std::vector<Fault> faults) {
    const std::lock_guard lock(mutex_);
    faults_ = std::move(faults);
}

bool Record::HasFaults() const {
    const std::lock_guard lock(mutex_);
    return !faults_.empty();
}

std::optional<OfxStatus> Record::Count(const std::string& function) {
    const std::lock_guard lock(mutex_);
    const int call = ++calls_[function];
    for (const Fault& fault : faults_) {
        if (fault.function == function && (fault.nth == 0 || fault.nth == call)) return fault.status;
    }
    return std::nullopt;
}

std::map<std::string, int> Record::Calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

void Record::ClearCalls() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
}

void Record::Open(const std::string& kind, int change) {
    const std::lock_guard lock(mutex_);
    if ((open_[kind] += change) == 0) open_.erase(kind);
}

std::map<std::string, int> Record::OpenCounts() const {
    const std::lock_guard lock(mutex_);
    return open_;
}

}  // namespace umbrant::ofx
