// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A library that needs one that is not there.

int Absent();

extern "C" [[gnu::visibility("default")]] int OfxGetNumberOfPlugins() {
    return Absent();
}
