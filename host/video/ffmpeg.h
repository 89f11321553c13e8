// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The two programs that clips are read and written by, ffmpeg and ffprobe, and what to say when they do not do it.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/process/child_process.h"

namespace umbrant::host {

/// Which stream of a tool is a pipe to this program; the other one is empty or lost.
enum class Piped { kInput, kOutput };

/// Starts "ffmpeg" or "ffprobe" from PATH with the arguments that every run has and these. Fails with
/// `ErrorKind::kFile` and a sentence that names the program, also when it is not there.
Result<std::unique_ptr<ChildProcess>> StartTool(const std::string& tool, const std::vector<std::string>& arguments,
                                                Piped piped);

/// "ffmpeg ended with exit code 1: No space left on device", "ffmpeg was ended by signal 9 (Killed)".
std::string EndText(const std::string& tool, const ProcessEnd& end);

/// A file's name as an argument that means this file whatever signs it has: no option, no other protocol, no pattern.
std::string FileArgument(const std::filesystem::path& file);

}  // namespace umbrant::host
