// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The exception of the library. It has the message that the program `umbrant` prints, and the exit code that the
// program ends with.

#include <stdexcept>
#include <string>

#include <umbrant/export.h>

namespace umbrant {

/// The kind of a failure. The numbers are the program's exit codes.
enum class ErrorCode {
    kEffectFailed = 1,  ///< the effect returned an error
    kUsage = 2,         ///< a wrong argument or a bad value; the message suggests the closest match
    kFile = 3,          ///< a file cannot be read or written
    kModule = 4,        ///< the module cannot be loaded
    kInternal = 5,      ///< not enough memory, or an error of the library itself
};

/// The only exception that the library throws itself; any call may also throw std::bad_alloc. A call that throws has
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
