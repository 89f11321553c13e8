// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Runs checks in processes of their own, as many at a time as there are processors.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/validate/runner/check_process.h"
#include "host/validate/runner/runner.h"

namespace umbrant::host {

/// The arguments with which a copy of this program runs one check, or the probe.
std::vector<std::string> ChildArguments(const std::string& id, const CheckRunOptions& options);

/// The file for what a copy prints, by a number of its own.
std::string OutputFile(int number);

double MillisecondsSince(std::chrono::steady_clock::time_point begin);

/// Takes a repetition's result into the check's outcome.
void Take(CheckOutcome& outcome, const CheckResult& result, std::uint64_t seed, double milliseconds);

/// One repetition of one check.
struct Job {
    std::size_t place;  ///< in the list of outcomes
    CheckRunOptions options;
};

/// Runs jobs side by side; one that wants quiet runs alone.
class Scheduler {
 public:
    /// `ended` is called with the place of an outcome that has taken one more result.
    Scheduler(std::vector<CheckOutcome>& outcomes, std::function<void(std::size_t)> ended);

    void Run(const std::vector<Job>& jobs);

 private:
    void Start(const Job& job, const Check& check);

    void WaitForEnd();

    struct Running {
        Job job;
        std::chrono::steady_clock::time_point begin;
    };
    std::vector<CheckOutcome>& outcomes_;
    std::function<void(std::size_t)> ended_;
    std::size_t atOnce_;
    std::vector<Child> children_;
    std::vector<Running> running_;
    int started_ = 0;
};

}  // namespace umbrant::host
