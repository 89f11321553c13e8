// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A file under construction: it has a temporary name beside its place until it is whole. Whoever finds a file under its
// right name may trust it.

#include <filesystem>

#include "host/result.h"

/// Removes its file when it goes, unless the file was put in its place. One at a time may be under construction in a
/// thread; across threads any number.
class TemporaryFile {
 public:
    /// Chooses the name: hidden, in the folder of `place`, with its extension. Creates nothing.
    explicit TemporaryFile(const std::filesystem::path& place);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& Name() const { return name_; }

    /// Renames the file to its place, replacing what is there. Fails with `ExitCode::kFile`.
    Result<Done> PutInPlace();

 private:
    std::filesystem::path place_;
    std::filesystem::path name_;
    int slot_ = -1;
};

/// Removes every file under construction. May be called from a signal handler.
void RemoveTemporaryFiles() noexcept;

/// The same before the program ends at once: whoever begins another file waits for that end.
void EndTemporaryFiles() noexcept;
