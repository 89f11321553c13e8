// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Tells the leak checker of sanitizer builds which leaks are meant: a render thread's record is abandoned at the
// thread's end. Without a sanitizer nothing calls this.

extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:InitThreadLocalRenderData\n";
}
