// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/resample.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace umbrant::host {

namespace {

template <typename Pixel>
constexpr double kFull = 1.0;
template <>
constexpr double kFull<PF_Pixel> = 255.0;
template <>
constexpr double kFull<PF_Pixel16> = 32768.0;

template <typename Pixel>
const Pixel* RowOf(const World& world, int y) {
    return static_cast<const Pixel*>(static_cast<const void*>(world.Row(y)));
}

template <typename Pixel>
Pixel* RowOf(World& world, int y) {
    return static_cast<Pixel*>(static_cast<void*>(world.Row(y)));
}

/// The stored channel for a value in 0..1; float keeps values outside.
template <typename Pixel>
auto Channel(double value) {
    using Type = decltype(Pixel::alpha);
    if constexpr (std::is_floating_point_v<Type>) {
        return static_cast<Type>(value);
    } else {
        const double clamped = value > 0.0 ? std::min(value, 1.0) : 0.0;
        return static_cast<Type>(std::floor(clamped * kFull<Pixel> + 0.5));
    }
}

template <typename Pixel>
Pixel Mean(const World& world, int left, int top, int right, int bottom) {
    double alpha = 0, weighted[3] = {}, plain[3] = {};
    for (int y = top; y < bottom; ++y) {
        const Pixel* row = RowOf<Pixel>(world, y);
        for (int x = left; x < right; ++x) {
            const double a = row[x].alpha;
            const double colour[3] = {static_cast<double>(row[x].red), static_cast<double>(row[x].green),
                                      static_cast<double>(row[x].blue)};
            alpha += a;
            for (int i = 0; i < 3; ++i) {
                weighted[i] += a * colour[i];
                plain[i] += colour[i];
            }
        }
    }
    const double count = static_cast<double>(right - left) * (bottom - top);
    const auto colour = [&](int i) {
        return Channel<Pixel>((alpha > 0.0 ? weighted[i] / alpha : plain[i] / count) / kFull<Pixel>);
    };
    return {Channel<Pixel>(alpha / count / kFull<Pixel>), colour(0), colour(1), colour(2)};
}

template <typename Pixel>
void DownsampleInto(const World& world, int n, World& out) {
    for (int y = 0; y < out.Height(); ++y) {
        Pixel* row = RowOf<Pixel>(out, y);
        const int bottom = std::min(world.Height(), (y + 1) * n);
        for (int x = 0; x < out.Width(); ++x) {
            row[x] = Mean<Pixel>(world, x * n, y * n, std::min(world.Width(), (x + 1) * n), bottom);
        }
    }
}

template <typename From, typename To>
void ConvertInto(const World& world, World& out) {
    for (int y = 0; y < world.Height(); ++y) {
        const From* from = RowOf<From>(world, y);
        To* to = RowOf<To>(out, y);
        for (int x = 0; x < world.Width(); ++x) {
            const auto convert = [](auto channel) { return Channel<To>(static_cast<double>(channel) / kFull<From>); };
            to[x] = {convert(from[x].alpha), convert(from[x].red), convert(from[x].green), convert(from[x].blue)};
        }
    }
}

template <typename From>
void ConvertFrom(const World& world, World& out) {
    switch (out.PixelDepth()) {
        case Depth::k8:
            return ConvertInto<From, PF_Pixel>(world, out);
        case Depth::k16:
            return ConvertInto<From, PF_Pixel16>(world, out);
        case Depth::k32:
            return ConvertInto<From, PF_PixelFloat>(world, out);
    }
}

}  // namespace

int DownsampledSize(int size, int n) {
    return static_cast<int>((static_cast<std::int64_t>(size) + n - 1) / n);
}

World Downsample(const World& world, int n) {
    World out =
        World::Create(DownsampledSize(world.Width(), n), DownsampledSize(world.Height(), n), world.PixelDepth());
    if (out.IsNull()) return out;
    switch (world.PixelDepth()) {
        case Depth::k8:
            DownsampleInto<PF_Pixel>(world, n, out);
            break;
        case Depth::k16:
            DownsampleInto<PF_Pixel16>(world, n, out);
            break;
        case Depth::k32:
            DownsampleInto<PF_PixelFloat>(world, n, out);
            break;
    }
    return out;
}

World ConvertDepth(const World& world, Depth depth) {
    World out = World::Create(world.Width(), world.Height(), depth);
    if (out.IsNull()) return out;
    switch (world.PixelDepth()) {
        case Depth::k8:
            ConvertFrom<PF_Pixel>(world, out);
            break;
        case Depth::k16:
            ConvertFrom<PF_Pixel16>(world, out);
            break;
        case Depth::k32:
            ConvertFrom<PF_PixelFloat>(world, out);
            break;
    }
    return out;
}

World CutToFrame(const World& world, int x, int y, int width, int height) {
    World out = World::Create(width, height, world.PixelDepth());
    if (out.IsNull()) return out;
    const int left = std::max(0, x);
    const int right = static_cast<int>(std::min<std::int64_t>(width, std::int64_t{x} + world.Width()));
    if (left >= right) return out;
    const std::ptrdiff_t pixel = BytesPerPixel(world.PixelDepth());
    for (int row = std::max(0, y); row < std::min<std::int64_t>(height, std::int64_t{y} + world.Height()); ++row) {
        std::memcpy(out.Row(row) + left * pixel, world.Row(row - y) + (left - x) * pixel,
                    static_cast<std::size_t>((right - left) * pixel));
    }
    return out;
}

}  // namespace umbrant::host
