// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The bytes of an image file in memory, before any of them goes to a disk. The image library takes a failed write for
// success in one format, ends the process in another, and in a third follows what it finds on the disk without end. In
// memory its writes do not fail; the copy to the disk is then checked write by write. Inside host/image only.

#include <OpenImageIO/filesystem.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class EncodedFile : public OIIO::Filesystem::IOProxy {
 public:
    /// `name` is what the library calls it; its extension names the format.
    explicit EncodedFile(const std::string& name) : IOProxy(name, Write) {}

    /// Why the bytes are not whole, or nothing when they are.
    const std::optional<std::string>& Problem() const { return problem_; }

    /// Writes all bytes to an open file. Returns why that failed, or nothing.
    std::optional<std::string> CopyTo(int descriptor) const;

    /// Takes all bytes of an open file instead of its own.
    void CopyFrom(int descriptor);

    // Not "file": the library would take that for a class of its own, and look into it.
    const char* proxytype() const override { return "encoded"; }
    bool seek(int64_t offset) override;
    size_t write(const void* bytes, size_t size) override;
    size_t pwrite(const void* bytes, size_t size, int64_t offset) override;
    size_t read(void* bytes, size_t size) override;
    size_t pread(void* bytes, size_t size, int64_t offset) override;
    size_t size() const override { return size_; }

 private:
    /// Blocks of one size, so that growing copies nothing.
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
    std::size_t size_ = 0;
    std::optional<std::string> problem_;
};

/// Writes all bytes to an open file, however many at a time it takes. Returns why that failed, or nothing.
std::optional<std::string> WriteAll(int descriptor, const void* bytes, std::size_t size);
