// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The descriptors 0 to 2, which a program may be started without.

namespace umbrant::host {

/// Opens /dev/null on whichever of them is closed, so that no file of the program's is ever taken for a standard
/// stream. False when that is not possible. To be called before anything else is opened.
bool OpenStandardStreams();

}  // namespace umbrant::host
