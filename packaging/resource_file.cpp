// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "packaging/resource_file.h"

namespace {

constexpr std::uint32_t kDataOffset = 256;  // a header of 16 bytes, and room that the system once used
constexpr std::uint32_t kMapLength = 50;    // with one type and one resource
constexpr std::uint32_t kTypeListOffset = 28;
constexpr std::uint32_t kReferenceListOffset = 10;  // from the type list: its count and one entry
constexpr std::uint32_t kNoName = 0xFFFF;

void Header(BigEndianBytes* file, std::uint32_t dataLength) {
    file->U32(kDataOffset);
    file->U32(kDataOffset + dataLength);
    file->U32(dataLength);
    file->U32(kMapLength);
}

void Map(BigEndianBytes* file, std::uint32_t dataLength, std::uint32_t type, std::int16_t id) {
    Header(file, dataLength);
    file->U32(0);  // next map; this and the next two are for the system at run time
    file->U16(0);  // file reference
    file->U16(0);  // file attributes
    file->U16(kTypeListOffset);
    file->U16(kMapLength);  // the name list is empty, at the end
    file->U16(0);           // types, less one
    file->U32(type);
    file->U16(0);  // resources of the type, less one
    file->U16(kReferenceListOffset);
    file->U16(static_cast<std::uint16_t>(id));
    file->U16(kNoName);
    file->U8(0);   // attributes
    file->U24(0);  // offset in the data
    file->U32(0);  // handle, for the system at run time
}

}  // namespace

void BigEndianBytes::Number(std::uint32_t value, int bytes) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) bytes_ += static_cast<char>(value >> shift & 0xFF);
}

std::string ResourceFile(std::uint32_t type, std::int16_t id, const std::string& data) {
    const auto length = static_cast<std::uint32_t>(data.size());
    const std::uint32_t dataLength = 4 + length;
    BigEndianBytes file;
    Header(&file, dataLength);
    file.ZerosTo(kDataOffset);
    file.U32(length);
    file.Text(data);
    Map(&file, dataLength, type, id);
    return file.Bytes();
}
