// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Error probes. The calling thread's context must be current.

/// Takes one error from GL's queue and, if there is one, prints it with what was attempted and where. Further errors
/// wait for later calls.
void CheckOpenGLError(const char* what, const char* file, int line);

/// Intended: does nothing; the second probe is switched off by design.
void glCheckError_(const char* file, int line);
