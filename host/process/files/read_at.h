// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Reading a place of an open file, however many bytes at a time the system gives.

#include <sys/types.h>

#include <cstddef>
#include <span>

namespace umbrant::host {

/// Fills `bytes` from a place of a file; the file's own position stays. Returns how many there are, fewer only at the
/// file's end; negative for an error, which errno then names.
ssize_t ReadAt(int descriptor, off_t at, std::span<std::byte> bytes);

}  // namespace umbrant::host
