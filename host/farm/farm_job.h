// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A set of frames as a job for a render farm: the text that the farm's own engine takes. Nothing is asked of files; a
// task is one chunk of the frames, drawn by `umbrant render`.

#include <string>
#include <vector>

namespace umbrant::host {

/// What is the same on every farm.
struct FarmJob {
    std::string name;    ///< letters, digits, '-', '_' and '.'
    int frames = 1;      ///< in all
    int tasks = 1;       ///< chunks, from 1 on
    int tries = 1;       ///< how often a failing task is started
    int minutes = 0;     ///< a task may take, for Slurm; 0 for no limit of its own
    std::string folder;  ///< absolute; what relative names are relative to
    std::string logs;    ///< the folder of the logs, "." for `folder`; no quotes, backslashes or control characters
    std::string halt;    ///< "never", "soon" or "now", for GNU parallel
    /// The program, `render` and its arguments; the chunk and `--skip-existing` are added.
    std::vector<std::string> command;
};

/// A script for sbatch: an array with one index a task.
std::string SlurmJob(const FarmJob& job);

/// A script that lets GNU parallel run the tasks; its arguments go to parallel.
std::string ParallelJob(const FarmJob& job);

/// A job template of Open Job Description, 2023-09, in JSON.
std::string OpenJdJob(const FarmJob& job);

}  // namespace umbrant::host
