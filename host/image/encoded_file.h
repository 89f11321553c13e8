// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The bytes of an image file in memory, before any of them goes to a disk. The image library takes a failed write for
// success in one format, ends the process in another, and in a third follows what it finds on the disk without end. In
// memory its writes do not fail; the copy to the disk is then checked write by write. Inside host/image and
// host/image_library only.

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace umbrant::host {

class EncodedFile {
 public:
    /// Why the bytes are not whole, or nothing when they are.
    const std::optional<std::string>& Problem() const { return problem_; }

    /// Writes all bytes to an open file. Returns why that failed, or nothing.
    std::optional<std::string> CopyTo(int descriptor) const;

    /// Takes all bytes of an open file instead of its own.
    void CopyFrom(int descriptor);

    /// Writes bytes at a place, after zeros where nothing was written before it. A failure is remembered.
    void Write(std::size_t at, std::span<const std::byte> bytes);
    /// Writes bytes behind the last.
    void Append(std::span<const std::byte> bytes) { Write(size_, bytes); }
    /// Fills `bytes` from a place. Returns how many there are.
    std::size_t Read(std::size_t at, std::span<std::byte> bytes) const;
    std::size_t Size() const { return size_; }

 private:
    /// Blocks of one size, so that growing copies nothing.
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::size_t size_ = 0;
    std::optional<std::string> problem_;
};

/// Writes all bytes to an open file, however many at a time it takes. Returns why that failed, or nothing.
std::optional<std::string> WriteAll(int descriptor, std::span<const std::byte> bytes);

}  // namespace umbrant::host
