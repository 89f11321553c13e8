// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Opens the address it is given, by the platform layer that it is built with.

#include "platform/open_url.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    OpenUrl(argv[1]);
    return 0;
}
