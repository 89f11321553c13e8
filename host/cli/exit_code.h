// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The exit codes of the program.

#include "host/result.h"

namespace umbrant::host {

/// Exit codes of every subcommand; they are part of the command line's contract.
enum class ExitCode {
    kDone = 0,
    kEffectFailed = 1,  ///< the effect returned an error
    kUsage = 2,         ///< wrong usage or a bad value
    kFile = 3,          ///< a file cannot be read or written
    kModule = 4,        ///< the module cannot be loaded
    kInternal = 5,      ///< an error of the program itself
    kInterrupted = 130,
};

/// The exit code that a failure of this kind leads to.
constexpr ExitCode ExitCodeOf(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::kEffect:
            return ExitCode::kEffectFailed;
        case ErrorKind::kUsage:
            return ExitCode::kUsage;
        case ErrorKind::kFile:
            return ExitCode::kFile;
        case ErrorKind::kModule:
            return ExitCode::kModule;
        case ErrorKind::kInternal:
            break;
    }
    return ExitCode::kInternal;
}

}  // namespace umbrant::host
