// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// POSIX's own list of handlers. The C library takes those of a module off it when the module is unloaded.

#include "platform/fork.h"

#include <pthread.h>

namespace umbrant::effect {

void OnFork(void (*inChild)()) {
    // Without memory for it a forked child is what it would be without this.
    pthread_atfork(nullptr, nullptr, inChild);
}

}  // namespace umbrant::effect
