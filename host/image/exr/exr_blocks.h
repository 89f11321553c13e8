// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The blocks of rows, or tiles, of an EXR: their stored bytes, and the values in them. Zip is compressed and expanded
// by libdeflate, in half of zlib's time. Inside host/image only.

#include <OpenEXR/openexr.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_compressor;
struct libdeflate_decompressor;

namespace umbrant::host {

/// Reads blocks, one at a time.
class ExrBlockReader {
 public:
    ExrBlockReader(exr_const_context_t file, exr_compression_t compression);
    ~ExrBlockReader();
    ExrBlockReader(const ExrBlockReader&) = delete;
    ExrBlockReader& operator=(const ExrBlockReader&) = delete;

    /// Gives the block's `size` bytes: row by row, in a row channel by channel. They last until the next call.
    exr_result_t Read(const exr_chunk_info_t& block, std::size_t size, std::span<const std::byte>& bytes);

 private:
    exr_result_t ReadZip(const exr_chunk_info_t& block, std::size_t size);
    exr_result_t ReadByLibrary(const exr_chunk_info_t& block, std::size_t size);

    const exr_const_context_t file_;
    const exr_compression_t compression_;
    libdeflate_decompressor* const inflate_;
    exr_decode_pipeline_t pipeline_{};
    bool hasPipeline_ = false;
    std::vector<std::byte> packed_, sorted_, bytes_;
};

/// Compresses blocks, one at a time.
class ExrBlockWriter {
 public:
    explicit ExrBlockWriter(exr_compression_t compression);
    ~ExrBlockWriter();
    ExrBlockWriter(const ExrBlockWriter&) = delete;
    ExrBlockWriter& operator=(const ExrBlockWriter&) = delete;

    /// The block as it is stored: compressed, or uncompressed if that is not longer.
    std::vector<std::byte> Packed(const std::vector<std::byte>& bytes);

 private:
    const exr_compression_t compression_;
    libdeflate_compressor* const deflate_;
    std::vector<std::byte> sorted_;
};

/// Converts the values of one channel in one row, halves or floats by their `size` in bytes, to every `step`th float.
void UnpackExrRow(std::span<const std::byte> bytes, std::size_t size, float* values, std::size_t step);
/// The other way, as many values as `bytes` has room for.
void PackExrRow(const float* values, std::size_t step, std::size_t size, std::span<std::byte> bytes);

}  // namespace umbrant::host
