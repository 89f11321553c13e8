// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// `umbrant farm --submit`: measures a few frames, shows the job, asks, and hands the job to Slurm.

#include "host/cli/exit_code.h"
#include "host/cli/render/render_options.h"
#include "host/farm/farm_job.h"
#include "host/result.h"

namespace umbrant::host {

struct SubmitOptions {
    bool submits = false;
    bool yes = false;           ///< without asking
    bool noFirstFrame = false;  ///< nothing is drawn before, and tasks have no time limit
};

/// Fails with `ErrorKind::kUsage` where it would have to ask and nobody can answer, or `engine` is not Slurm.
Result<Done> CheckSubmission(const SubmitOptions& options, const std::string& engine);

/// Prints the job and what it is to standard error and, once it is submitted, its number to standard output. `render`
/// has the arguments of the job's tasks. Fails as MeasureRender and SubmitToSlurm do.
Result<ExitCode> Submit(FarmJob job, const SubmitOptions& options, const RenderOptions& render);

}  // namespace umbrant::host
