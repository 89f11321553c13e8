// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/raw_pixels.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace umbrant::host {

namespace {

template <typename Pixel>
const Pixel* PixelRow(const World& world, int y) {
    return static_cast<const Pixel*>(static_cast<const void*>(world.Row(y)));
}

template <typename Pixel>
Pixel* PixelRow(World& world, int y) {
    return static_cast<Pixel*>(static_cast<void*>(world.Row(y)));
}

/// Calls `each(pixel, index)` for all pixels in the order of the rows.
template <typename Pixel, typename SomeWorld, typename Each>
void ForPixels(SomeWorld& world, Each each) {
    std::size_t index = 0;
    for (int y = 0; y < world.Height(); ++y) {
        auto* row = PixelRow<Pixel>(world, y);
        for (int x = 0; x < world.Width(); ++x) each(row[x], index++);
    }
}

float FromTwoBytes(const std::byte* bytes) {
    return static_cast<float>(std::to_integer<unsigned>(bytes[0]) | std::to_integer<unsigned>(bytes[1]) << 8) /
           65535.0f;
}

void ToTwoBytes(float value, std::byte* bytes) {
    // Written so that not-a-number becomes 0.
    const float inside = value > 0.0f ? std::fmin(value, 1.0f) : 0.0f;
    const auto number = static_cast<unsigned>(std::lround(inside * 65535.0f));
    bytes[0] = static_cast<std::byte>(number & 255);
    bytes[1] = static_cast<std::byte>(number >> 8);
}

}  // namespace

const char* NameOf(RawFormat format) {
    switch (format) {
        case RawFormat::k8:
            return "rgba";
        case RawFormat::k16:
            return "rgba64le";
        case RawFormat::kFloat:
            return "gbrapf32le";
    }
    return "";
}

RawFormat RawFormatFor(int bits) {
    return bits <= 8 ? RawFormat::k8 : bits < 32 ? RawFormat::k16 : RawFormat::kFloat;
}

std::size_t RawSize(RawFormat format, int width, int height) {
    const std::size_t pixel = format == RawFormat::k8 ? 4 : format == RawFormat::k16 ? 8 : 16;
    return pixel * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

World WorldFromRaw(RawFormat format, int width, int height, const std::vector<std::byte>& bytes) {
    World world = World::CreateUnwritten(width, height, format == RawFormat::k8 ? Depth::k8 : Depth::k32);
    if (world.IsNull()) return world;
    const std::byte* from = bytes.data();
    if (format == RawFormat::k8) {
        ForPixels<PF_Pixel>(world, [from](PF_Pixel& pixel, std::size_t i) {
            const auto channel = [&](std::size_t c) { return std::to_integer<A_u_char>(from[4 * i + c]); };
            pixel = {channel(3), channel(0), channel(1), channel(2)};
        });
    } else if (format == RawFormat::k16) {
        ForPixels<PF_PixelFloat>(world, [from](PF_PixelFloat& pixel, std::size_t i) {
            const auto channel = [&](std::size_t c) { return FromTwoBytes(from + 8 * i + 2 * c); };
            pixel = {channel(3), channel(0), channel(1), channel(2)};
        });
    } else {
        const std::size_t plane = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        ForPixels<PF_PixelFloat>(world, [from, plane](PF_PixelFloat& pixel, std::size_t i) {
            const auto channel = [&](std::size_t p) {
                float value;
                std::memcpy(&value, from + 4 * (p * plane + i), sizeof value);
                return value;
            };
            pixel = {channel(3), channel(2), channel(0), channel(1)};
        });
    }
    return world;
}

std::vector<std::byte> RawFromWorld(RawFormat format, const World& world) {
    std::vector<std::byte> bytes(RawSize(format, world.Width(), world.Height()));
    std::byte* to = bytes.data();
    if (format == RawFormat::k8) {
        ForPixels<PF_Pixel>(world, [to](const PF_Pixel& pixel, std::size_t i) {
            const A_u_char channels[] = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
            std::memcpy(to + 4 * i, channels, sizeof channels);
        });
    } else if (format == RawFormat::k16) {
        ForPixels<PF_PixelFloat>(world, [to](const PF_PixelFloat& pixel, std::size_t i) {
            std::byte* at = to + 8 * i;
            ToTwoBytes(pixel.red, at);
            ToTwoBytes(pixel.green, at + 2);
            ToTwoBytes(pixel.blue, at + 4);
            ToTwoBytes(pixel.alpha, at + 6);
        });
    } else {
        const std::size_t plane = bytes.size() / 16;
        ForPixels<PF_PixelFloat>(world, [to, plane](const PF_PixelFloat& pixel, std::size_t i) {
            const float planes[] = {pixel.green, pixel.blue, pixel.red, pixel.alpha};
            for (std::size_t p = 0; p < 4; ++p) std::memcpy(to + 4 * (p * plane + i), &planes[p], sizeof(float));
        });
    }
    return bytes;
}

}  // namespace umbrant::host
