// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The image library's way into an EncodedFile.

#include <OpenImageIO/filesystem.h>

#include <string>

#include "host/image/encoded_file.h"

namespace umbrant::host {

class EncodedProxy : public OIIO::Filesystem::IOProxy {
 public:
    /// `name` is what the library calls it; its extension names the format.
    EncodedProxy(const std::string& name, EncodedFile& file) : IOProxy(name, Write), file_(file) {}

    // Not "file": the library would treat that as one of its own classes.
    const char* proxytype() const override { return "encoded"; }
    bool seek(int64_t offset) override {
        m_pos = offset;
        return true;
    }
    size_t write(const void* bytes, size_t size) override {
        pwrite(bytes, size, m_pos);
        m_pos += static_cast<int64_t>(size);
        return size;
    }
    size_t pwrite(const void* bytes, size_t size, int64_t offset) override {
        file_.Write(static_cast<std::size_t>(offset), {static_cast<const std::byte*>(bytes), size});
        return size;
    }
    size_t read(void* bytes, size_t size) override {
        const std::size_t count = pread(bytes, size, m_pos);
        m_pos += static_cast<int64_t>(count);
        return count;
    }
    size_t pread(void* bytes, size_t size, int64_t offset) override {
        return file_.Read(static_cast<std::size_t>(offset), {static_cast<std::byte*>(bytes), size});
    }
    size_t size() const override { return file_.Size(); }

 private:
    EncodedFile& file_;
};

}  // namespace umbrant::host
