// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Host memory behind handles. A handle is a pointer to its master pointer, which leads to the bytes for as long as the
// handle lives: they move only when the handle is resized, so effects may look through one that is not locked, and some
// do where no suite is at hand. Every thread.

#include "hostapi/basic_types.h"

namespace umbrant::host {

/// A new, unlocked handle whose bytes are not zero; null when memory cannot be had. Size 0 is allowed.
PF_Handle NewHandle(A_HandleSize size);
/// The address of the bytes; null for null. Locks are counted. A pointer that is no live handle is reported and gives
/// null.
void* LockHandle(PF_Handle handle);
void UnlockHandle(PF_Handle handle);
/// Frees the handle, locked or not (a lock left on it is reported). Null is ignored; a second disposal is reported.
void DisposeHandle(PF_Handle handle);
/// Bytes asked for; 0 for null and, with a report, for a pointer that is no live handle.
A_HandleSize HandleSize(PF_Handle handle);
/// Grows or shrinks, keeping the bytes that both sizes have. A locked handle is refused.
PF_Err ResizeHandle(A_HandleSize size, PF_Handle* handle);

}  // namespace umbrant::host
