// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Thread-local variables of mapped images. Each thread has its own copy of an image's variables from its first access
// on; it is freed when the thread ends, after the destructors of what is in it.

/// The address for a descriptor's `thunk`. It takes the descriptor in rdi, returns the variable's address in rax and
/// keeps every other register, as code compiled for macOS expects. A descriptor's key is the address of its image's
/// ThreadLocalTemplate.
void* ThreadLocalThunk();
