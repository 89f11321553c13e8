// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/png_filter.h"

#include <algorithm>

namespace umbrant::host {

namespace {

enum Filter : std::uint8_t { kNone = 0, kSub = 1, kUp = 2 };

/// How far a difference is from 0, up or down.
std::uint8_t SizeOf(std::uint8_t difference) {
    const auto negative = static_cast<std::uint8_t>(-difference);
    return difference < negative ? difference : negative;
}

/// The sum of sizes of some bytes of a row, less those a pixel, or a row, before them where these count.
template <bool kIsDifference>
std::uint64_t Cost(std::span<const std::uint8_t> row, std::span<const std::uint8_t> before) {
    const std::size_t size = row.size();
    const auto sizeAt = [&](std::size_t i) {
        return SizeOf(kIsDifference ? static_cast<std::uint8_t>(row[i] - before[i]) : row[i]);
    };
    std::uint64_t cost = 0;
    // Sixteen sums of 16 bits, which vector code adds at once, in pieces that they can hold.
    constexpr std::size_t kLanes = 16, kPiece = 256 * kLanes;
    std::size_t i = 0;
    while (size - i >= kLanes) {
        const std::size_t end = i + std::min(kPiece, (size - i) / kLanes * kLanes);
        std::uint16_t sums[kLanes]{};
        for (; i < end; i += kLanes) {
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                sums[lane] = static_cast<std::uint16_t>(sums[lane] + sizeAt(i + lane));
            }
        }
        for (const std::uint16_t sum : sums) cost += sum;
    }
    for (; i < size; ++i) cost += sizeAt(i);
    return cost;
}

void Subtract(std::span<const std::uint8_t> row, std::span<const std::uint8_t> before, std::span<std::uint8_t> to) {
    for (std::size_t i = 0; i < row.size(); ++i) to[i] = static_cast<std::uint8_t>(row[i] - before[i]);
}

}  // namespace

void FilterRow(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::size_t pixel,
               std::span<std::uint8_t> to) {
    const auto first = row.first(std::min(pixel, row.size()));
    const auto others = row.subspan(first.size());
    const std::uint64_t none = Cost<false>(row, {});
    const std::uint64_t sub = Cost<false>(first, {}) + Cost<true>(others, row);
    const std::uint64_t up = Cost<true>(row, above);
    const auto filtered = to.subspan(1);
    if (none <= sub && none <= up) {
        to[0] = kNone;
        std::copy(row.begin(), row.end(), filtered.begin());
    } else if (sub <= up) {
        to[0] = kSub;
        std::copy(first.begin(), first.end(), filtered.begin());
        Subtract(others, row, filtered.subspan(first.size()));
    } else {
        to[0] = kUp;
        Subtract(row, above, filtered);
    }
}

}  // namespace umbrant::host
