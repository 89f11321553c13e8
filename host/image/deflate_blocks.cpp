// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/deflate_blocks.h"

#include <isa-l/igzip_lib.h>
#include <zlib.h>

#include <algorithm>
#include <utility>

#include "host/compositing/row_pool.h"

namespace {

/// What a compressor can refer back to.
constexpr std::size_t kWindow = 32768;
/// Large enough that what each block costs besides, some bytes and a new table, is not seen.
constexpr std::size_t kBlock = std::size_t{1} << 17;
constexpr char kNoMemory[] = "there is not enough memory for it";

struct Block {
    const std::uint8_t* bytes = nullptr;
    std::size_t size = 0;
    const std::uint8_t* before = nullptr;
    std::size_t beforeSize = 0;
    bool isLast = false;
};

struct Compressed {
    std::vector<std::uint8_t> bytes;
    std::uint32_t checksum = 1;
};

/// More than a block can come to.
std::size_t BoundOf(std::size_t size) {
    return size + size / 1000 + 1024;
}

/// Compresses a block by zlib. False for want of memory.
bool ByZlib(const Block& block, int level, Compressed& compressed) {
    z_stream stream{};
    constexpr int kRaw = -15, kMemory = 8;
    if (deflateInit2(&stream, level, Z_DEFLATED, kRaw, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) return false;
    if (block.beforeSize > 0) deflateSetDictionary(&stream, block.before, static_cast<uInt>(block.beforeSize));
    stream.next_in = const_cast<Bytef*>(block.bytes);
    stream.avail_in = static_cast<uInt>(block.size);
    stream.next_out = compressed.bytes.data();
    stream.avail_out = static_cast<uInt>(compressed.bytes.size());
    deflate(&stream, block.isLast ? Z_FINISH : Z_SYNC_FLUSH);
    compressed.bytes.resize(stream.total_out);
    deflateEnd(&stream);
    return true;
}

/// The same by ISA-L.
void ByIsal(const Block& block, Compressed& compressed) {
    isal_zstream stream;
    isal_deflate_init(&stream);
    std::vector<std::uint8_t> tables(ISAL_DEF_LVL1_DEFAULT);
    stream.level = 1;
    stream.level_buf = tables.data();
    stream.level_buf_size = static_cast<std::uint32_t>(tables.size());
    if (block.beforeSize > 0) {
        isal_deflate_set_dict(&stream, const_cast<std::uint8_t*>(block.before),
                              static_cast<std::uint32_t>(block.beforeSize));
    }
    stream.next_in = const_cast<std::uint8_t*>(block.bytes);
    stream.avail_in = static_cast<std::uint32_t>(block.size);
    stream.next_out = compressed.bytes.data();
    stream.avail_out = static_cast<std::uint32_t>(compressed.bytes.size());
    stream.end_of_stream = block.isLast;
    stream.flush = block.isLast ? NO_FLUSH : SYNC_FLUSH;
    isal_deflate(&stream);
    compressed.bytes.resize(stream.total_out);
}

bool Compress(const Block& block, DeflateEffort effort, Compressed& compressed) {
    compressed.bytes.resize(BoundOf(block.size));
    compressed.checksum = static_cast<std::uint32_t>(adler32(1, block.bytes, static_cast<uInt>(block.size)));
    switch (effort) {
        case DeflateEffort::kFast:
            ByIsal(block, compressed);
            return true;
        case DeflateEffort::kDefault:
            return ByZlib(block, 4, compressed);
        case DeflateEffort::kSmall:
            return ByZlib(block, 9, compressed);
    }
    return false;
}

/// The two bytes that a zlib stream begins with: deflate, a window of 32 KiB, and about how hard it was tried.
std::vector<std::uint8_t> Header(DeflateEffort effort) {
    constexpr std::uint8_t kMethod = 0x78;
    switch (effort) {
        case DeflateEffort::kFast:
            return {kMethod, 0x01};
        case DeflateEffort::kDefault:
            return {kMethod, 0x5e};
        case DeflateEffort::kSmall:
            return {kMethod, 0xda};
    }
    return {};
}

}  // namespace

BlockDeflater::BlockDeflater(DeflateEffort effort,
                             std::function<void(const std::uint8_t* bytes, std::size_t size)> write)
    : effort_(effort), write_(std::move(write)) {}

std::optional<std::string> BlockDeflater::Add(const std::uint8_t* bytes, std::size_t size, bool isLast) {
    std::vector<Block> blocks;
    for (std::size_t at = 0; at < size || (isLast && blocks.empty()); at += kBlock) {
        Block block{bytes + at, std::min(kBlock, size - at), before_.data(), before_.size(), false};
        if (at > 0) {
            block.beforeSize = std::min(kWindow, at);
            block.before = block.bytes - block.beforeSize;
        }
        blocks.push_back(block);
    }
    if (isLast) blocks.back().isLast = true;

    std::vector<Compressed> compressed(blocks.size());
    std::vector<char> done(blocks.size(), 0);
    RunRows(static_cast<int>(blocks.size()), [&](int index, int) {
        const auto i = static_cast<std::size_t>(index);
        done[i] = Compress(blocks[i], effort_, compressed[i]);
        return done[i] != 0;
    });
    if (std::find(done.begin(), done.end(), 0) != done.end()) return kNoMemory;

    if (!std::exchange(hasBegun_, true)) {
        const std::vector<std::uint8_t> header = Header(effort_);
        write_(header.data(), header.size());
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        write_(compressed[i].bytes.data(), compressed[i].bytes.size());
        checksum_ = static_cast<std::uint32_t>(
            adler32_combine(checksum_, compressed[i].checksum, static_cast<z_off_t>(blocks[i].size)));
    }
    if (isLast) {
        const std::uint8_t end[] = {static_cast<std::uint8_t>(checksum_ >> 24),
                                    static_cast<std::uint8_t>(checksum_ >> 16),
                                    static_cast<std::uint8_t>(checksum_ >> 8), static_cast<std::uint8_t>(checksum_)};
        write_(end, sizeof end);
    }
    const std::size_t kept = std::min(kWindow, size);
    before_.assign(bytes + size - kept, bytes + size);
    return std::nullopt;
}
