// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one failure of the host for every way in which memory runs out.

#include <cstdint>
#include <string>

#include "host/compositing/world.h"
#include "host/result.h"

namespace umbrant::host {

/// "not enough memory for WHAT, N MiB" with `ErrorKind::kInternal`; `bytes` is what was needed.
Failure NotEnoughMemory(const std::string& what, std::uint64_t bytes);
/// The same for an image.
Failure NotEnoughMemory(const std::string& what, std::int64_t width, std::int64_t height, Depth depth);
/// If the needed size is unknown: "not enough memory for WHAT, more than the N MiB in use".
Failure NotEnoughMemory(const std::string& what);

/// Whether so much memory could be allocated now: for failures without a stated reason.
bool CanHaveMemory(std::uint64_t bytes);

/// Whether a library's message reports a lack of memory: not all libraries throw std::bad_alloc.
bool SaysNoMemory(const std::string& message);

}  // namespace umbrant::host
