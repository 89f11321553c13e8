// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every instruction set gives the same bytes, and they are what the plain formulas give.

#include "cpu/kernels/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "cpu/column_tiles.h"

namespace umbrant::effect {

namespace {

std::vector<float> Random(size_t count, float high) {
    std::mt19937 engine(5);
    std::vector<float> values(count);
    for (float& value : values) value = std::floor(high * (static_cast<float>(engine() >> 8) / 16777216.0f));
    return values;
}

/// Two blocks of taps over `inputs` inputs `unit` floats apart.
struct Taps {
    std::vector<int32_t> starts{0};
    std::vector<int32_t> offsets;
    std::vector<float> weights;

    Taps(int inputs, int unit) {
        for (int block = 0; block < 2; ++block) {
            for (int e = 0; e < inputs; ++e) {
                offsets.push_back(e * unit);
                for (int output = 0; output < kTapOutputs; ++output) {
                    weights.push_back(static_cast<float>((e * 7 + output * 3 + block) % 11) /
                                      (5.0f * static_cast<float>(inputs)));
                }
            }
            starts.push_back(static_cast<int32_t>(offsets.size()));
        }
    }
    TapBlocks View() const { return {starts.data(), offsets.data(), weights.data(), 2}; }

    float Sum(const float* in, int block, int output) const {
        float sum = 0;
        for (int e = starts[static_cast<size_t>(block)]; e < starts[static_cast<size_t>(block) + 1]; ++e) {
            const auto entry = static_cast<size_t>(e);
            sum += in[offsets[entry]] * weights[kTapOutputs * entry + static_cast<size_t>(output)];
        }
        return std::nearbyint(std::clamp(sum, 0.0f, 65535.0f));
    }
};

class Kernels : public ::testing::TestWithParam<const CpuKernels*> {};

TEST_P(Kernels, BlurColumns) {
    const auto tile = Random(kTileRows * 40, 65535);
    const Taps taps(40, kTileRows);
    const ptrdiff_t pitch = 16;
    std::vector<float> out(kTileRows * pitch, -1);
    GetParam()->blurColumns(tile.data(), taps.View(), kTileRows, out.data(), pitch);
    for (int row = 0; row < kTileRows; ++row) {
        for (int column = 0; column < 8; ++column) {
            ASSERT_EQ(out[static_cast<size_t>(row * pitch + column)],
                      taps.Sum(tile.data() + row, column / 4, column % 4))
                << row << ", " << column;
        }
        ASSERT_EQ(out[static_cast<size_t>(row * pitch + 8)], -1);
    }
}

TEST_P(Kernels, BlurRows) {
    const int pitch = 96;
    const auto plane = Random(static_cast<size_t>(pitch * 30), 65535);
    const Taps taps(30, pitch);
    std::vector<float> out(8 * 96);
    GetParam()->blurRows(plane.data(), taps.View(), 0, 2, 70, out.data(), 96);
    for (int row = 0; row < 8; ++row) {
        for (int column = 0; column < 70; ++column) {
            ASSERT_EQ(out[static_cast<size_t>(row * 96 + column)], taps.Sum(plane.data() + column, row / 4, row % 4));
        }
    }
}

TEST_P(Kernels, SumsAreLimitedAndNotANumberIsNothing) {
    const float bad[] = {-5,
                         70000,
                         std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(),
                         0.5f,
                         1.5f,
                         65534.75f};
    const float good[] = {0, 65535, 0, 65535, 0, 0, 2, 65535};
    std::vector<float> plane(128, 0.0f);
    std::copy(std::begin(bad), std::end(bad), plane.begin());
    const int32_t starts[] = {0, 1};
    const int32_t offset = 0;
    const float weights[] = {1, 1, 1, 1};
    std::vector<float> out(4 * 96);
    GetParam()->blurRows(plane.data(), {starts, &offset, weights, 1}, 0, 1, 8, out.data(), 96);
    for (size_t i = 0; i < std::size(good); ++i) EXPECT_EQ(out[i], good[i]) << bad[i];
}

TEST_P(Kernels, MixRows) {
    const auto a = Random(200, 65535);
    const auto b = Random(264, 30000);
    std::vector<float> out(200 + kSlack);
    GetParam()->mixRows(a.data(), b.data() + 20, 0.3f, 100, out.data());
    for (size_t i = 0; i < 100; ++i) ASSERT_EQ(out[i], a[i] + 0.3f * (b[i + 20] - a[i]));
}

TEST_P(Kernels, PlaceRow) {
    const auto texels = Random(300, 65535);
    for (const double scale : {0.2, 0.6, 0.99, 1.0, 1.7}) {
        std::vector<int32_t> places;
        std::vector<float> fractions;
        for (int i = 0; i < 117; ++i) {
            places.push_back(static_cast<int32_t>(std::floor(i * scale + 0.8)));
            fractions.push_back(static_cast<float>(i * scale + 0.8 - std::floor(i * scale + 0.8)));
        }
        std::vector<uint16_t> sums(140);
        for (size_t i = 0; i < sums.size(); ++i) sums[i] = static_cast<uint16_t>(i * 467);
        const std::vector<uint16_t> before = sums;
        GetParam()->placeRow(texels.data(), {places.data(), fractions.data(), 117, scale <= 1}, sums.data());
        for (size_t i = 0; i < sums.size(); ++i) {
            double expected = before[i];
            if (i < 117) {
                const auto at = static_cast<size_t>(places[i]);
                const double s = static_cast<double>(texels[at]) +
                                 static_cast<double>(fractions[i]) *
                                     (static_cast<double>(texels[at + 1]) - static_cast<double>(texels[at]));
                expected += s * (1 - before[i] / 65535.0);
            }
            ASSERT_NEAR(sums[i], expected, 0.51) << "scale " << scale << ", pixel " << i;
        }
    }
}

TEST_P(Kernels, AddingNothingChangesNothingAndFullStaysFull) {
    std::vector<float> texels(kSlack, 0.0f);
    const std::vector<int32_t> places(20, 0);
    const std::vector<float> fractions(20, 0.5f);
    std::vector<uint16_t> sums(20);
    for (unsigned value = 0; value < 65536; value += 20) {
        for (unsigned i = 0; i < 20; ++i) sums[i] = static_cast<uint16_t>(std::min(value + i, 65535u));
        GetParam()->placeRow(texels.data(), {places.data(), fractions.data(), 20, true}, sums.data());
        for (unsigned i = 0; i < 20; ++i) ASSERT_EQ(sums[i], std::min(value + i, 65535u));
    }
    texels.assign(kSlack, 65535.0f);
    GetParam()->placeRow(texels.data(), {places.data(), fractions.data(), 20, true}, sums.data());
    for (uint16_t sum : sums) EXPECT_EQ(sum, 65535);
}

TEST_P(Kernels, SumsOfCoarseGridsAreNeitherRoundedNorLimited) {
    std::vector<float> tile(static_cast<size_t>(kTileRows), 0.0f);
    tile[3] = 0.25f;
    tile[4] = -7.5f;
    tile[5] = 100000.5f;
    const int32_t starts[] = {0, 1};
    const int32_t offset = 0;
    const float weights[] = {1, 2, -1, 0};
    std::vector<float> out(kTileRows * 4, -1);
    GetParam()->sumColumns(tile.data(), {starts, &offset, weights, 1}, kTileRows, out.data(), 4);
    std::vector<float> rows(4 * 64, -1);
    GetParam()->sumRows(tile.data(), {starts, &offset, weights, 1}, 0, 1, 8, rows.data(), 64);
    for (size_t i = 0; i < 8; ++i) {
        for (size_t output = 0; output < 4; ++output) {
            EXPECT_EQ(out[4 * i + output], tile[i] * weights[output]);
            EXPECT_EQ(rows[64 * output + i], tile[i] * weights[output]);
        }
    }
}

TEST_P(Kernels, FilterRow) {
    const auto in = Random(300, 65535);
    const std::vector<float> weights = {0.5f, -0.25f, 1, 0.125f, 2};
    std::vector<float> out(200 + kSlack);
    GetParam()->filterRow(in.data(), weights.data(), 5, 200, out.data());
    for (size_t i = 0; i < 200; ++i) {
        float sum = 0;
        for (size_t k = 0; k < 5; ++k) sum += weights[k] * in[i + k];
        ASSERT_EQ(out[i], sum) << i;
    }
}

TEST_P(Kernels, StretchSpline) {
    const auto coefficients = Random(300, 65535);
    for (const double scale : {0.02, 0.3, 0.99, 1.0, 1.7}) {
        constexpr int kCount = 117;
        std::vector<int32_t> texels;
        for (int i = 0; i < kCount; ++i) texels.push_back(static_cast<int32_t>(i * scale + 0.8));
        const auto weights = Random(kQuinticSpan * kCount, 16);
        std::vector<float> out(kCount + kSlack);
        GetParam()->stretchSpline(coefficients.data(), {texels.data(), weights.data(), kCount, kCount, scale <= 1},
                                  out.data());
        for (size_t i = 0; i < kCount; ++i) {
            float sum = 0;
            for (size_t k = 0; k < kQuinticSpan; ++k) {
                sum += weights[k * kCount + i] * coefficients[static_cast<size_t>(texels[i]) + k];
            }
            ASSERT_EQ(out[i], sum) << "scale " << scale << ", column " << i;
        }
    }
}

TEST_P(Kernels, PlaceSpline) {
    const auto values = Random(4 * 140, 80000);
    const float* rows[] = {values.data(), values.data() + 140, values.data() + 280, values.data() + 420};
    const float weights[] = {-0.3f, 0.7f, 0.5f, -0.1f};
    std::vector<uint16_t> sums(140);
    for (size_t i = 0; i < sums.size(); ++i) sums[i] = static_cast<uint16_t>(i * 467);
    const std::vector<uint16_t> before = sums;
    GetParam()->placeSpline(rows, weights, 117, sums.data());
    for (size_t i = 0; i < sums.size(); ++i) {
        double s = 0;
        for (size_t k = 0; k < 4; ++k) s += static_cast<double>(weights[k]) * static_cast<double>(rows[k][i]);
        s = i < 117 ? std::clamp(s, 0.0, 65535.0) : 0;
        ASSERT_NEAR(sums[i], before[i] + s * (1 - before[i] / 65535.0), 0.52) << i;
    }
}

TEST_P(Kernels, Conversions) {
    std::vector<uint16_t> all(65536);
    for (size_t i = 0; i < all.size(); ++i) all[i] = static_cast<uint16_t>(i);
    std::vector<uint8_t> bytes(all.size());
    std::vector<float> floats(all.size());
    GetParam()->toBytes(all.data(), all.size(), bytes.data());
    GetParam()->toFloats(all.data(), all.size(), floats.data());
    for (size_t i = 0; i < all.size(); ++i) {
        ASSERT_EQ(bytes[i], std::floor(static_cast<double>(i) / 257 + 0.5)) << i;
        ASSERT_EQ(floats[i], static_cast<float>(i) / 65535.0f) << i;
    }
}

TEST_P(Kernels, AlphasAreTakenFromPixels) {
    const auto floats = Random(4 * 103, 65535);
    std::vector<uint8_t> bytes(floats.size());
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7);
    for (const size_t count : {0, 1, 15, 103}) {
        std::vector<uint8_t> takenBytes(104, 9);
        std::vector<float> takenFloats(104, 9);
        GetParam()->takeBytes(bytes.data(), count, takenBytes.data());
        GetParam()->takeFloats(floats.data(), count, takenFloats.data());
        for (size_t i = 0; i < count; ++i) {
            ASSERT_EQ(takenBytes[i], bytes[4 * i]) << i;
            ASSERT_EQ(takenFloats[i], floats[4 * i]) << i;
        }
        EXPECT_EQ(takenBytes[count], 9) << "nothing beyond the row";
        EXPECT_EQ(takenFloats[count], 9);
    }
}

TEST_P(Kernels, PixelsGetAlphaAndColour) {
    std::vector<uint16_t> all(65536 + 5);
    for (size_t i = 0; i < all.size(); ++i) all[i] = static_cast<uint16_t>(i);
    const uint8_t colour[4] = {77, 1, 128, 255};
    const float floatColour[4] = {77, 0.25f, -1, 3};
    std::vector<uint8_t> bytes(4 * all.size() + 1, 9);
    std::vector<float> floats(4 * all.size() + 1, 9);
    GetParam()->colourBytes(all.data(), all.size(), colour, bytes.data());
    GetParam()->colourFloats(all.data(), all.size(), floatColour, floats.data());
    for (size_t i = 0; i < all.size(); ++i) {
        ASSERT_EQ(bytes[4 * i], std::floor(static_cast<double>(all[i]) / 257 + 0.5)) << i;
        ASSERT_EQ(floats[4 * i], static_cast<float>(all[i]) / 65535.0f) << i;
        for (size_t channel = 1; channel < 4; ++channel) {
            ASSERT_EQ(bytes[4 * i + channel], colour[channel]) << i;
            ASSERT_EQ(floats[4 * i + channel], floatColour[channel]) << i;
        }
    }
    EXPECT_EQ(bytes.back(), 9) << "nothing beyond the row";
    EXPECT_EQ(floats.back(), 9);
}

TEST_P(Kernels, RowsOfASourceAreMixed) {
    auto floats = Random(2 * 103, 3);
    const float odd[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(), 2e30f};
    std::copy(std::begin(odd), std::end(odd), floats.begin() + 20);
    std::copy(std::begin(odd), std::end(odd), floats.begin() + 99);
    std::vector<uint8_t> bytes(floats.size());
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 37);
    const auto mixed = [](float from, float to, float fraction) { return from + fraction * (to - from); };
    for (const float fraction : {0.0f, 0.375f, 0.9f}) {
        std::vector<float> ofBytes(104, -1);
        std::vector<float> ofFloats(104, -1);
        GetParam()->mixBytes(bytes.data(), bytes.data() + 103, fraction, 103, ofBytes.data());
        GetParam()->mixFloats(floats.data(), floats.data() + 103, fraction, 103, ofFloats.data());
        for (size_t i = 0; i < 103; ++i) {
            ASSERT_EQ(ofBytes[i], mixed(bytes[i], bytes[i + 103], fraction)) << i;
            ASSERT_EQ(ofFloats[i], mixed(AlphaValue(floats[i]), AlphaValue(floats[i + 103]), fraction)) << i;
        }
        EXPECT_EQ(ofBytes[103], -1) << "nothing beyond the row";
        EXPECT_EQ(ofFloats[103], -1);
    }
}

TEST_P(Kernels, RowsBecomeColumns) {
    const ptrdiff_t pitch = 110;
    const auto rows = Random(static_cast<size_t>(kTileRows * pitch), 65535);
    for (const int columns : {1, 16, 103}) {
        std::vector<float> tile(static_cast<size_t>(kTileRows * columns) + 1, -1);
        GetParam()->turnRows(rows.data(), pitch, columns, tile.data());
        for (int column = 0; column < columns; ++column) {
            for (int row = 0; row < kTileRows; ++row) {
                ASSERT_EQ(tile[static_cast<size_t>(column * kTileRows + row)],
                          rows[static_cast<size_t>(row * pitch + column)]);
            }
        }
        EXPECT_EQ(tile.back(), -1) << "nothing beyond the tile";
    }
}

TEST_P(Kernels, EverySecondRowOfAWeightedSum) {
    constexpr int kColumns = 5;
    constexpr ptrdiff_t kPitch = kColumns * kTileRows;
    const auto tiles = Random(4 * kPitch, 65535);
    const float weights[11] = {0.5f, -1, 2, 3, -4, 5, 6, -7, 0.25f, 1, 0.125f};
    const auto at = [&](int row, int column) {
        return tiles[static_cast<size_t>(row / kTileRows * kPitch + column * kTileRows + row % kTileRows)];
    };
    for (const int taps : {7, 11}) {
        for (const int first : {0, 1, 22, 23, 31}) {
            std::vector<float> out(kPitch + 1, -1);
            const auto thin = taps == 11 ? GetParam()->thinByEleven : GetParam()->thinBySeven;
            thin(tiles.data(), kPitch, first, weights, kColumns, out.data());
            for (int column = 0; column < kColumns; ++column) {
                for (int row = 0; row < kTileRows; ++row) {
                    float sum = 0;
                    for (int k = 0; k < taps; ++k) sum += weights[k] * at(first + 2 * row + k, column);
                    ASSERT_EQ(out[static_cast<size_t>(column * kTileRows + row)], sum) << taps << " " << first;
                }
            }
            EXPECT_EQ(out.back(), -1) << "nothing beyond the tile";
        }
    }
}

TEST_P(Kernels, PartsOfRowsAndOfLists) {
    const auto tile = Random(kTileRows * 40, 65535);
    Taps taps(20, kTileRows);
    const ptrdiff_t pitch = 64;
    std::vector<float> whole(kTileRows * pitch);
    std::vector<float> part(kTileRows * pitch, -1);
    GetParam()->blurColumns(tile.data(), taps.View(), kTileRows, whole.data(), pitch);
    TapBlocks second = taps.View();
    ++second.starts;
    second.count = 1;
    second.base = kTileRows;
    GetParam()->blurColumns(tile.data() + kTileRows + 16, second, 16, part.data(), pitch);
    for (ptrdiff_t row = 0; row < 16; ++row) {
        for (ptrdiff_t column = 0; column < kTapOutputs; ++column) {
            ASSERT_EQ(part[static_cast<size_t>(row * pitch + column)],
                      whole[static_cast<size_t>((row + 16) * pitch + kTapOutputs + column)]);
        }
    }
    EXPECT_EQ(part[16 * pitch], -1) << "no row more";
}

INSTANTIATE_TEST_SUITE_P(Sets, Kernels, ::testing::ValuesIn(RunnableKernels()), [](const auto& row) {
    std::string name = row.param->name;
    std::erase_if(name, [](unsigned char c) { return !std::isalnum(c); });
    return name;
});

}  // namespace

}  // namespace umbrant::effect
