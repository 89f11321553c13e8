// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/deflate_blocks.h"

#include <isa-l/igzip_lib.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "host/compositing/row_pool.h"

namespace umbrant::host {

namespace {

/// What a compressor can refer back to.
constexpr std::size_t kWindow = 32768;
/// Large enough that what each block costs besides, some bytes and a new table, is not seen.
constexpr std::size_t kLargestBlock = std::size_t{1} << 17, kSmallestBlock = std::size_t{1} << 14;
/// Of a small image the blocks are smaller: so many that several threads end at about the same time.
constexpr std::size_t kWantedBlocks = 16;
constexpr char kNoMemory[] = "not enough memory";

struct Block {
    std::span<const std::uint8_t> bytes;
    std::span<const std::uint8_t> before;
    bool isLast = false;
};

struct Compressed {
    std::vector<std::uint8_t> bytes;
    std::uint32_t checksum = 1;
};

/// What a thread works in. Not made and cleared for each block, which would take as long as the fast compressor does.
struct Scratch {
    Scratch() = default;
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        if (hasStream) deflateEnd(&stream);
    }

    std::unique_ptr<std::uint8_t[]> out, tables;
    std::size_t size = 0;
    z_stream stream{};
    bool hasStream = false;
};

/// How zlib searches: the level, and for most levels nothing else. The names are those of deflateTune.
struct Search {
    int level;
    int good, lazy, nice, chain;
};

/// The fourth level with a quarter of its candidates: 1.2 times as fast on images of shadows, and 3 % larger.
constexpr Search kQuick{4, 4, 4, 16, 4};
constexpr Search kThorough{9, 32, 258, 258, 4096};

/// More than a block can come to.
std::size_t BoundOf(std::size_t size) {
    return size + size / 1000 + 1024;
}

/// Compresses a block by zlib into the scratch. Returns how many bytes it gives; 0 for want of memory.
std::size_t ByZlib(const Block& block, const Search& search, Scratch& scratch) {
    z_stream& stream = scratch.stream;
    if (scratch.hasStream) {
        deflateReset(&stream);
    } else {
        constexpr int kRaw = -15, kMemory = 8;
        if (deflateInit2(&stream, search.level, Z_DEFLATED, kRaw, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) return 0;
        scratch.hasStream = true;
    }
    deflateTune(&stream, search.good, search.lazy, search.nice, search.chain);
    if (!block.before.empty()) {
        deflateSetDictionary(&stream, block.before.data(), static_cast<uInt>(block.before.size()));
    }
    stream.next_in = const_cast<Bytef*>(block.bytes.data());
    stream.avail_in = static_cast<uInt>(block.bytes.size());
    stream.next_out = scratch.out.get();
    stream.avail_out = static_cast<uInt>(scratch.size);
    deflate(&stream, block.isLast ? Z_FINISH : Z_SYNC_FLUSH);
    return stream.total_out;
}

/// The same by ISA-L.
std::size_t ByIsal(const Block& block, Scratch& scratch) {
    if (!scratch.tables) scratch.tables.reset(new std::uint8_t[ISAL_DEF_LVL1_DEFAULT]);
    isal_zstream stream;
    isal_deflate_init(&stream);
    stream.level = 1;
    stream.level_buf = scratch.tables.get();
    stream.level_buf_size = ISAL_DEF_LVL1_DEFAULT;
    if (!block.before.empty()) {
        isal_deflate_set_dict(&stream, const_cast<std::uint8_t*>(block.before.data()),
                              static_cast<std::uint32_t>(block.before.size()));
    }
    stream.next_in = const_cast<std::uint8_t*>(block.bytes.data());
    stream.avail_in = static_cast<std::uint32_t>(block.bytes.size());
    stream.next_out = scratch.out.get();
    stream.avail_out = static_cast<std::uint32_t>(scratch.size);
    stream.end_of_stream = block.isLast;
    stream.flush = block.isLast ? NO_FLUSH : SYNC_FLUSH;
    isal_deflate(&stream);
    return stream.total_out;
}

std::size_t CompressInto(const Block& block, DeflateEffort effort, Scratch& scratch) {
    switch (effort) {
        case DeflateEffort::kFast:
            return ByIsal(block, scratch);
        case DeflateEffort::kDefault:
            return ByZlib(block, kQuick, scratch);
        case DeflateEffort::kSmall:
            return ByZlib(block, kThorough, scratch);
    }
    return 0;
}

/// False for want of memory.
bool Compress(const Block& block, DeflateEffort effort, Scratch& scratch, Compressed& compressed) {
    if (const std::size_t bound = BoundOf(block.bytes.size()); scratch.size < bound) {
        scratch.out.reset(new std::uint8_t[bound]);
        scratch.size = bound;
    }
    const std::size_t size = CompressInto(block, effort, scratch);
    compressed.bytes.assign(scratch.out.get(), scratch.out.get() + size);
    compressed.checksum =
        static_cast<std::uint32_t>(adler32(1, block.bytes.data(), static_cast<uInt>(block.bytes.size())));
    return size > 0;
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

BlockDeflater::BlockDeflater(DeflateEffort effort, std::function<void(std::span<const std::uint8_t> bytes)> write)
    : effort_(effort), write_(std::move(write)) {}

std::optional<std::string> BlockDeflater::Add(std::span<const std::uint8_t> bytes, bool isLast) {
    const std::size_t size = bytes.size();
    std::vector<Block> blocks;
    // The window of the first blocks is partly before this piece.
    std::vector<std::uint8_t> joined = before_;
    joined.insert(joined.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(std::min(kWindow, size)));
    // Not by the number of threads: an image has the same bytes on every machine.
    const std::size_t most = std::clamp(size / kWantedBlocks, kSmallestBlock, kLargestBlock);
    for (std::size_t at = 0; at < size || (isLast && blocks.empty()); at += most) {
        const std::size_t known = std::min(kWindow, before_.size() + at);
        const std::uint8_t* end = at < kWindow ? joined.data() + before_.size() + at : bytes.data() + at;
        blocks.push_back({bytes.subspan(at, std::min(most, size - at)), {end - known, known}, false});
    }
    if (isLast) blocks.back().isLast = true;

    std::vector<Compressed> compressed(blocks.size());
    std::vector<char> done(blocks.size(), 0);
    std::vector<Scratch> scratches(static_cast<std::size_t>(RowThreads()));
    RunRows(static_cast<int>(blocks.size()), [&](int index, int thread) {
        const auto i = static_cast<std::size_t>(index);
        done[i] = Compress(blocks[i], effort_, scratches[static_cast<std::size_t>(thread)], compressed[i]);
        return done[i] != 0;
    });
    if (std::find(done.begin(), done.end(), 0) != done.end()) return kNoMemory;

    if (!std::exchange(hasBegun_, true)) {
        const std::vector<std::uint8_t> header = Header(effort_);
        write_(header);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        write_(compressed[i].bytes);
        checksum_ = static_cast<std::uint32_t>(
            adler32_combine(checksum_, compressed[i].checksum, static_cast<z_off_t>(blocks[i].bytes.size())));
    }
    if (isLast) {
        const std::uint8_t end[] = {static_cast<std::uint8_t>(checksum_ >> 24),
                                    static_cast<std::uint8_t>(checksum_ >> 16),
                                    static_cast<std::uint8_t>(checksum_ >> 8), static_cast<std::uint8_t>(checksum_)};
        write_(end);
    }
    const auto kept = bytes.last(std::min(kWindow, size));
    before_.assign(kept.begin(), kept.end());
    return std::nullopt;
}

}  // namespace umbrant::host
