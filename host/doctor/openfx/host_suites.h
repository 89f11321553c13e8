// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host as a plug-in sees it: its properties and its suites.

#include <string>

#include "openfx/abi/core.h"

namespace umbrant::host {

/// The record for `setHost`; lives as long as the process.
OfxHost& DoctorHost();

/// The last message that a plug-in had for people, since the last call; empty for none.
std::string TakeMessage();

}  // namespace umbrant::host
