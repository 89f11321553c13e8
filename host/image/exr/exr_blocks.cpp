// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_blocks.h"

// Without the table, which would have to be loaded with a separate library.
#define IMATH_HALF_NO_LOOKUP_TABLE
#include <Imath/half.h>
#include <libdeflate.h>

#include <cstring>
#include <new>

namespace umbrant::host {

namespace {

/// Zip stores the difference of each byte to the one before it, plus this.
constexpr unsigned kBias = 128;

/// Undoes the differences in place.
void Sum(std::span<std::byte> bytes) {
    auto* const values = reinterpret_cast<std::uint8_t*>(bytes.data());
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        values[i] = static_cast<std::uint8_t>(values[i - 1] + values[i] - kBias);
    }
}

/// Puts the bytes of the first half between those of the second. `to` is as long as `from`.
void Interleave(std::span<const std::byte> from, std::span<std::byte> to) {
    const std::size_t pairs = from.size() / 2;
    const auto second = from.last(pairs);
    for (std::size_t i = 0; i < pairs; ++i) {
        to[2 * i] = from[i];
        to[2 * i + 1] = second[i];
    }
    if (from.size() % 2 != 0) to[2 * pairs] = from[pairs];
}

/// The other way, and takes the differences.
void SortAndSubtract(std::span<const std::byte> from, std::span<std::byte> to) {
    const std::size_t pairs = from.size() / 2;
    const auto second = to.last(pairs);
    for (std::size_t i = 0; i < pairs; ++i) {
        to[i] = from[2 * i];
        second[i] = from[2 * i + 1];
    }
    if (from.size() % 2 != 0) to[pairs] = from[2 * pairs];
    auto* const values = reinterpret_cast<std::uint8_t*>(to.data());
    for (std::size_t i = to.size(); i-- > 1;) values[i] = static_cast<std::uint8_t>(values[i] - values[i - 1] + kBias);
}

bool IsZip(exr_compression_t compression) {
    return compression == EXR_COMPRESSION_ZIP || compression == EXR_COMPRESSION_ZIPS;
}

/// As small as zlib's fourth level, which the format's library takes.
constexpr int kLevel = 4;

}  // namespace

ExrBlockReader::ExrBlockReader(exr_const_context_t file, exr_compression_t compression)
    : file_(file), compression_(compression), inflate_(libdeflate_alloc_decompressor()) {
    if (!inflate_) throw std::bad_alloc();
}

ExrBlockReader::~ExrBlockReader() {
    if (hasPipeline_) exr_decoding_destroy(file_, &pipeline_);
    libdeflate_free_decompressor(inflate_);
}

exr_result_t ExrBlockReader::Read(const exr_chunk_info_t& block, std::size_t size, std::span<const std::byte>& bytes) {
    if (block.unpacked_size != size || block.packed_size > size || block.packed_size == 0) return EXR_ERR_CORRUPT_CHUNK;
    exr_result_t result = EXR_ERR_SUCCESS;
    if (block.packed_size == size || IsZip(compression_)) {
        result = ReadZip(block, size);
        bytes = bytes_;
    } else {
        result = ReadByLibrary(block, size);
        if (result == EXR_ERR_SUCCESS) bytes = {static_cast<const std::byte*>(pipeline_.unpacked_buffer), size};
    }
    return result;
}

exr_result_t ExrBlockReader::ReadZip(const exr_chunk_info_t& block, std::size_t size) {
    bytes_.resize(size);
    // What does not get smaller is stored as it is.
    if (block.packed_size == size) return exr_read_chunk(file_, 0, &block, bytes_.data());
    packed_.resize(block.packed_size);
    if (const exr_result_t failed = exr_read_chunk(file_, 0, &block, packed_.data())) return failed;
    sorted_.resize(size);
    std::size_t expanded = 0;
    if (libdeflate_zlib_decompress(inflate_, packed_.data(), packed_.size(), sorted_.data(), size, &expanded) !=
            LIBDEFLATE_SUCCESS ||
        expanded != size) {
        return EXR_ERR_CORRUPT_CHUNK;
    }
    Sum(sorted_);
    Interleave(sorted_, bytes_);
    return EXR_ERR_SUCCESS;
}

exr_result_t ExrBlockReader::ReadByLibrary(const exr_chunk_info_t& block, std::size_t size) {
    exr_result_t failed = EXR_ERR_SUCCESS;
    if (hasPipeline_) {
        failed = exr_decoding_update(file_, 0, &block, &pipeline_);
    } else if ((failed = exr_decoding_initialize(file_, 0, &block, &pipeline_)) == EXR_ERR_SUCCESS) {
        hasPipeline_ = true;
        failed = exr_decoding_choose_default_routines(file_, 0, &pipeline_);
        pipeline_.unpack_and_convert_fn = nullptr;
    }
    if (failed != EXR_ERR_SUCCESS) return failed;
    if ((failed = exr_decoding_run(file_, 0, &pipeline_)) != EXR_ERR_SUCCESS) return failed;
    return pipeline_.unpacked_buffer && pipeline_.unpacked_alloc_size >= size ? EXR_ERR_SUCCESS : EXR_ERR_CORRUPT_CHUNK;
}

ExrBlockWriter::ExrBlockWriter(exr_compression_t compression)
    : compression_(compression), deflate_(libdeflate_alloc_compressor(kLevel)) {
    if (!deflate_) throw std::bad_alloc();
}

ExrBlockWriter::~ExrBlockWriter() {
    libdeflate_free_compressor(deflate_);
}

std::vector<std::byte> ExrBlockWriter::Packed(const std::vector<std::byte>& bytes) {
    if (!IsZip(compression_)) return bytes;
    sorted_.resize(bytes.size());
    SortAndSubtract(bytes, sorted_);
    // One that gets no smaller does not fit, and is stored as it is.
    std::vector<std::byte> packed(bytes.size() - 1);
    const std::size_t size =
        libdeflate_zlib_compress(deflate_, sorted_.data(), sorted_.size(), packed.data(), packed.size());
    if (size == 0) return bytes;
    packed.resize(size);
    return packed;
}

void UnpackExrRow(std::span<const std::byte> bytes, std::size_t size, float* values, std::size_t step) {
    static_assert(std::endian::native == std::endian::little, "the file's order of bytes");
    const std::byte* from = bytes.data();
    const std::size_t count = bytes.size() / size;
    for (std::size_t i = 0; i < count; ++i, from += size, values += step) {
        if (size == sizeof(float)) {
            std::memcpy(values, from, sizeof(float));
        } else {
            imath_half_bits_t bits;
            std::memcpy(&bits, from, sizeof bits);
            *values = imath_half_to_float(bits);
        }
    }
}

void PackExrRow(const float* values, std::size_t step, std::size_t size, std::span<std::byte> bytes) {
    std::byte* to = bytes.data();
    const std::size_t count = bytes.size() / size;
    for (std::size_t i = 0; i < count; ++i, to += size, values += step) {
        if (size == sizeof(float)) {
            std::memcpy(to, values, sizeof(float));
        } else {
            const imath_half_bits_t bits = imath_float_to_half(*values);
            std::memcpy(to, &bits, sizeof bits);
        }
    }
}

}  // namespace umbrant::host
