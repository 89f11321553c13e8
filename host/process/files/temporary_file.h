// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A file under construction: it has a hidden temporary name in the folder of its place until it is whole. Whoever finds
// a file under its right name may trust it.

#include <filesystem>
#include <optional>
#include <string>

#include "host/result.h"

namespace umbrant::host {

/// Removes its file when it goes, unless the file was put in its place. Any number may be under construction, on any
/// threads.
class TemporaryFile {
 public:
    /// Makes an empty file in the folder of `place`, with a name of HiddenName. An interruption finds it from its first
    /// moment on; while there is one, this does not return.
    explicit TemporaryFile(const std::filesystem::path& place);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path& Name() const { return name_; }

    /// The file, open for reading and writing; negative when it could not be made. It is closed when this goes. Who
    /// writes through it after an interruption has removed the file leaves nothing behind.
    int Descriptor() const { return descriptor_; }
    /// Why it could not be made; nothing when it was.
    std::optional<std::string> Problem() const;
    /// A name to open the file by that makes none. Where the system has no such names it is Name().
    std::string OpenName() const;

    /// Renames the file to its place, replacing what is there. Fails with `ErrorKind::kFile`.
    Result<Done> PutInPlace();

 private:
    std::filesystem::path place_;
    std::filesystem::path name_;
    int descriptor_ = -1;
    int problem_ = 0;
};

/// Removes every file under construction.
void RemoveTemporaryFiles();

/// The same before the process ends: a thread that begins another file waits for that end.
void EndTemporaryFiles();

}  // namespace umbrant::host
