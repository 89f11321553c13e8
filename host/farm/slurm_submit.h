// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Hands a job to Slurm.

#include <string>

#include "host/result.h"

namespace umbrant::host {

/// What sbatch answered.
struct SubmittedJob {
    std::string id;    ///< of the array; with ";CLUSTER" behind it where there are several
    std::string note;  ///< what else sbatch printed, on one line; mostly empty
};

/// Submits the script in the working folder of this process. Fails with `ErrorKind::kFile` when there is no sbatch or
/// it does not take the job, with what it printed.
Result<SubmittedJob> SubmitToSlurm(const std::string& script);

/// Minutes that a task of Slurm may take, from the seconds that its frames were measured to take: five times as long,
/// as other machines may be slower or busy, as often as it may be tried, and five minutes more for the start. At least
/// 6, at most a year.
int MinutesForTask(double seconds, int tries);

}  // namespace umbrant::host
