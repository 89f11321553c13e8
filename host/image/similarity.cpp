// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/similarity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace umbrant::host {

namespace {

constexpr int kReach = 5;  ///< of the window, from its centre
constexpr double kSigma = 1.5;
constexpr double kC1 = 0.01 * 0.01;
constexpr double kC2 = 0.03 * 0.03;

constexpr int kChannels = 4;

using Row = std::vector<double>;

bool SameFrame(const Picture& first, const Picture& second) {
    return first.frameWidth == second.frameWidth && first.frameHeight == second.frameHeight;
}

PF_LRect Around(const PF_LRect& a, const PF_LRect& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

double Number(double value) {
    return std::isnan(value) ? 0 : value;
}

/// One channel of the pixels of a row, from `left` on.
void ReadRow(const Picture& picture, int channel, int left, int y, Row& row) {
    const PF_LRect& window = picture.window;
    std::fill(row.begin(), row.end(), 0.0);
    if (y < window.top || y >= window.bottom) return;
    const void* pixels = picture.pixels.Row(y - window.top);
    const auto take = [&](const auto* values, double full) {
        for (int x = window.left; x < window.right; ++x) {
            const auto& pixel = values[x - window.left];
            const double channels[kChannels] = {static_cast<double>(pixel.alpha), static_cast<double>(pixel.red),
                                                static_cast<double>(pixel.green), static_cast<double>(pixel.blue)};
            const double alpha = Number(channels[0] / full);
            row[static_cast<std::size_t>(x - left)] = channel == 0 ? alpha : Number(channels[channel] / full * alpha);
        }
    };
    if (picture.pixels.PixelDepth() == Depth::k8) {
        take(static_cast<const PF_Pixel*>(pixels), 255.0);
    } else {
        take(static_cast<const PF_PixelFloat*>(pixels), 1.0);
    }
}

std::array<double, 2 * kReach + 1> WindowWeights() {
    std::array<double, 2 * kReach + 1> weights{};
    double sum = 0;
    for (int i = -kReach; i <= kReach; ++i) {
        sum += weights[static_cast<std::size_t>(i + kReach)] = std::exp(-i * i / (2 * kSigma * kSigma));
    }
    for (double& weight : weights) weight /= sum;
    return weights;
}

/// The five means of a window: of both images, of their squares and of their product.
struct Moments {
    double a = 0, b = 0, aa = 0, bb = 0, ab = 0;

    void Add(double weight, const Moments& other) {
        a += weight * other.a;
        b += weight * other.b;
        aa += weight * other.aa;
        bb += weight * other.bb;
        ab += weight * other.ab;
    }

    double Similarity() const {
        const double varianceA = aa - a * a, varianceB = bb - b * b, covariance = ab - a * b;
        return (2 * a * b + kC1) * (2 * covariance + kC2) / ((a * a + b * b + kC1) * (varianceA + varianceB + kC2));
    }
};

using MomentRow = std::vector<Moments>;

/// The windows' means along a row.
void FilterAcross(const Row& first, const Row& second, MomentRow& out) {
    static const auto weights = WindowWeights();
    const int width = static_cast<int>(first.size());
    for (int x = 0; x < width; ++x) {
        Moments sum;
        for (int i = -kReach; i <= kReach; ++i) {
            const auto at = static_cast<std::size_t>(std::clamp(x + i, 0, width - 1));
            const double a = first[at], b = second[at];
            sum.Add(weights[static_cast<std::size_t>(i + kReach)], {a, b, a * a, b * b, a * b});
        }
        out[static_cast<std::size_t>(x)] = sum;
    }
}

/// The sum of the similarities of one channel; keeps as many filtered rows as a window has.
double SumOfChannel(const Picture& first, const Picture& second, int channel, const PF_LRect& window) {
    static const auto weights = WindowWeights();
    const auto width = static_cast<std::size_t>(window.right - window.left);
    const int height = window.bottom - window.top;
    Row a(width), b(width);
    std::vector<MomentRow> rows(2 * kReach + 1, MomentRow(width));
    const auto kept = [&](int y) -> MomentRow& { return rows[static_cast<std::size_t>(y) % rows.size()]; };
    double sum = 0;
    for (int next = 0, y = 0; y < height; ++y) {
        for (; next <= std::min(y + kReach, height - 1); ++next) {
            ReadRow(first, channel, window.left, window.top + next, a);
            ReadRow(second, channel, window.left, window.top + next, b);
            FilterAcross(a, b, kept(next));
        }
        for (std::size_t x = 0; x < width; ++x) {
            Moments mean;
            for (int i = -kReach; i <= kReach; ++i) {
                mean.Add(weights[static_cast<std::size_t>(i + kReach)], kept(std::clamp(y + i, 0, height - 1))[x]);
            }
            sum += mean.Similarity();
        }
    }
    return sum;
}

}  // namespace

std::optional<double> Psnr(const Picture& first, const Picture& second) {
    if (!SameFrame(first, second)) return std::nullopt;
    const PF_LRect window = Around(first.window, second.window);
    const auto width = static_cast<std::size_t>(window.right - window.left);
    Row a(width), b(width);
    double squares = 0;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int channel = 0; channel < kChannels; ++channel) {
            ReadRow(first, channel, window.left, y, a);
            ReadRow(second, channel, window.left, y, b);
            for (std::size_t x = 0; x < width; ++x) squares += (a[x] - b[x]) * (a[x] - b[x]);
        }
    }
    if (squares == 0) return std::numeric_limits<double>::infinity();
    const double count = static_cast<double>(width) * (window.bottom - window.top) * kChannels;
    return 10 * std::log10(count / squares);
}

std::optional<double> Ssim(const Picture& first, const Picture& second) {
    if (!SameFrame(first, second)) return std::nullopt;
    const PF_LRect window = Around(first.window, second.window);
    const double pixels = static_cast<double>(window.right - window.left) * (window.bottom - window.top);
    if (!(pixels > 0)) return 1;
    double sum = 0;
    for (int channel = 0; channel < kChannels; ++channel) sum += SumOfChannel(first, second, channel, window);
    return sum / (pixels * kChannels);
}

}  // namespace umbrant::host
