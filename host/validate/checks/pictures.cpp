// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The images that checks draw from, requests to draw them, and comparisons of the results.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

#include "host/compositing/rectangles.h"
#include "host/validate/checks/check_fixture.h"

namespace umbrant::host {

namespace {

/// One channel of the test picture, full scale 1.
struct Colour {
    double alpha, red, green, blue;
};

Colour At(int x, int y, int width, int height) {
    const double u = (x + 0.5) / width;
    const double v = (y + 0.5) / height;
    const double radius = std::hypot(u - 0.5, v - 0.5);
    const double alpha = std::clamp((0.4 - radius) * 8, 0.0, 1.0);
    if (alpha == 0) return {};
    return {alpha, u, v, 1 - u};
}

template <typename Pixel, typename Channel>
void Paint(World& world, double full) {
    for (int y = 0; y < world.Height(); ++y) {
        Pixel* row = RowOf<Pixel>(world.Def(), y);
        for (int x = 0; x < world.Width(); ++x) {
            const Colour c = At(x, y, world.Width(), world.Height());
            const auto scaled = [&](double value) {
                return static_cast<Channel>(std::is_integral_v<Channel> ? std::lround(value * full) : value * full);
            };
            row[x] = {scaled(c.alpha), scaled(c.red), scaled(c.green), scaled(c.blue)};
        }
    }
}

/// The pixels of a row.
std::span<const std::byte> RowBytes(const World& world, int y) {
    const auto pixel = static_cast<std::size_t>(BytesPerPixel(world.PixelDepth()));
    return {world.Row(y), static_cast<std::size_t>(world.Width()) * pixel};
}

template <typename Channel>
double RowDifference(std::span<const std::byte> a, std::span<const std::byte> b, double full) {
    double largest = 0;
    for (std::size_t at = 0; at + sizeof(Channel) <= a.size(); at += sizeof(Channel)) {
        Channel x, y;
        std::memcpy(&x, a.data() + at, sizeof(x));
        std::memcpy(&y, b.data() + at, sizeof(y));
        const auto p = static_cast<double>(x);
        const auto q = static_cast<double>(y);
        if (p == q || (std::isnan(p) && std::isnan(q))) continue;
        if (!std::isfinite(p) || !std::isfinite(q)) return 1;
        largest = std::max(largest, std::abs(p - q) / full);
    }
    return largest;
}

}  // namespace

World TestPicture(int width, int height, Depth depth) {
    World world = World::Create(width, height, depth);
    if (world.IsNull()) return world;
    if (depth == Depth::k8) Paint<PF_Pixel, A_u_char>(world, 255);
    if (depth == Depth::k16) Paint<PF_Pixel16, A_u_short>(world, 32768);
    if (depth == Depth::k32) Paint<PF_PixelFloat, PF_FpShort>(world, 1);
    return world;
}

FrameRequest RequestOf(const World& layer) {
    FrameRequest request;
    request.layer = &layer;
    return request;
}

FrameRequest RequestOf(const World& layer, const ParamSet& params) {
    FrameRequest request = RequestOf(layer);
    request.params = &params;
    return request;
}

FrameRequest TexturedRequestOf(const World& layer, const ParamSet& params) {
    FrameRequest request = RequestOf(layer, params);
    request.texture = &layer;
    return request;
}

std::uint64_t DigestOf(const World& world) {
    std::uint64_t digest = 14695981039346656037u;
    const auto add = [&](std::span<const std::byte> bytes) {
        for (const std::byte byte : bytes) digest = (digest ^ std::to_integer<std::uint64_t>(byte)) * 1099511628211u;
    };
    const int shape[] = {world.Width(), world.Height(), static_cast<int>(world.PixelDepth())};
    add(std::as_bytes(std::span(shape)));
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) add(RowBytes(world, y));
    return digest;
}

bool SamePixels(const World& a, const World& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height() || a.PixelDepth() != b.PixelDepth()) return false;
    for (int y = 0; y < a.Height() && a.Width() > 0; ++y) {
        if (std::memcmp(a.Row(y), b.Row(y), RowBytes(a, y).size()) != 0) return false;
    }
    return true;
}

double LargestDifference(const World& a, const World& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height() || a.PixelDepth() != b.PixelDepth()) return 1;
    double largest = 0;
    for (int y = 0; y < a.Height() && a.Width() > 0; ++y) {
        const auto ours = RowBytes(a, y), theirs = RowBytes(b, y);
        double row = 0;
        if (a.PixelDepth() == Depth::k8) row = RowDifference<A_u_char>(ours, theirs, 255);
        if (a.PixelDepth() == Depth::k16) row = RowDifference<A_u_short>(ours, theirs, 32768);
        if (a.PixelDepth() == Depth::k32) row = RowDifference<PF_FpShort>(ours, theirs, 1);
        largest = std::max(largest, row);
    }
    return largest;
}

std::optional<std::string> NotFinite(const World& world) {
    if (world.PixelDepth() != Depth::k32) return std::nullopt;
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto* row = RowOf<PF_PixelFloat>(world.Def(), y);
        for (int x = 0; x < world.Width(); ++x) {
            const PF_PixelFloat& p = row[x];
            if (!std::isfinite(p.alpha) || !std::isfinite(p.red) || !std::isfinite(p.green) || !std::isfinite(p.blue)) {
                return fmt::format("{},{}", x, y);
            }
        }
    }
    return std::nullopt;
}

bool AllZero(const World& world) {
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto row = RowBytes(world, y);
        if (std::any_of(row.begin(), row.end(), [](std::byte byte) { return byte != std::byte{0}; })) return false;
    }
    return true;
}

std::string RectText(const PF_LRect& rect) {
    return fmt::format("({}, {}) to ({}, {})", rect.left, rect.top, rect.right, rect.bottom);
}

}  // namespace umbrant::host
