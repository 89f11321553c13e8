// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The arithmetic of every transfer mode at every depth, compared with the double-precision model.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "host/compositing/transfer/transfer_rect.h"
#include "hostapi/errors.h"
#include "tests/host/compositing/transfer_pixel_cases.h"
#include "tests/host/compositing/transfer_worlds.h"

namespace umbrant::host {

namespace {

struct ModeName {
    const char* name;
    PF_TransferMode mode;
};

constexpr ModeName kModes[] = {
    {"copy", PF_Xfer_COPY},
    {"behind", PF_Xfer_BEHIND},
    {"in front", PF_Xfer_IN_FRONT},
    {"add", PF_Xfer_ADD},
    {"multiply", PF_Xfer_MULTIPLY},
    {"screen", PF_Xfer_SCREEN},
    {"overlay", PF_Xfer_OVERLAY},
    {"soft light", PF_Xfer_SOFT_LIGHT},
    {"hard light", PF_Xfer_HARD_LIGHT},
    {"darken", PF_Xfer_DARKEN},
    {"lighten", PF_Xfer_LIGHTEN},
    {"classic difference", PF_Xfer_DIFFERENCE},
    {"hue", PF_Xfer_HUE},
    {"saturation", PF_Xfer_SATURATION},
    {"colour", PF_Xfer_COLOR},
    {"luminosity", PF_Xfer_LUMINOSITY},
    {"stencil alpha", PF_Xfer_MULTIPLY_ALPHA},
    {"stencil luma", PF_Xfer_MULTIPLY_ALPHA_LUMA},
    {"silhouette alpha", PF_Xfer_MULTIPLY_NOT_ALPHA},
    {"silhouette luma", PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA},
    {"additive premultiplied", PF_Xfer_ADDITIVE_PREMUL},
    {"alpha add", PF_Xfer_ALPHA_ADD},
    {"classic colour dodge", PF_Xfer_COLOR_DODGE},
    {"classic colour burn", PF_Xfer_COLOR_BURN},
    {"exclusion", PF_Xfer_EXCLUSION},
    {"difference", PF_Xfer_DIFFERENCE2},
    {"colour dodge", PF_Xfer_COLOR_DODGE2},
    {"colour burn", PF_Xfer_COLOR_BURN2},
    {"linear dodge", PF_Xfer_LINEAR_DODGE},
    {"linear burn", PF_Xfer_LINEAR_BURN},
    {"linear light", PF_Xfer_LINEAR_LIGHT},
    {"vivid light", PF_Xfer_VIVID_LIGHT},
    {"pin light", PF_Xfer_PIN_LIGHT},
    {"hard mix", PF_Xfer_HARD_MIX},
    {"lighter colour", PF_Xfer_LIGHTER_COLOR},
    {"darker colour", PF_Xfer_DARKER_COLOR},
    {"subtract", PF_Xfer_SUBTRACT},
    {"divide", PF_Xfer_DIVIDE},
};
static_assert(std::size(kModes) == 38, "every mode but dissolve");

/// How far a result may lie from the exact value, in stored units. Integers: half a step for the rounding itself, and
/// what single precision adds before it. Float: relative, as the quotients of some modes magnify.
double Allowed(Depth depth, double exact) {
    if (depth == Depth::k8) return 0.5 + 0.01;
    if (depth == Depth::k16) return 0.5 + 0.15;
    return 4e-5 * std::max(1.0, std::abs(exact));
}

PF_Err Lay(const World& source, const PF_CompositeMode& mode, World& destination, const PF_MaskWorld* mask = nullptr) {
    return TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode, mask, 0, 0,
                        &destination.Def());
}

/// Compares one mode over random worlds; the width leaves a part of a block at the end of each row.
void JudgeMode(const ModeName& mode, Depth depth, bool rgbOnly, int opacity, bool masked) {
    constexpr int kWidth = 37;
    constexpr int kHeight = 9;
    const World source = RandomWorld(kWidth, kHeight, depth, 11);
    const World before = RandomWorld(kWidth, kHeight, depth, 22);
    const World maskPixels = RandomWorld(kWidth, kHeight, depth, 33);
    World after = CopyOfWorld(before);
    PF_MaskWorld mask{};
    mask.mask = maskPixels.Def();
    ASSERT_EQ(Lay(source, Mode(mode.mode, opacity, rgbOnly), after, masked ? &mask : nullptr), PF_Err_NONE);

    const double full = FullScale(depth);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double weight = masked ? ReadPixel(maskPixels, x, y).alpha : 1.0;
            const model::Pixel s = ReadPixel(source, x, y);
            const model::Pixel d = ReadPixel(before, x, y);
            const model::Pixel expected = model::Composite(mode.mode, rgbOnly, s, d, opacity / 255.0, weight);
            const Stored actual = ReadStored(after, x, y);
            const double exact[4] = {expected.alpha, expected.rgb.c[0], expected.rgb.c[1], expected.rgb.c[2]};
            for (int i = 0; i < 4; ++i) {
                const double value = (depth == Depth::k32 ? exact[i] : std::clamp(exact[i], 0.0, 1.0)) * full;
                ASSERT_NEAR(actual.value[i], value, Allowed(depth, value))
                    << "channel " << i << " at " << x << "," << y << " of " << mode.name << ", opacity " << opacity
                    << (rgbOnly ? ", rgb only" : "") << (masked ? ", masked" : "") << "; source " << s.alpha << " "
                    << s.rgb.c[0] << " " << s.rgb.c[1] << " " << s.rgb.c[2] << ", destination " << d.alpha << " "
                    << d.rgb.c[0] << " " << d.rgb.c[1] << " " << d.rgb.c[2];
            }
        }
    }
}

void JudgeAll(Depth depth) {
    for (const ModeName& mode : kModes) {
        for (const bool rgbOnly : {false, true}) {
            for (const int opacity : {0, 1, 128, 255}) {
                for (const bool masked : {false, true}) JudgeMode(mode, depth, rgbOnly, opacity, masked);
            }
        }
    }
}

TEST(TransferModes, EightBitsAgreeWithTheModel) {
    JudgeAll(Depth::k8);
}
TEST(TransferModes, SixteenBitsAgreeWithTheModel) {
    JudgeAll(Depth::k16);
}
TEST(TransferModes, FloatAgreesWithTheModel) {
    JudgeAll(Depth::k32);
}

TEST(TransferModes, PixelsWorkedOutByHand) {
    for (const PixelCase& row : kPixelCases) {
        SCOPED_TRACE(row.name);
        const World source = FilledWorld(1, 1, Depth::k8, row.source);
        World destination = FilledWorld(1, 1, Depth::k8, row.destination);
        ASSERT_EQ(Lay(source, Mode(row.mode, row.opacity, row.rgbOnly), destination), PF_Err_NONE);
        const Stored actual = ReadStored(destination, 0, 0);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(actual.value[i], row.expected.value[i]) << "channel " << i;
    }
}

TEST(TransferModes, FloatIsNotClamped) {
    const World source = FilledWorld(1, 1, Depth::k32, {{1, 3, 0.5, -1}});
    World destination = FilledWorld(1, 1, Depth::k32, {{1, 2, 0.75, 0}});
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_ADD), destination), PF_Err_NONE);
    const Stored actual = ReadStored(destination, 0, 0);
    EXPECT_EQ(actual.value[1], 5);
    EXPECT_EQ(actual.value[2], 1.25);
    EXPECT_EQ(actual.value[3], -1);
}

TEST(TransferModes, FullCopyIsExactAndTakesNoneOfTheDestination) {
    const World source = RandomWorld(19, 3, Depth::k32, 5);
    World destination = FilledWorld(19, 3, Depth::k32, {{std::nan(""), INFINITY, std::nan(""), -INFINITY}});
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_COPY), destination), PF_Err_NONE);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 19; ++x) {
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(ReadStored(destination, x, y).value[i], ReadStored(source, x, y).value[i]);
            }
        }
    }
}

TEST(TransferModes, ATransparentSourceLeavesFloatPixelsToTheBit) {
    for (const ModeName& mode : kModes) {
        if (mode.mode == PF_Xfer_COPY || (mode.mode >= 17 && mode.mode <= 20)) continue;
        SCOPED_TRACE(mode.name);
        World source = RandomWorld(21, 2, Depth::k32, 7);
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 21; ++x) {
                Stored pixel = ReadStored(source, x, y);
                pixel.value[0] = 0;
                WriteStored(source, x, y, pixel);
            }
        }
        const World before = RandomWorld(21, 2, Depth::k32, 8);
        World after = CopyOfWorld(before);
        ASSERT_EQ(Lay(source, Mode(mode.mode), after), PF_Err_NONE);
        EXPECT_TRUE(SameBytes(before, after));
    }
}

TEST(TransferModes, NotANumberStaysInItsOwnPixel) {
    for (const ModeName& mode : kModes) {
        SCOPED_TRACE(mode.name);
        const World clean = RandomWorld(35, 3, Depth::k32, 1);
        World poisoned = CopyOfWorld(clean);
        WriteStored(poisoned, 17, 1, {{0.5, std::nan(""), std::nan(""), std::nan("")}});
        const World before = RandomWorld(35, 3, Depth::k32, 2);
        World expected = CopyOfWorld(before);
        World actual = CopyOfWorld(before);
        ASSERT_EQ(Lay(clean, Mode(mode.mode), expected), PF_Err_NONE);
        ASSERT_EQ(Lay(poisoned, Mode(mode.mode), actual), PF_Err_NONE);
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 35; ++x) {
                if (x == 17 && y == 1) continue;
                for (int i = 0; i < 4; ++i) {
                    ASSERT_EQ(ReadStored(actual, x, y).value[i], ReadStored(expected, x, y).value[i]) << x << "," << y;
                }
            }
        }
    }
}

TEST(TransferModes, DissolveTakesWholePixelsInProportion) {
    for (const Depth depth : {Depth::k8, Depth::k16, Depth::k32}) {
        const double full = FullScale(depth);
        const World source = FilledWorld(128, 96, depth, {{full, full, 0, 0}});
        World destination = FilledWorld(128, 96, depth, {{0, 0, full, 0}});
        ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 64), destination), PF_Err_NONE);
        int taken = 0;
        for (int y = 0; y < 96; ++y) {
            for (int x = 0; x < 128; ++x) {
                const Stored pixel = ReadStored(destination, x, y);
                const bool fromSource = pixel.value[0] == full;
                EXPECT_EQ(pixel.value[1], fromSource ? full : 0);
                EXPECT_EQ(pixel.value[2], fromSource ? 0 : full);
                taken += fromSource;
            }
        }
        EXPECT_NEAR(taken / (128.0 * 96.0), 64 / 255.0, 0.02);
    }
}

TEST(TransferModes, DissolveDependsOnPlaceAndSeedAlone) {
    const World source = RandomWorld(64, 40, Depth::k8, 3);
    const World before = RandomWorld(64, 40, Depth::k8, 4);
    World first = CopyOfWorld(before);
    World second = CopyOfWorld(before);
    World otherSeed = CopyOfWorld(before);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 128, false, 1), first), PF_Err_NONE);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 128, false, 1), second), PF_Err_NONE);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 128, false, 2), otherSeed), PF_Err_NONE);
    EXPECT_TRUE(SameBytes(first, second));
    EXPECT_FALSE(SameBytes(first, otherSeed));
}

TEST(TransferModes, DissolveAtTheEndsOfOpacity) {
    const World source = FilledWorld(50, 20, Depth::k8, {{255, 1, 2, 3}});
    const World before = FilledWorld(50, 20, Depth::k8, {{9, 7, 7, 7}});
    World none = CopyOfWorld(before);
    World all = CopyOfWorld(before);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 0), none), PF_Err_NONE);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 255), all), PF_Err_NONE);
    EXPECT_TRUE(SameBytes(none, before));
    EXPECT_EQ(ReadStored(all, 49, 19).value[0], 255);
    EXPECT_EQ(ReadStored(all, 0, 0).value[3], 3);
    World colourOnly = CopyOfWorld(before);
    ASSERT_EQ(Lay(source, Mode(PF_Xfer_DISSOLVE, 255, true), colourOnly), PF_Err_NONE);
    EXPECT_EQ(ReadStored(colourOnly, 5, 5).value[0], 9);
    EXPECT_EQ(ReadStored(colourOnly, 5, 5).value[1], 1);
}

}  // namespace

}  // namespace umbrant::host
