// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A library without the entry points of a plug-in.

extern "C" [[gnu::visibility("default")]] int SomethingElse() {
    return 0;
}
