// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

namespace umbrant::host {

/// Limits the image library's threads to those that the machine has, and to one where the system refuses threads. Once,
/// before the library's first work.
void PrepareLibraryThreads();

}  // namespace umbrant::host
