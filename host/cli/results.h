// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where results go. Effect modules print diagnostics to standard output, in the middle of what a program may be reading
// there; so the program keeps standard output for its results and lets everything else appear on standard error.

#include <string>

namespace umbrant::host {

/// Takes standard output for the results: from here on the process's own standard output is its standard error. Once,
/// at the program's start, before a module is loaded.
void KeepStandardOutputForResults();

/// Undoes it after FlushResults: standard output is what it was, and a failure so far is forgotten. For a process in
/// which more than one command runs.
void GiveStandardOutputBack();

/// Prints to the program's standard output. When nobody reads there any more, the process ends, with exit code 141.
void PrintResult(const std::string& text);

/// Hands over all results. False when any of them could not be written so far; errno is then the first one's error.
bool FlushResults();

}  // namespace umbrant::host
