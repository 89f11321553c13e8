// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Failures of the host as the library's exceptions.

#include <umbrant/effect.h>

#include <string>
#include <utility>

#include "host/result.h"

namespace umbrant::host {

/// The library's code for a kind of failure.
constexpr ErrorCode CodeOf(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::kEffect:
            return ErrorCode::kEffectFailed;
        case ErrorKind::kUsage:
            return ErrorCode::kUsage;
        case ErrorKind::kFile:
            return ErrorCode::kFile;
        case ErrorKind::kModule:
            return ErrorCode::kModule;
        case ErrorKind::kInternal:
            break;
    }
    return ErrorCode::kInternal;
}

[[noreturn]] inline void Throw(const Failure& failure) {
    throw Error(CodeOf(failure.kind), failure.sentence);
}

/// The value, or the failure as an exception.
template <typename T>
T Need(Result<T> result) {
    if (!result) Throw(result.error());
    return std::move(*result);
}

[[noreturn]] inline void Refuse(const std::string& sentence) {
    Throw({ErrorKind::kUsage, sentence});
}

}  // namespace umbrant::host
