// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// For programs that draw type through Cairo: tells the leak checker of sanitizer builds that the typeface caches are
// the libraries' own, which keep them until the process ends. Without a sanitizer nothing calls these.

// The libraries are built without frame pointers, which the quick way up the stack needs.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}

extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
