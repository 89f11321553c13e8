// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Times that are measured, and decisions about them that hold on a busy or a slow machine: processor time instead of
// time on the wall where it will do, repetitions until the answer is sure, and "unclear" as an answer where it stays
// open. The decisions are functions of plain numbers.

#include <functional>
#include <vector>

namespace umbrant::host {

/// Processor time of this process so far, all of its threads, in milliseconds.
double ProcessorMilliseconds();
/// Elapsed time since an arbitrary moment, in milliseconds.
double ElapsedMilliseconds();

/// What repeated measurements say about a claim.
enum class Claim {
    kHolds,    ///< surely within the bound
    kFails,    ///< surely beyond it
    kUnclear,  ///< the measurements do not agree well enough to say
};

/// How a cost grows with an amount of work.
struct Growth {
    Claim proportional = Claim::kUnclear;
    /// The median of (cost at the most work / cost at the least work) is between these, with at least 98 percent.
    double least = 0, most = 0;
};

/// Evaluates rounds of measurements: `rounds[i][k]` is the cost of a frame at `work[k]` in round i. Amounts ascend.
/// Cost counts as proportional up to a surplus of 30 percent for each factor of 4 in work. Unclear without enough
/// rounds.
Growth JudgeGrowth(const std::vector<double>& work, const std::vector<std::vector<double>>& rounds);

/// Measures until JudgeGrowth has an answer, the most rounds have been made, or `deadline` (of ElapsedMilliseconds) has
/// passed. `cost` gives the cost of a frame at the k-th amount, in any unit.
Growth MeasureGrowth(const std::vector<double>& work, const std::function<double(std::size_t k)>& cost,
                     double deadline);

/// How the machine is doing at this moment, from a loop of known length.
struct MachinePace {
    double stretch = 1;   ///< elapsed time of a computation divided by its processor time: 1 on a quiet machine
    double slowness = 1;  ///< processor time of the loop divided by that of a usual machine, at least 1
};
MachinePace MeasurePace();

/// One try of something that has a time limit.
struct TimedTry {
    double elapsed = 0, processor = 0;  ///< milliseconds
    MachinePace pace;                   ///< around the try
};
TimedTry TimeOf(const std::function<void()>& work);

/// Whether the tries keep a limit in milliseconds that was set for a usual, quiet machine. One good try is enough to
/// hold; two bad ones, and no good one, to fail. Time that the machine took away is not counted against the effect.
Claim JudgeLimit(const std::vector<TimedTry>& tries, double limit);

}  // namespace umbrant::host
