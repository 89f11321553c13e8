// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The program's own colour spaces against the published formulas, computed here in double precision.

#include "host/color/color_spaces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "host/color/convert_world.h"
#include "host/color/open_color_spaces.h"
#include "host/color/own_config.h"

namespace umbrant::host {

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

Vector Times(const Matrix& matrix, const Vector& by) {
    Vector product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t i = 0; i < 3; ++i) product[row] += matrix[row][i] * by[i];
    }
    return product;
}

Matrix Times(const Matrix& one, const Matrix& other) {
    Matrix product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            for (std::size_t i = 0; i < 3; ++i) product[row][column] += one[row][i] * other[i][column];
        }
    }
    return product;
}

Matrix Inverse(const Matrix& m) {
    Matrix inverse{};
    double determinant = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        determinant += m[0][i] * (m[1][j] * m[2][k] - m[1][k] * m[2][j]);
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t d = (c + 1) % 3, e = (c + 2) % 3;
            inverse[c][i] = m[j][d] * m[k][e] - m[j][e] * m[k][d];
        }
    }
    for (Vector& row : inverse) {
        for (double& value : row) value /= determinant;
    }
    return inverse;
}

Vector WhiteOf(double x, double y) {
    return {x / y, 1, (1 - x - y) / y};
}

/// From linear colours with these primaries, x and y of red, green and blue, to XYZ.
Matrix ToXyz(const std::array<double, 6>& primaries, const Vector& white) {
    Matrix matrix{};
    for (std::size_t i = 0; i < 3; ++i) {
        const double x = primaries[2 * i], y = primaries[2 * i + 1];
        matrix[0][i] = x;
        matrix[1][i] = y;
        matrix[2][i] = 1 - x - y;
    }
    const Vector scale = Times(Inverse(matrix), white);
    for (Vector& row : matrix) {
        for (std::size_t i = 0; i < 3; ++i) row[i] *= scale[i];
    }
    return matrix;
}

/// Linear Rec. 709 to ACEScg, adapted from D65 to the white of ACES after Bradford.
Matrix Rec709ToAp1() {
    const Vector from = WhiteOf(0.3127, 0.3290), to = WhiteOf(0.32168, 0.33767);
    const Matrix bradford = {{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
    const Vector cones = Times(bradford, from), adapted = Times(bradford, to);
    Matrix scale{};
    for (std::size_t i = 0; i < 3; ++i) scale[i][i] = adapted[i] / cones[i];
    const Matrix adapt = Times(Inverse(bradford), Times(scale, bradford));
    const Matrix rec709 = ToXyz({0.64, 0.33, 0.30, 0.60, 0.15, 0.06}, from);
    const Matrix ap1 = ToXyz({0.713, 0.293, 0.165, 0.830, 0.128, 0.044}, to);
    return Times(Inverse(ap1), Times(adapt, rec709));
}

/// IEC 61966-2-1: the light of a code value.
double SrgbLight(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

class OwnSpaces : public testing::Test {
 protected:
    OwnSpaces() {
        unsetenv("OCIO");
        auto opened = OpenedColorSpaces::Open();
        EXPECT_TRUE(opened) << opened.error().sentence;
        if (opened) spaces_ = std::move(*opened);
    }

    std::array<float, 3> Converted(const char* from, const char* to, std::array<float, 3> color) const {
        const auto conversion = spaces_.Conversion(from, to);
        EXPECT_TRUE(conversion);
        if (!conversion || !*conversion) return color;
        EXPECT_TRUE((*conversion)->Apply(color.data(), 3, 1));
        return color;
    }

    OpenedColorSpaces spaces_;
};

// The library puts the two parts of the curve together where they have the same slope, which moves values by up to
// 2e-5, a thirteenth of a step of 12 bits.
constexpr double kCurve = 2e-5;

TEST_F(OwnSpaces, SrgbHasItsPublishedCurve) {
    for (int step = 0; step <= 255; ++step) {
        const auto value = static_cast<float>(step) / 255;
        const double light = SrgbLight(value);
        const auto to = Converted(kSrgbSpace, kLinearSpace, {value, value, value});
        const auto back = Converted(kLinearSpace, kSrgbSpace, {static_cast<float>(light), 0, 1});
        EXPECT_NEAR(to[0], light, kCurve) << step;
        EXPECT_NEAR(back[0], value, kCurve) << step;
        EXPECT_NEAR(back[2], 1, 1e-6);
    }
}

TEST_F(OwnSpaces, GammaIsAPowerAlsoBelowZero) {
    for (const float value : {0.0f, 0.1f, 0.5f, 1.0f, 4.0f}) {
        const auto to = Converted(kGammaSpace, kLinearSpace, {value, -value, 0});
        const double light = std::pow(static_cast<double>(value), 2.4);
        EXPECT_NEAR(to[0], light, 1e-5 * std::max(1.0, light)) << value;
        EXPECT_NEAR(to[1], -light, 1e-5 * std::max(1.0, light)) << value;
    }
}

TEST_F(OwnSpaces, AcescgHasItsPrimariesAndWhite) {
    const Matrix matrix = Rec709ToAp1();
    for (const std::array<float, 3>& color :
         {std::array{1.0f, 0.0f, 0.0f}, std::array{0.0f, 1.0f, 0.0f}, std::array{0.0f, 0.0f, 1.0f},
          std::array{1.0f, 1.0f, 1.0f}, std::array{0.18f, 7.5f, -0.25f}}) {
        const Vector expected = Times(matrix, Vector{color[0], color[1], color[2]});
        const auto to = Converted(kLinearSpace, kAcesSpace, color);
        const auto back = Converted(kAcesSpace, kLinearSpace, to);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(to[i], expected[i], 1e-5) << i;
            EXPECT_NEAR(back[i], color[i], 1e-5) << i;
        }
    }
}

TEST_F(OwnSpaces, EveryPairComesBack) {
    constexpr const char* kAll[] = {kSrgbSpace, kLinearSpace, kGammaSpace, kAcesSpace};
    for (const char* from : kAll) {
        for (const char* to : kAll) {
            const std::array<float, 3> color = {0.75f, 0.02f, 0.4f};
            const auto back = Converted(to, from, Converted(from, to, color));
            for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(back[i], color[i], 2e-5) << from << " " << to;
        }
    }
}

TEST_F(OwnSpaces, NamesAliasesAndRolesAreFoundInAnyCase) {
    for (const auto& [typed, name] : {std::pair("sRGB", kSrgbSpace), std::pair("SRGB", kSrgbSpace),
                                      std::pair("acescg", kAcesSpace), std::pair("lin_rec709", kLinearSpace),
                                      std::pair("scene_linear", kLinearSpace), std::pair("linear", kLinearSpace)}) {
        const auto found = spaces_.Find(typed);
        ASSERT_TRUE(found) << typed;
        EXPECT_EQ(*found, name);
    }
    const auto near = spaces_.Find("acecg");
    ASSERT_FALSE(near);
    EXPECT_EQ(near.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(near.error().sentence, "there is no colour space 'acecg'; did you mean 'ACEScg'?");
    const auto none = spaces_.Find("a space of nobody");
    ASSERT_FALSE(none);
    EXPECT_EQ(none.error().sentence,
              "there is no colour space 'a space of nobody'; there are: sRGB, Linear Rec.709, Gamma "
              "2.4 Rec.709, ACEScg");
}

TEST_F(OwnSpaces, AlphaAndThePaddingOfRowsStay) {
    const auto conversion = spaces_.Conversion(kSrgbSpace, kAcesSpace);
    ASSERT_TRUE(conversion);
    World world = World::Create(3, 2, Depth::k32);
    const float alphas[] = {
        0, 0.5f, 1, -2, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()};
    for (int i = 0; i < 6; ++i) {
        auto* const row = reinterpret_cast<PF_PixelFloat*>(world.Row(i / 3));
        row[i % 3] = {alphas[i], 0.5f, 0.5f, 0.5f};
    }
    const auto padding = [&] { return reinterpret_cast<PF_PixelFloat*>(world.Row(0))[3]; };
    const PF_PixelFloat before = padding();
    ASSERT_TRUE(ConvertColors(world, **conversion));
    for (int i = 0; i < 6; ++i) {
        const PF_PixelFloat& pixel = reinterpret_cast<PF_PixelFloat*>(world.Row(i / 3))[i % 3];
        EXPECT_EQ(std::memcmp(&pixel.alpha, &alphas[i], sizeof(float)), 0) << i;
        EXPECT_NEAR(pixel.red, SrgbLight(0.5), kCurve) << "grey stays grey, whatever its alpha";
        EXPECT_NEAR(pixel.blue, SrgbLight(0.5), kCurve);
    }
    const PF_PixelFloat after = padding();
    EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
}

}  // namespace

}  // namespace umbrant::host
