// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A file that the image library writes through, and that remembers whether it could. What is behind the library takes a
// full disk for success in one format, ends the process in another, and tells the reason in none; here every write
// succeeds as far as the library knows, and the truth is told in the end. Inside host/image only.

#include <OpenImageIO/filesystem.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

class CheckedFile : public OIIO::Filesystem::IOProxy {
 public:
    /// Writes to an open file, which stays its owner's. `name` is what the library calls it.
    CheckedFile(const std::filesystem::path& name, int descriptor) : IOProxy(name.string(), Write) {
        const int own = dup(descriptor);
        if (own >= 0) file_ = fdopen(own, "wb");
        if (file_) return;
        Note();
        if (own >= 0) ::close(own);
    }
    ~CheckedFile() override { Finish(); }
    CheckedFile(const CheckedFile&) = delete;
    CheckedFile& operator=(const CheckedFile&) = delete;

    /// Closes the file. Returns why it is not whole, or nothing when it is.
    std::optional<std::string> Finish() {
        if (file_ && std::fclose(file_) != 0) Note();
        file_ = nullptr;
        return problem_ == 0 ? std::nullopt : std::optional<std::string>(std::strerror(problem_));
    }

    // Not "file": the library would take that for a class of its own, and look into it.
    const char* proxytype() const override { return "checked"; }
    bool seek(int64_t offset) override {
        m_pos = offset;
        if (file_ && std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) Note();
        return true;
    }
    size_t write(const void* bytes, size_t size) override {
        if (file_ && problem_ == 0 && std::fwrite(bytes, 1, size, file_) != size) Note();
        m_pos += static_cast<int64_t>(size);
        if (static_cast<size_t>(m_pos) > size_) size_ = static_cast<size_t>(m_pos);
        return size;
    }
    size_t pwrite(const void* bytes, size_t size, int64_t offset) override {
        const int64_t before = m_pos;
        seek(offset);
        write(bytes, size);
        seek(before);
        return size;
    }
    size_t size() const override { return size_; }

 private:
    void Note() {
        if (problem_ == 0) problem_ = errno == 0 ? EIO : errno;
    }

    std::FILE* file_ = nullptr;
    size_t size_ = 0;
    int problem_ = 0;
};
