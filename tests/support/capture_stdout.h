// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Catches what a test's subject prints to standard output, through C or C++ streams alike, by redirecting the file
// descriptor. Standard output of other threads is caught too. One at a time.

#include <cstdio>
#include <string>

class CaptureStdout {
 public:
    CaptureStdout();
    /// Restores standard output; what was not taken is dropped.
    ~CaptureStdout();
    CaptureStdout(const CaptureStdout&) = delete;
    CaptureStdout& operator=(const CaptureStdout&) = delete;

    /// Flushes both streams and returns all that was printed since the construction.
    std::string Text();
    /// Returns what has reached the file descriptor already, with no flush of ours.
    std::string TextWithoutFlush() const;

 private:
    int saved_;
    std::FILE* file_;
};
