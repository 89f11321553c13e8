// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A resource file as classic Mac programs keep it, in a data fork: here always with one resource in it.

#include <cstdint>
#include <string>

/// Bytes that are appended in the order of Mac files: numbers big-endian, codes of four characters in reading order.
class BigEndianBytes {
 public:
    void U8(std::uint32_t value) { Number(value, 1); }
    void U16(std::uint32_t value) { Number(value, 2); }
    void U24(std::uint32_t value) { Number(value, 3); }
    void U32(std::uint32_t value) { Number(value, 4); }
    void Text(const std::string& text) { bytes_ += text; }
    void ZerosTo(std::size_t size) { bytes_.resize(size, '\0'); }
    std::size_t Size() const { return bytes_.size(); }
    const std::string& Bytes() const { return bytes_; }

 private:
    void Number(std::uint32_t value, int bytes);
    std::string bytes_;
};

/// A file with the one resource `data` of the type `type` (a code of four characters, most significant byte first) and
/// the number `id`, without a name or attributes. `data` may have up to 16 MiB.
std::string ResourceFile(std::uint32_t type, std::int16_t id, const std::string& data);
