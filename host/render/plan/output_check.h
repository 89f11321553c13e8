// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether a render would write over a file that it reads. The set may have a million frames: folders are looked at
// once, and frames one by one only where a name could meet another.

#include <string>
#include <vector>

#include "host/render/frame_source.h"
#include "host/render/plan/frame_number.h"
#include "host/render/plan/frame_pattern.h"
#include "host/result.h"

namespace umbrant::host {

/// What a set of frames reads and writes.
struct ReadAndWritten {
    const std::vector<FrameNumber>& frames;
    const FrameSource& input;
    const FrameSource& texture;  ///< with an empty path for none
    MissingFrames missing = MissingFrames::kError;
    const std::vector<std::string>& alsoRead;  ///< other files that are read
    std::string output;                        ///< the path of all frames, if `pattern` is null
    const FramePattern* pattern = nullptr;     ///< of the output's files
};

/// Fails with `ErrorKind::kUsage` when an output is a file that is read, under any name that leads to it.
Result<Done> CheckNothingIsOverwritten(const ReadAndWritten& files);

/// Fails with `ErrorKind::kUsage` when both paths lead to one file.
Result<Done> CheckApart(const std::string& input, const std::string& output);

}  // namespace umbrant::host
