// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The joined blocks of one zlib stream, undone by zlib; and the filters of rows, undone by their definitions.

#include "host/image/png/deflate_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <span>
#include <string>
#include <vector>

#include "host/compositing/row_pool.h"
#include "host/image/png/png_filter.h"
#include "tests/support/limited_child.h"

namespace umbrant::host {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Ramps, repeats and noise.
Bytes Mixed(std::size_t size) {
    Bytes bytes(size);
    std::mt19937 random(5);
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t part = i / 5000 % 3;
        bytes[i] = static_cast<std::uint8_t>(part == 0 ? i / 7 : part == 1 ? (i % 300) * 3 : random());
    }
    return bytes;
}

Bytes Compressed(const Bytes& bytes, DeflateEffort effort, std::size_t piece) {
    Bytes stream;
    BlockDeflater deflater(
        effort, [&](std::span<const std::uint8_t> more) { stream.insert(stream.end(), more.begin(), more.end()); });
    for (std::size_t at = 0;; at += piece) {
        const std::size_t size = std::min(piece, bytes.size() - at);
        const bool isLast = at + size == bytes.size();
        EXPECT_FALSE(deflater.Add(std::span(bytes).subspan(at, size), isLast));
        if (isLast) return stream;
    }
}

TEST(DeflateBlocks, ZlibReadsTheStreamAndItsChecksum) {
    // Below, at and above a block's 128 KiB, and several of them in pieces that end anywhere.
    for (const std::size_t size : {0, 1, 1000, 131071, 131072, 131073, 700000, 2000003}) {
        const Bytes bytes = Mixed(size);
        for (const DeflateEffort effort : {DeflateEffort::kFast, DeflateEffort::kDefault, DeflateEffort::kSmall}) {
            for (const std::size_t piece : {std::size_t{10'000'000}, std::size_t{300'000}}) {
                SCOPED_TRACE(testing::Message() << size << " bytes, effort " << static_cast<int>(effort));
                const Bytes stream = Compressed(bytes, effort, piece);
                Bytes back(size + 10);
                uLongf length = static_cast<uLongf>(back.size());
                ASSERT_EQ(uncompress(back.data(), &length, stream.data(), static_cast<uLong>(stream.size())), Z_OK);
                back.resize(length);
                EXPECT_TRUE(back == bytes);
            }
        }
    }
}

TEST(DeflateBlocks, ABlockKnowsWhatIsBeforeIt) {
    // 30,000 bytes of noise, again and again: only the first are new.
    Bytes noise = Mixed(30000);
    std::mt19937 random(9);
    for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
    Bytes bytes;
    for (int i = 0; i < 40; ++i) bytes.insert(bytes.end(), noise.begin(), noise.end());
    for (const DeflateEffort effort : {DeflateEffort::kDefault, DeflateEffort::kSmall}) {
        // Without what is before them ten blocks would each hold the noise once more.
        EXPECT_LT(Compressed(bytes, effort, bytes.size()).size(), 3 * noise.size());
        EXPECT_LT(Compressed(bytes, effort, 131072).size(), 3 * noise.size());
    }
}

TEST(DeflateBlocks, AnyNumberOfThreadsMakesTheSameStream) {
    const Bytes bytes = Mixed(3'000'000);
    for (const DeflateEffort effort : {DeflateEffort::kFast, DeflateEffort::kDefault}) {
        const Bytes here = Compressed(bytes, effort, bytes.size());
        for (const int threads : {1, 3}) {
            // As a child of its own, whose pool is not made yet.
            EXPECT_LIMITED_CHILD(threads, {
                SetRowThreads(threads);
                return Compressed(bytes, effort, bytes.size()) == here;
            });
        }
    }
}

std::uint8_t Undone(const std::uint8_t* filtered, const Bytes& row, const Bytes& above, std::size_t i,
                    std::size_t pixel) {
    const std::uint8_t before = i < pixel ? 0 : row[i - pixel];
    switch (filtered[0]) {
        case 0:
            return filtered[1 + i];
        case 1:
            return static_cast<std::uint8_t>(filtered[1 + i] + before);
        case 2:
            return static_cast<std::uint8_t>(filtered[1 + i] + above[i]);
        default:
            ADD_FAILURE() << "filter " << static_cast<int>(filtered[0]);
            return 0;
    }
}

TEST(PngFilter, TakesTheBestOfThreeAndCanBeUndone) {
    constexpr std::size_t kSize = 3000, kPixel = 4;
    std::mt19937 random(1);
    Bytes flat(kSize, 0), ramp(kSize), noise(kSize), steps(kSize);
    for (std::size_t i = 0; i < kSize; ++i) {
        ramp[i] = static_cast<std::uint8_t>(i / kPixel * 5);
        noise[i] = static_cast<std::uint8_t>(random());
        steps[i] = static_cast<std::uint8_t>(noise[i] + 1);
    }
    struct Case {
        const char* name;
        Bytes above, row;
        int filter;
    };
    const Case rows[] = {{"nothing below noise", noise, flat, 0},
                         {"a ramp below nothing", flat, ramp, 1},
                         {"noise below nearly the same", steps, noise, 2},
                         {"equal ones: the first", flat, flat, 0}};
    for (const Case& row : rows) {
        SCOPED_TRACE(row.name);
        Bytes filtered(kSize + 1, 99);
        FilterRow(row.row, row.above, kPixel, filtered);
        EXPECT_EQ(filtered[0], row.filter);
        for (std::size_t i = 0; i < kSize; ++i) {
            ASSERT_EQ(Undone(filtered.data(), row.row, row.above, i, kPixel), row.row[i]) << i;
        }
    }
    // Shorter than a pixel, and one byte alone.
    for (const std::size_t size : {std::size_t{1}, std::size_t{3}}) {
        Bytes filtered(size + 1);
        FilterRow(std::span(noise).first(size), std::span(flat).first(size), kPixel, filtered);
        EXPECT_EQ(Undone(filtered.data(), noise, flat, 0, kPixel), noise[0]);
    }
}

}  // namespace

}  // namespace umbrant::host
