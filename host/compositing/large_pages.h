// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Fewer page faults for large blocks.

#include <cstddef>

namespace umbrant::host {

/// Asks the system to hand out a block that is going to be written in large pages. Null and small blocks are left
/// alone. Only advice: if the system ignores it, everything still works.
void AskForLargePages(std::byte* data, std::size_t size);

}  // namespace umbrant::host
