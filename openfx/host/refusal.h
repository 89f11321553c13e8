// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The plug-in's own exception, which its entry point turns into a status and a message. No exception leaves the
// plug-in.

#include <stdexcept>
#include <string>

#include "openfx/abi/status.h"

namespace umbrant::openfx {

class Refusal : public std::runtime_error {
 public:
    /// An empty sentence: the host knows the reason, and nobody is to be told.
    Refusal(OfxStatus status, const std::string& sentence) : std::runtime_error(sentence), status_(status) {}
    OfxStatus Status() const noexcept { return status_; }

 private:
    OfxStatus status_;
};

}  // namespace umbrant::openfx
