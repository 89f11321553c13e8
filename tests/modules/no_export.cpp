// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A shared library that is no effect module.

extern "C" [[gnu::visibility("default")]] int JustALibrary() {
    return 1;
}
