// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/results.h"

#include <unistd.h>

#include <cstdio>

namespace {

std::FILE* results = stdout;
bool failed = false;

}  // namespace

void KeepStandardOutputForResults() {
    const int kept = dup(STDOUT_FILENO);
    std::FILE* stream = kept < 0 ? nullptr : fdopen(kept, "w");
    if (!stream) return;
    results = stream;
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

void PrintResult(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), results) != text.size()) failed = true;
}

bool FlushResults() {
    return std::fflush(results) == 0 && !failed;
}
