// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Opens the address it is given, by the platform layer that it is built with, and reports a child that this leaves.

#include "platform/open_url.h"

#include <sys/wait.h>

#include <cerrno>
#include <cstdio>

using namespace umbrant::effect;

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    OpenUrl(argv[1]);
    if (waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD) std::puts("a child is left");
    return 0;
}
