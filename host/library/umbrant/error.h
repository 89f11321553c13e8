// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the library reports failure: an exception with one sentence for a person, the one that the program `umbrant`
// prints, and the exit code that the program ends with.

#include <stdexcept>
#include <string>

#include <umbrant/export.h>

namespace umbrant {

/// What kind of failure it was. The numbers are the program's exit codes.
enum class ErrorCode {
    kEffectFailed = 1,  ///< the effect returned an error
    kUsage = 2,         ///< a wrong argument or a bad value; the nearest right one is told
    kFile = 3,          ///< a file cannot be read or written
    kModule = 4,        ///< the module cannot be loaded
    kInternal = 5,      ///< not enough memory, or an error of the library itself
};

/// The only exception that the library throws on purpose; std::bad_alloc may come from any call. A call that throws has
/// changed nothing.
class UMBRANT_API Error : public std::runtime_error {
 public:
    Error(ErrorCode code, const std::string& sentence);
    Error(const Error&) noexcept;
    ~Error() override;

    ErrorCode Code() const noexcept { return code_; }

 private:
    ErrorCode code_;
};

}  // namespace umbrant
