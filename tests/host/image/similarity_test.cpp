// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The measures of likeness, against their definitions computed directly.

#include "host/image/similarity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "tests/host/image/filled_worlds.h"

namespace umbrant::host {

namespace {

Picture Whole(World pixels) {
    Picture picture;
    picture.frameWidth = pixels.Width();
    picture.frameHeight = pixels.Height();
    picture.window = {0, 0, pixels.Width(), pixels.Height()};
    picture.pixels = std::move(pixels);
    return picture;
}

Picture Noise(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    World world = Filled8(width, height, {});
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (A_u_char* channel : {&Pixel8(world, x, y).alpha, &Pixel8(world, x, y).red, &Pixel8(world, x, y).green,
                                      &Pixel8(world, x, y).blue}) {
                *channel = static_cast<A_u_char>(random() % 256);
            }
        }
    }
    return Whole(std::move(world));
}

/// Premultiplied, from 0 to 1; coordinates beyond the edges are those of the edge.
double Channel(Picture& picture, int x, int y, int channel) {
    const PF_Pixel& pixel =
        Pixel8(picture.pixels, std::clamp(x, 0, picture.frameWidth - 1), std::clamp(y, 0, picture.frameHeight - 1));
    const double alpha = pixel.alpha / 255.0;
    const double values[] = {alpha, pixel.red / 255.0 * alpha, pixel.green / 255.0 * alpha, pixel.blue / 255.0 * alpha};
    return values[channel];
}

/// The definition, window by window.
double DirectSsim(Picture& first, Picture& second) {
    double total = 0;
    for (int channel = 0; channel < 4; ++channel) {
        for (int y = 0; y < first.frameHeight; ++y) {
            for (int x = 0; x < first.frameWidth; ++x) {
                double weights = 0, meanA = 0, meanB = 0, varianceA = 0, varianceB = 0, covariance = 0;
                const auto visit = [&](const auto& each) {
                    for (int j = -5; j <= 5; ++j) {
                        for (int i = -5; i <= 5; ++i) {
                            each(std::exp(-(i * i + j * j) / 4.5), Channel(first, x + i, y + j, channel),
                                 Channel(second, x + i, y + j, channel));
                        }
                    }
                };
                visit([&](double weight, double a, double b) {
                    weights += weight;
                    meanA += weight * a;
                    meanB += weight * b;
                });
                meanA /= weights;
                meanB /= weights;
                visit([&](double weight, double a, double b) {
                    varianceA += weight * (a - meanA) * (a - meanA) / weights;
                    varianceB += weight * (b - meanB) * (b - meanB) / weights;
                    covariance += weight * (a - meanA) * (b - meanB) / weights;
                });
                total += (2 * meanA * meanB + 1e-4) * (2 * covariance + 9e-4) /
                         ((meanA * meanA + meanB * meanB + 1e-4) * (varianceA + varianceB + 9e-4));
            }
        }
    }
    return total / (4.0 * first.frameWidth * first.frameHeight);
}

TEST(Similarity, StructuralSimilarityFollowsItsDefinition) {
    for (const auto& [width, height] : {std::pair(23, 17), {3, 20}, {1, 1}, {12, 4}}) {
        Picture first = Noise(width, height, 1), second = Noise(width, height, 2);
        EXPECT_NEAR(*Ssim(first, second), DirectSsim(first, second), 1e-9) << width << " x " << height;
        EXPECT_NEAR(*Ssim(first, first), 1, 1e-12);
        EXPECT_NEAR(*Ssim(first, second), *Ssim(second, first), 1e-12);
    }
}

TEST(Similarity, TheNoiseRatioFollowsItsDefinition) {
    Picture first = Noise(9, 5, 3), second = Noise(9, 5, 4);
    double squares = 0;
    for (int channel = 0; channel < 4; ++channel) {
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 9; ++x) {
                squares += std::pow(Channel(first, x, y, channel) - Channel(second, x, y, channel), 2);
            }
        }
    }
    EXPECT_NEAR(*Psnr(first, second), -10 * std::log10(squares / (4 * 45)), 1e-9);
    EXPECT_EQ(*Psnr(first, first), std::numeric_limits<double>::infinity());
}

TEST(Similarity, WindowsArePartsOfAFrame) {
    // A picture of two pixels in a frame of six is transparent elsewhere.
    Picture part = Whole(Filled8(2, 1, {255, 255, 255, 255}));
    part.window = {2, 0, 4, 1};
    part.frameWidth = 6;
    Picture whole = Whole(Filled8(6, 1, {}));
    Pixel8(whole.pixels, 2, 0) = Pixel8(whole.pixels, 3, 0) = {255, 255, 255, 255};
    EXPECT_EQ(*Psnr(part, whole), std::numeric_limits<double>::infinity());
    EXPECT_NEAR(*Ssim(part, whole), 1, 1e-12);
    whole.frameHeight = 2;
    EXPECT_FALSE(Psnr(part, whole));
    EXPECT_FALSE(Ssim(part, whole));
}

TEST(Similarity, FloatsThatAreNoNumbersCountAsZero) {
    World odd = World::Create(4, 4, Depth::k32), zero = World::Create(4, 4, Depth::k32);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            const float nan = std::numeric_limits<float>::quiet_NaN();
            static_cast<PF_PixelFloat*>(static_cast<void*>(odd.Row(y)))[x] = {nan, nan, nan, nan};
            static_cast<PF_PixelFloat*>(static_cast<void*>(zero.Row(y)))[x] = {};
        }
    }
    const Picture first = Whole(std::move(odd)), second = Whole(std::move(zero));
    EXPECT_EQ(*Psnr(first, second), std::numeric_limits<double>::infinity());
    EXPECT_NEAR(*Ssim(first, second), 1, 1e-12);
}

}  // namespace

}  // namespace umbrant::host
