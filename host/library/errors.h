// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Failures of the host as the library's exceptions.

#include <umbrant/effect.h>

#include <string>
#include <utility>

#include "host/result.h"

namespace umbrant::host {

[[noreturn]] inline void Throw(const Failure& failure) {
    throw Error(static_cast<ErrorCode>(failure.code), failure.sentence);
}

/// The value, or the failure as an exception.
template <typename T>
T Need(Result<T> result) {
    if (!result) Throw(result.Error());
    return std::move(*result);
}

[[noreturn]] inline void Refuse(const std::string& sentence) {
    Throw({ExitCode::kUsage, sentence});
}

}  // namespace umbrant::host
