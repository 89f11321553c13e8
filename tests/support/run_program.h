// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Other programs run to their end, without a shell.

#include <string>
#include <vector>

#include "host/process/program_start.h"

namespace umbrant::host {

/// What a run left.
struct ProgramRun {
    int code = -1;         ///< its exit code; -1 when a signal ended it or it could not be started
    std::string output{};  ///< what it printed to the outputs that were caught
    std::string errors{};
};

/// Runs `words[0]`, a file or a name that is looked for in PATH, with the other words as arguments. `start` says the
/// rest; standard input is empty unless it says otherwise. Outputs that it leaves inherited are caught until the
/// program's end. With Stream::Pipe standard output is read to the pipe's end, which comes when the program and all
/// that it started have closed it.
ProgramRun RunProgram(const std::vector<std::string>& words, ProgramStart start = {});

/// The words of a line, with blanks between them. There are no quotes: every other character is part of a word.
std::vector<std::string> Words(const std::string& line);

}  // namespace umbrant::host
