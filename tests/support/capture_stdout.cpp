// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/capture_stdout.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace {

void FlushAll() {
    std::cout.flush();
    std::fflush(stdout);
}

}  // namespace

CaptureStdout::CaptureStdout() {
    FlushAll();
    saved_ = dup(STDOUT_FILENO);
    file_ = std::tmpfile();
    if (saved_ < 0 || !file_ || dup2(fileno(file_), STDOUT_FILENO) < 0) std::abort();
}

CaptureStdout::~CaptureStdout() {
    FlushAll();
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
    std::fclose(file_);
}

std::string CaptureStdout::Text() {
    FlushAll();
    return TextWithoutFlush();
}

std::string CaptureStdout::TextWithoutFlush() const {
    std::string text;
    char buffer[4096];
    for (off_t at = 0;;) {
        const ssize_t count = pread(fileno(file_), buffer, sizeof buffer, at);
        if (count <= 0) return text;
        text.append(buffer, static_cast<size_t>(count));
        at += count;
    }
}
