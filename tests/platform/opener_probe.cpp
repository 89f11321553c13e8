// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Replaces the desktop's opener in tests. Writes what it was given to the file that RECORD names: its arguments,
// its environment and its open descriptors, each on a line, then "done".

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

extern char** environ;

int main(int argc, char** argv) {
    const char* name = std::getenv("RECORD");
    if (name == nullptr) return 2;
    std::ofstream record(name);
    for (int i = 1; i < argc; ++i) record << "argument " << argv[i] << '\n';
    for (char** variable = environ; *variable != nullptr; ++variable) record << "variable " << *variable << '\n';
    for (int stream = 0; stream < 3; ++stream) {
        record << "stream " << (fcntl(stream, F_GETFL) != -1 ? "open" : "closed") << '\n';
    }
    record << "leader " << (getsid(0) == getpid()) << '\n';
    record << "done\n";
    return 0;
}
