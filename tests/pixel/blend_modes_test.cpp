// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Both popup translations and the blend arithmetic to the bit.

#include "pixel/blend_modes.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace umbrant::effect {

namespace {

struct Blend32Case {
    int mode;
    float a, b, opacity;
    float result, bAfter;
};

/// Digest (FNV-1a) over a = 0, 5, .. 255 and b = 0..255 in that order.
struct Blend8Case {
    int mode;
    float opacity;
    uint64_t digest;
};

#include "tests/pixel/blend_cases.inc"

constexpr float kFloatInf = std::numeric_limits<float>::infinity();
const float kFloatNaN = std::numeric_limits<float>::quiet_NaN();

uint32_t Bits(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

float Blend32(float a, float b, float opacity, int mode) {
    return blend32(&a, &b, &opacity, mode);
}

int Blend8(unsigned char a, unsigned char b, float opacity, int mode) {
    return blend8(&a, &b, &opacity, mode);
}

TEST(BlendModes, ItemTexts) {
    EXPECT_STREQ(kShadowBlendModeItems,
                 "Normal|(-|Add|Screen|(-|Overlay|Soft Light|Hard Light|(-|Darken|Multiply|Color Burn|Classic Color "
                 "Burn|Linear Burn|Darker Color");
    EXPECT_STREQ(kTextureBlendModeItems,
                 "Normal|(-|Multiply|Color Burn|(-|Add|Screen|(-|Overlay|Soft Light|(-|Stencil Alpha|Stencil "
                 "Luma|Silhouette Alpha|Silhouette Luma");
}

TEST(BlendModes, ShadowItems) {
    const struct {
        const char* label;
        int32_t item;
        int32_t xfer;
    } rows[] = {
        {"Normal", 1, 2},
        {"separator", 2, 2},
        {"Add", 3, 4},
        {"Screen", 4, 6},
        {"separator", 5, 2},
        {"Overlay", 6, 7},
        {"Soft Light", 7, 8},
        {"Hard Light", 8, 9},
        {"separator", 9, 2},
        {"Darken", 10, 10},
        {"Multiply", 11, 5},
        {"Color Burn", 12, 28},
        {"Classic", 13, 24},
        {"Linear Burn", 14, 30},
        {"Darker Color", 15, 36},
        {"zero", 0, 2},
        {"negative", -1, 2},
        {"above", 16, 2},
        {"largest", INT32_MAX, 2},
        {"smallest", INT32_MIN, 2},
    };
    for (const auto& row : rows) EXPECT_EQ(ShadowTransferMode(row.item), row.xfer) << row.label << " " << row.item;
}

TEST(BlendModes, TextureItems) {
    constexpr int32_t kUntouched = 77;
    const struct {
        const char* label;
        int32_t item;
        int32_t xfer;
    } rows[] = {
        {"Normal", 1, 2},
        {"separator", 2, kUntouched},
        {"Multiply", 3, 5},
        {"Color Burn", 4, 24},
        {"separator", 5, kUntouched},
        {"Add", 6, 4},
        {"Screen", 7, 6},
        {"separator", 8, kUntouched},
        {"Overlay", 9, 7},
        {"Soft Light", 10, 8},
        {"separator", 11, kUntouched},
        {"Stencil Alpha", 12, 17},
        {"Stencil Luma", 13, 18},
        {"Silhouette Alpha", 14, 19},
        {"Silhouette Luma", 15, 20},
        {"zero", 0, kUntouched},
        {"negative", -1, kUntouched},
        {"above", 16, kUntouched},
        {"a shift of 32", 33, kUntouched},
        {"largest", INT32_MAX, kUntouched},
        {"smallest", INT32_MIN, kUntouched},
    };
    for (const auto& row : rows) {
        PF_CompositeMode mode{};
        mode.xfer = kUntouched;
        mode.rand_seed = 5;
        mode.opacity = 6;
        mode.rgb_only = 7;
        mode.opacitySu = 8;
        ApplyTextureTransferMode(row.item, &mode);
        EXPECT_EQ(mode.xfer, row.xfer) << row.label << " " << row.item;
        EXPECT_EQ(mode.rand_seed, 5);
        EXPECT_EQ(mode.opacity, 6);
        EXPECT_EQ(mode.rgb_only, 7);
        EXPECT_EQ(mode.opacitySu, 8);
    }
}

TEST(BlendModes, ColorBurnMeansTwoThings) {
    PF_CompositeMode mode{};
    ApplyTextureTransferMode(4, &mode);
    EXPECT_EQ(mode.xfer, PF_Xfer_COLOR_BURN);
    EXPECT_EQ(ShadowTransferMode(12), PF_Xfer_COLOR_BURN2);
    EXPECT_EQ(ShadowTransferMode(13), PF_Xfer_COLOR_BURN);
}

TEST(Blend32, EveryModeToTheBit) {
    for (const Blend32Case& row : kBlend32Cases) {
        float a = row.a, b = row.b, opacity = row.opacity;
        const float result = blend32(&a, &b, &opacity, row.mode);
        const std::string where = "mode " + std::to_string(row.mode) + " a " + std::to_string(row.a) + " b " +
                                  std::to_string(row.b) + " opacity " + std::to_string(row.opacity);
        EXPECT_EQ(Bits(result), Bits(row.result)) << where;
        EXPECT_EQ(Bits(b), Bits(row.bAfter)) << where;
        EXPECT_EQ(Bits(a), Bits(row.a)) << where;
        EXPECT_EQ(Bits(opacity), Bits(row.opacity)) << where;
    }
}

TEST(Blend8, EveryModeToTheLastStep) {
    for (const Blend8Case& row : kBlend8Cases) {
        uint64_t digest = 0xCBF29CE484222325u;
        for (int a = 0; a < 256; a += 5) {
            for (int b = 0; b < 256; ++b) {
                const int result = Blend8(static_cast<uint8_t>(a), static_cast<uint8_t>(b), row.opacity, row.mode);
                digest = (digest ^ static_cast<uint64_t>(result)) * 0x100000001B3u;
            }
        }
        EXPECT_EQ(digest, row.digest) << "mode " << row.mode << " opacity " << row.opacity;
    }
}

TEST(Blend8, NormalAtFullOpacityKeepsEveryValue) {
    for (int value = 0; value < 256; ++value) {
        const auto a = static_cast<uint8_t>(value);
        EXPECT_EQ(Blend8(a, 17, 1.0f, 1), value);
        EXPECT_EQ(Blend8(99, a, 0.0f, 1), value);
    }
}

// The truncation is required: a rounding step here would give 128.
TEST(Blend8, HalfOfWhiteTruncates) {
    EXPECT_EQ(Blend8(255, 0, 0.5f, 1), 127);
}

TEST(Blend8, ModesWithoutATermFadeTowardsBlack) {
    for (int mode : {0, 2, 5, 8, 11, 12, 13, 14, 15, 16, -1, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(Blend8(200, 200, 1.0f, mode), 0) << mode;
        for (int b = 0; b < 256; ++b) EXPECT_EQ(Blend8(200, static_cast<uint8_t>(b), 0.0f, mode), b) << mode;
        EXPECT_EQ(Blend8(200, 200, 0.5f, mode), 100) << mode;
    }
}

TEST(Blend8, WritesNothingBack) {
    unsigned char a = 40, b = 0;
    float opacity = 0.25f;
    blend8(&a, &b, &opacity, 4);
    EXPECT_EQ(a, 40);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(opacity, 0.25f);
}

TEST(Blend8, ResultsAreLimitedToTheirRange) {
    EXPECT_EQ(Blend8(255, 255, 1.0f, 6), 255) << "a sum of 2";
    EXPECT_EQ(Blend8(0, 0, 1.0f, 4), 0) << "1 - 1/0.001 = -999";
    EXPECT_EQ(Blend8(255, 0, 1e30f, 1), 255);
    EXPECT_EQ(Blend8(255, 255, kFloatNaN, 1), 0);
    EXPECT_EQ(Blend8(255, 255, kFloatInf, 1), 0) << "infinity less infinity is not a number";
    EXPECT_EQ(Blend8(255, 0, kFloatInf, 1), 0) << "0 times infinity is not a number";
}

TEST(Blend32, BurnWritesTheClampedDestinationBack) {
    const struct {
        const char* name;
        float b, after;
    } rows[] = {
        {"zero", 0.0f, 0.001f},
        {"negative", -1.0f, 0.001f},
        {"not a number", kFloatNaN, 0.001f},
        {"just above", 0.0010000000474974513f, 0.0010000000474974513f},
        {"next below", 0x1.0624dcp-10f, 0.001f},
        {"minus infinity", -kFloatInf, 0.001f},
        {"half", 0.5f, 0.5f},
        {"infinity", kFloatInf, kFloatInf},
    };
    for (const auto& row : rows) {
        float a = 0.25f, b = row.b, opacity = 0.5f;
        blend32(&a, &b, &opacity, 4);
        EXPECT_EQ(Bits(b), Bits(row.after)) << row.name;
        float c = row.b;
        colorBurn(&a, &c);
        EXPECT_EQ(Bits(c), Bits(row.after)) << row.name;
    }
    EXPECT_EQ(Bits(0.001f), Bits(0.0010000000474974513f));
}

TEST(Blend32, OtherModesLeaveTheDestinationAlone) {
    for (int mode : {0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 16, -1}) {
        float a = 0.25f, b = 0.0f, opacity = 0.5f;
        blend32(&a, &b, &opacity, mode);
        EXPECT_EQ(b, 0.0f) << mode;
    }
}

TEST(Blend32, AddExceedsOneAndScreenDoesNot) {
    EXPECT_EQ(Bits(Blend32(0.8f, 0.8f, 1.0f, 6)), Bits(1.6f));
    EXPECT_EQ(Blend32(0.8f, 0.8f, 1.0f, 7), 1.0f);
    // The clamped sum: the product form would give 0.75.
    EXPECT_EQ(Blend32(0.5f, 0.5f, 1.0f, 7), 1.0f);
    EXPECT_EQ(Blend32(0.25f, 0.5f, 1.0f, 7), 0.75f);
}

TEST(Blend32, UnclampedBelowZero) {
    const float result = Blend32(0.0f, 0.0f, 1.0f, 4);
    EXPECT_LT(result, -998.0f);
    EXPECT_EQ(Bits(result), Bits(static_cast<float>(1.0 - 1.0 / static_cast<double>(0.001f))));
}

// The last step forms f op in single precision: formed in double it would give another last bit.
TEST(Blend32, SourceTimesOpacityIsRoundedBeforeTheSum) {
    int different = 0;
    for (int i = 1; i < 2000; ++i) {
        const float a = static_cast<float>(i) / 1999.0f, b = 1.0f - a * a, opacity = 0.3f + a / 7.0f;
        const volatile float product = a * opacity;
        const double uncovered = static_cast<double>(b) * (1.0 - static_cast<double>(opacity));
        EXPECT_EQ(Bits(Blend32(a, b, opacity, 1)), Bits(static_cast<float>(uncovered + product))) << i;
        const auto inDouble = static_cast<float>(uncovered + static_cast<double>(a) * static_cast<double>(opacity));
        if (Bits(inDouble) != Bits(static_cast<float>(uncovered + product))) ++different;
    }
    EXPECT_GT(different, 0) << "the rows do not distinguish the two";
}

TEST(Overlay, HalfTakesTheSecondBranch) {
    float a = 0.5f, b = 0.3f;
    const double wide = b;
    EXPECT_EQ(Bits(overlay(&a, &b)), Bits(static_cast<float>(1.0 - (1.0 - wide) * 1.0)));
    // On the source: with a at 1 the result is 1 whatever lies underneath; a test on b would give 2 a b = 0.6.
    a = 1.0f;
    EXPECT_EQ(overlay(&a, &b), 1.0f);
    // Below one half b doubles by a; a test on b would leave the product for b >= 0.5.
    a = 0.25f;
    b = 0.75f;
    EXPECT_EQ(overlay(&a, &b), 0.375f);
    EXPECT_EQ(Blend32(0.25f, 0.75f, 1.0f, 9), 0.375f);
}

TEST(Terms, AreTheModesAtFullOpacity) {
    for (int i = 0; i <= 100; ++i) {
        for (int j = 1; j <= 100; j += 3) {
            float a = static_cast<float>(i) * 0.013f, b = static_cast<float>(j) * 0.011f;
            // At opacity 1 the last step is b * 0 + f.
            EXPECT_EQ(overlay(&a, &b), Blend32(a, b, 1.0f, 9));
            EXPECT_EQ(softLight(&a, &b), Blend32(a, b, 1.0f, 10));
            float burned = b;
            const float term = colorBurn(&a, &burned);
            EXPECT_EQ(term, Blend32(a, b, 1.0f, 4));
            float t = static_cast<float>(j) * 0.007f;
            EXPECT_EQ(Bits(mix32(&a, &b, &t)), Bits(Blend32(a, b, t, 1)));
        }
    }
}

TEST(Blend32, NotANumberAndInfinity) {
    EXPECT_TRUE(std::isnan(Blend32(kFloatNaN, 0.5f, 1.0f, 1)));
    EXPECT_TRUE(std::isnan(Blend32(kFloatNaN, 0.5f, 0.0f, 1))) << "0 times not-a-number";
    EXPECT_TRUE(std::isnan(Blend32(kFloatNaN, 0.5f, 1.0f, 7))) << "screen does not hide it";
    EXPECT_TRUE(std::isnan(Blend32(kFloatNaN, 0.5f, 1.0f, 9))) << "overlay takes the second branch";
    EXPECT_TRUE(std::isnan(Blend32(0.5f, kFloatNaN, 1.0f, 1))) << "not-a-number times 0";
    EXPECT_TRUE(std::isnan(Blend32(0.5f, 0.5f, kFloatNaN, 11)));
    EXPECT_EQ(Blend32(kFloatNaN, 0.5f, 0.5f, 11), 0.25f) << "a mode without a term does not read the source";
    EXPECT_EQ(Blend32(kFloatInf, 0.5f, 0.5f, 1), kFloatInf);
    EXPECT_EQ(Blend32(kFloatInf, 0.5f, 1.0f, 7), 1.0f) << "the clamped sum";
    EXPECT_EQ(Blend32(0.25f, kFloatNaN, 1.0f, 4), static_cast<float>(1.0 - 0.75 / static_cast<double>(0.001f)))
        << "not-a-number underneath becomes 0.001";
}

// Terms are the items of the texture's popup by number.
TEST(Blend32, ModeNumbersAreTheTexturesItems) {
    EXPECT_EQ(Blend32(0.25f, 0.5f, 1.0f, 1), 0.25f);
    EXPECT_EQ(Blend32(0.25f, 0.5f, 1.0f, 3), 0.125f);
    EXPECT_EQ(Blend32(0.75f, 0.5f, 1.0f, 4), 0.5f);
    EXPECT_EQ(Blend32(0.25f, 0.5f, 1.0f, 6), 0.75f);
    EXPECT_EQ(Blend32(0.25f, 0.75f, 1.0f, 10), 0.34375f) << "1.5 * 0.25 + 0.0625 * -0.5";
}

}  // namespace

}  // namespace umbrant::effect
