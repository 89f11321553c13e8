// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Blocks of 16 pixels whose source is transparent or opaque are not calculated. They must be to the byte what the
// arithmetic makes: what is laid in strips of 15 pixels always goes through the arithmetic.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "host/compositing/transfer/transfer_rect.h"
#include "hostapi/errors.h"
#include "tests/host/compositing/transfer_worlds.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

constexpr int kStrip = 15;

void Lay(const World& source, const PF_CompositeMode& mode, int begin, int end, World& destination) {
    const PF_Rect part{begin, 0, end, source.Height()};
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, &part, &source.Def(), &mode, nullptr,
                           begin, 0, &destination.Def()),
              PF_Err_NONE);
}

/// The height when none differs.
int FirstDifferentRow(const World& a, const World& b) {
    const auto size = static_cast<std::size_t>(a.Width()) * static_cast<std::size_t>(BytesPerPixel(a.PixelDepth()));
    for (int y = 0; y < a.Height(); ++y) {
        if (std::memcmp(a.Row(y), b.Row(y), size) != 0) return y;
    }
    return a.Height();
}

/// The first row in which laying all at once and strip by strip differ; the height when none does.
int FirstDifference(const World& source, const PF_CompositeMode& mode, const World& before) {
    World whole = CopyOfWorld(before);
    World strips = CopyOfWorld(before);
    Lay(source, mode, 0, source.Width(), whole);
    for (int x = 0; x < source.Width(); x += kStrip) {
        Lay(source, mode, x, std::min(x + kStrip, source.Width()), strips);
    }
    return FirstDifferentRow(whole, strips);
}

/// The same for a stencil, which takes the alpha of what is outside of a strip: a mask of ones leads through the
/// arithmetic too.
int FirstDifferenceOfStencil(const World& source, const PF_CompositeMode& mode, const World& before) {
    World plain = CopyOfWorld(before);
    World masked = CopyOfWorld(before);
    Lay(source, mode, 0, source.Width(), plain);
    World ones = World::Create(source.Width(), source.Height(), Depth::k8);
    for (int y = 0; y < ones.Height(); ++y) {
        std::fill_n(reinterpret_cast<PF_Pixel*>(ones.Row(y)), ones.Width(), PF_Pixel{255, 0, 0, 0});
    }
    PF_MaskWorld mask{};
    mask.mask = ones.Def();
    EXPECT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode, &mask, 0,
                           0, &masked.Def()),
              PF_Err_NONE);
    return FirstDifferentRow(plain, masked);
}

/// Channels that are not in their range, or not numbers, now and then.
double Odd(Depth depth, std::mt19937& engine, double ordinary) {
    if (depth == Depth::k8 || engine() % 97 != 0) return ordinary;
    if (depth == Depth::k16) return 32769 + engine() % 32767;
    constexpr double kOdd[] = {
        -0.0, -1, 1.5, 1e30, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    return kOdd[engine() % std::size(kOdd)];
}

/// Runs of about a block of pixels without alpha, with all of it, and with any.
World InRuns(int width, int height, Depth depth, unsigned seed) {
    World world = World::Create(width, height, depth);
    std::mt19937 engine(seed);
    const double full = FullScale(depth);
    const auto any = [&] {
        const double value = static_cast<double>(engine() % 1001) / 1000 * full;
        return Odd(depth, engine, depth == Depth::k32 ? value : std::floor(value));
    };
    for (int y = 0; y < height; ++y) {
        unsigned kind = 0;
        for (int x = 0; x < width; ++x) {
            if (x % 16 == y % 3) kind = engine() % 3;
            const double alpha = kind == 0 ? 0 : kind == 1 ? full : any();
            WriteStored(world, x, y, {alpha, any(), any(), any()});
        }
    }
    return world;
}

void ExpectLikeTheArithmetic(Depth depth) {
    const World source = InRuns(240, 24, depth, 1);
    const World before = InRuns(240, 24, depth, 2);
    for (int mode = PF_Xfer_COPY; mode <= PF_Xfer_DIVIDE; ++mode) {
        const bool isStencil = mode == PF_Xfer_MULTIPLY_ALPHA || mode == PF_Xfer_MULTIPLY_ALPHA_LUMA;
        for (const bool rgbOnly : {false, true}) {
            for (const int opacity : {0, 128, 255}) {
                const PF_CompositeMode laid = Mode(mode, opacity, rgbOnly);
                EXPECT_EQ(
                    isStencil ? FirstDifferenceOfStencil(source, laid, before) : FirstDifference(source, laid, before),
                    before.Height())
                    << "mode " << mode << ", opacity " << opacity << (rgbOnly ? ", rgb only" : "");
            }
        }
    }
}

TEST(TransferBlocks, OfEightBitsAreLikeTheArithmetic) {
    ExpectLikeTheArithmetic(Depth::k8);
}
TEST(TransferBlocks, OfSixteenBitsAreLikeTheArithmetic) {
    ExpectLikeTheArithmetic(Depth::k16);
}
TEST(TransferBlocks, OfFloatsAreLikeTheArithmetic) {
    ExpectLikeTheArithmetic(Depth::k32);
}

// Every colour over every colour of every alpha.
TEST(TransferBlocks, AnOpaqueSourceOfEightBitsReplacesEveryDestination) {
    World source = World::Create(256, 256, Depth::k8);
    World before = World::Create(256, 256, Depth::k8);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            const auto colour = static_cast<double>(x);
            WriteStored(source, x, y, {255, colour, colour, colour});
        }
    }
    for (int alpha = 0; alpha < 256; alpha += kIsSanitized ? 17 : 1) {
        for (int y = 0; y < 256; ++y) {
            const PF_Pixel pixel{static_cast<A_u_char>(alpha), static_cast<A_u_char>(y), static_cast<A_u_char>(y),
                                 static_cast<A_u_char>(y)};
            std::fill_n(reinterpret_cast<PF_Pixel*>(before.Row(y)), 256, pixel);
        }
        ASSERT_EQ(FirstDifference(source, Mode(PF_Xfer_IN_FRONT, 255, false), before), 256) << "alpha " << alpha;
    }
}

}  // namespace

}  // namespace umbrant::host
