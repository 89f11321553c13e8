// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a fuzz target is made of: the one function that takes any bytes, a way to cut values off them, and a way to say
// that a promise was broken. A target must not depend on anything but the bytes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

#include <unistd.h>

/// Takes any bytes and returns 0; ends the process when a promise is broken. Defined once in each target's file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the process with a sentence when a promise does not hold.
inline void Promise(bool holds, const std::string& sentence) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", sentence.c_str());
    std::abort();
}

/// The bytes, from the front. Past their end everything is zero.
class Bytes {
 public:
    Bytes(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool Empty() const { return rest_.empty(); }
    std::span<const std::uint8_t> Rest() const { return rest_; }

    template <typename Value>
    Value Take() {
        Value value{};
        const std::size_t count = std::min(sizeof(value), rest_.size());
        if (count > 0) std::memcpy(&value, rest_.data(), count);
        rest_ = rest_.subspan(count);
        return value;
    }
    std::uint8_t Byte() { return Take<std::uint8_t>(); }
    bool Flag() { return (Byte() & 1) != 0; }
    /// A number from `low` to `high`, of one byte.
    int Within(int low, int high) { return low + Byte() % (high - low + 1); }

 private:
    std::span<const std::uint8_t> rest_;
};

/// A file that the target's bytes are put into, in a folder of this process that goes when it ends.
class ScratchFile {
 public:
    explicit ScratchFile(const std::string& name) {
        std::string pattern = (std::filesystem::temp_directory_path() / "umbrant_fuzz_XXXXXX").string();
        Promise(mkdtemp(pattern.data()) != nullptr, "a folder for files under test can be made");
        folder_ = pattern;
        path_ = folder_ / name;
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    void Write(std::span<const std::uint8_t> bytes) const {
        std::FILE* file = std::fopen(path_.c_str(), "wb");
        Promise(file != nullptr, "a file under test can be written");
        if (!bytes.empty()) std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }

 private:
    std::filesystem::path folder_;
    std::filesystem::path path_;
};
