// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A program for the headers that all test programs share when they are built.

int main() {
    return 0;
}
