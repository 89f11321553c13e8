// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/timing.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>

namespace umbrant::host {

namespace {

double Milliseconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

/// After how many rounds an answer is looked for, and how many of the extreme values on each side are left out then.
/// What remains encloses the median with at least 98 percent, whatever the distribution of the noise.
struct Round {
    std::size_t rounds, leftOut;
};
constexpr Round kRounds[] = {{7, 0}, {15, 2}, {31, 8}};

struct Interval {
    double least = 0, most = 0;
};

/// The interval for the median of as many of the values as the largest round takes. Nothing is sure about too few.
bool EncloseMedian(std::vector<double> values, Interval& interval) {
    const Round* reached = nullptr;
    for (const Round& round : kRounds) {
        if (values.size() >= round.rounds) reached = &round;
    }
    if (!reached) return false;
    values.resize(reached->rounds);
    std::sort(values.begin(), values.end());
    interval = {values[reached->leftOut], values[values.size() - 1 - reached->leftOut]};
    return true;
}

/// By how much the cost grows from one amount to another, for each round; false when a cost is not positive.
bool Ratios(const std::vector<std::vector<double>>& rounds, std::size_t from, std::size_t to,
            std::vector<double>& ratios) {
    ratios.clear();
    for (const std::vector<double>& round : rounds) {
        if (!(round[from] > 0) || !(round[to] > 0)) return false;
        ratios.push_back(round[to] / round[from]);
    }
    return true;
}

/// The time that a try would have taken on a usual machine. `stolen` is what other programs took away from it.
double OnUsualMachine(const TimedTry& one, double stolen) {
    const double own = std::max(0.0, one.elapsed - stolen);
    const double computing = std::min(one.processor, own);
    return own - computing + computing / one.pace.slowness;
}

}  // namespace

double ProcessorMilliseconds() {
    return Milliseconds(CLOCK_PROCESS_CPUTIME_ID);
}

double ElapsedMilliseconds() {
    return Milliseconds(CLOCK_MONOTONIC);
}

Growth JudgeGrowth(const std::vector<double>& work, const std::vector<std::vector<double>>& rounds) {
    constexpr double kSurplus = 1.3, kPerFactor = 4;
    Growth growth;
    if (work.size() < 2) return growth;
    const std::size_t last = work.size() - 1;
    std::vector<double> ratios;
    Interval whole, end;
    if (!Ratios(rounds, 0, last, ratios) || !EncloseMedian(ratios, whole)) return growth;
    growth.least = whole.least;
    growth.most = whole.most;
    if (!Ratios(rounds, last - 1, last, ratios) || !EncloseMedian(ratios, end)) return growth;
    const double amount = work[last] / work[0];
    const double bound = amount * std::pow(kSurplus, std::log(amount) / std::log(kPerFactor));
    // What outgrows its work goes on doing so at the last step; a jump before it, out of a cache perhaps, does not.
    const double lastAmount = work[last] / work[last - 1];
    if (whole.most <= bound || end.most <= lastAmount) {
        growth.proportional = Claim::kHolds;
    } else if (whole.least > bound && end.least > lastAmount) {
        growth.proportional = Claim::kFails;
    }
    return growth;
}

Growth MeasureGrowth(const std::vector<double>& work, const std::function<double(std::size_t k)>& cost,
                     double deadline) {
    std::vector<std::vector<double>> rounds;
    Growth growth;
    for (const Round& round : kRounds) {
        while (rounds.size() < round.rounds) {
            if (ElapsedMilliseconds() > deadline) return growth;
            std::vector<double> costs(work.size());
            // Amounts follow each other closely and in both directions, so that what changes slowly cancels out.
            for (std::size_t i = 0; i < work.size(); ++i) {
                const std::size_t k = rounds.size() % 2 == 0 ? i : work.size() - 1 - i;
                costs[k] = cost(k);
            }
            rounds.push_back(std::move(costs));
        }
        growth = JudgeGrowth(work, rounds);
        if (growth.proportional != Claim::kUnclear) break;
    }
    return growth;
}

MachinePace MeasurePace() {
    constexpr int kTurns = 8 << 20;
    constexpr double kUsualMilliseconds = 15;
    const double elapsed = ElapsedMilliseconds();
    const double processor = Milliseconds(CLOCK_THREAD_CPUTIME_ID);
    // Each turn waits for the one before it, so that all compilers and processors take a like number of cycles.
    std::uint64_t state = 1;
    for (int i = 0; i < kTurns; ++i) state = state * 6364136223846793005u + 1442695040888963407u;
    volatile std::uint64_t sink = state;
    static_cast<void>(sink);
    const double computed = Milliseconds(CLOCK_THREAD_CPUTIME_ID) - processor;
    const double passed = ElapsedMilliseconds() - elapsed;
    MachinePace pace;
    if (computed > 0) pace.stretch = std::max(1.0, passed / computed);
    pace.slowness = std::max(1.0, computed / kUsualMilliseconds);
    return pace;
}

TimedTry TimeOf(const std::function<void()>& work) {
    TimedTry one;
    const MachinePace before = MeasurePace();
    const double elapsed = ElapsedMilliseconds();
    const double processor = ProcessorMilliseconds();
    work();
    one.elapsed = ElapsedMilliseconds() - elapsed;
    one.processor = ProcessorMilliseconds() - processor;
    const MachinePace after = MeasurePace();
    one.pace = {std::max(before.stretch, after.stretch), std::max(before.slowness, after.slowness)};
    return one;
}

Claim JudgeLimit(const std::vector<TimedTry>& tries, double limit) {
    // A loop may meet a quieter moment than the work between two of them.
    constexpr double kDoubt = 3;
    constexpr std::size_t kEnough = 2;
    bool allBeyond = tries.size() >= kEnough;
    for (const TimedTry& one : tries) {
        if (OnUsualMachine(one, 0) <= limit) return Claim::kHolds;
        const double stolen = kDoubt * one.processor * (one.pace.stretch - 1);
        if (OnUsualMachine(one, stolen) <= limit) allBeyond = false;
    }
    return allBeyond ? Claim::kFails : Claim::kUnclear;
}

}  // namespace umbrant::host
