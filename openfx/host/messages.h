// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Messages of the host to its user. No function throws, and a host without messages shows none.

#include "openfx/abi/core.h"

namespace umbrant::openfx {

/// Shows a failure once: at the instance until ClearFailure, where the host can; otherwise as a message. `effect` may
/// be null.
void ShowFailure(OfxImageEffectHandle effect, const char* sentence) noexcept;
void ClearFailure(OfxImageEffectHandle effect) noexcept;

/// Answers what a user asked for, as a message of this type of the standard's.
void ShowMessage(OfxImageEffectHandle effect, const char* type, const char* sentence) noexcept;

}  // namespace umbrant::openfx
