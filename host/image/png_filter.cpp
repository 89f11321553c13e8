// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png_filter.h"

#include <algorithm>
#include <cstring>

namespace {

enum Filter : std::uint8_t { kNone = 0, kSub = 1, kUp = 2 };

std::uint32_t SizeOf(std::uint8_t difference) {
    return std::min<std::uint32_t>(difference, 256u - difference);
}

/// The sum of sizes of a row's bytes, less those that lie a pixel, or a row, before them.
std::uint64_t Cost(const std::uint8_t* row, const std::uint8_t* before, std::size_t size) {
    std::uint64_t cost = 0;
    // In pieces whose sum needs no more than 32 bits, which vector code adds faster.
    constexpr std::size_t kPiece = std::size_t{1} << 16;
    for (std::size_t at = 0; at < size; at += kPiece) {
        const std::size_t end = std::min(size, at + kPiece);
        std::uint32_t sum = 0;
        if (before) {
            for (std::size_t i = at; i < end; ++i) sum += SizeOf(static_cast<std::uint8_t>(row[i] - before[i]));
        } else {
            for (std::size_t i = at; i < end; ++i) sum += SizeOf(row[i]);
        }
        cost += sum;
    }
    return cost;
}

void Subtract(const std::uint8_t* row, const std::uint8_t* before, std::size_t size, std::uint8_t* to) {
    for (std::size_t i = 0; i < size; ++i) to[i] = static_cast<std::uint8_t>(row[i] - before[i]);
}

}  // namespace

void FilterRow(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, std::size_t pixel,
               std::uint8_t* to) {
    const std::size_t first = std::min(pixel, size);
    const std::uint64_t none = Cost(row, nullptr, size);
    const std::uint64_t sub = Cost(row, nullptr, first) + Cost(row + first, row, size - first);
    const std::uint64_t up = Cost(row, above, size);
    if (none <= sub && none <= up) {
        *to = kNone;
        std::memcpy(to + 1, row, size);
    } else if (sub <= up) {
        *to = kSub;
        std::memcpy(to + 1, row, first);
        Subtract(row + first, row, size - first, to + 1 + first);
    } else {
        *to = kUp;
        Subtract(row, above, size, to + 1);
    }
}
