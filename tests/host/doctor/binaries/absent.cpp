// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library that is not there when no_library.cpp is loaded.

int Absent() {
    return 1;
}
