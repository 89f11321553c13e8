// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One zlib stream, compressed in blocks by several threads: each block begins where the last one's compressor has
// written its last whole byte, and knows the bytes before it. Inside host/image only.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace umbrant::host {

/// How much time may be spent for how few bytes.
enum class DeflateEffort {
    kFast,     ///< ISA-L's first level: a seventh larger than zlib's sixth, in a twentieth of the time
    kDefault,  ///< zlib's fourth level with a shorter search: a tenth larger, in less than a third of the time
    kSmall,    ///< zlib's ninth level
};

/// A compressor that gets its bytes in pieces, in their order.
class BlockDeflater {
 public:
    /// `write` gets the bytes of the stream, in their order.
    BlockDeflater(DeflateEffort effort, std::function<void(std::span<const std::uint8_t> bytes)> write);

    /// Compresses some bytes, the last of all with `isLast`. A piece is cut into blocks of one size, so how long
    /// pieces are decides what the stream looks like, and the number of threads does not. Returns why it could not.
    std::optional<std::string> Add(std::span<const std::uint8_t> bytes, bool isLast);

 private:
    DeflateEffort effort_;
    std::function<void(std::span<const std::uint8_t>)> write_;
    std::vector<std::uint8_t> before_;  ///< what the next block may refer to
    std::uint32_t checksum_ = 1;
    bool hasBegun_ = false;
};

}  // namespace umbrant::host
