// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Blocks of pixels sorted into planes (all alphas, all reds, ...), because whole planes are what vector code works on.
// Part of the row loops: compiled once for each pixel type.

#include <bit>
#include <cstdint>
#include <cstring>

#include "hostapi/pixels.h"

namespace umbrant::host {

namespace transfer {

constexpr int kBlock = 16;

/// A block of pixels by channel, straight, 0..1 in integer worlds.
struct Planes {
    alignas(64) float alpha[kBlock];
    alignas(64) float red[kBlock];
    alignas(64) float green[kBlock];
    alignas(64) float blue[kBlock];
};

/// Full scale of a pixel type's channels; 0 for float.
template <typename Pixel>
constexpr int kScale = 0;
template <>
inline constexpr int kScale<PF_Pixel> = 255;
template <>
inline constexpr int kScale<PF_Pixel16> = 32768;

// Multiplying by the reciprocal must take full scale to exactly 1: several modes ask for it.
static_assert(255.0f * (1.0f / 255.0f) == 1.0f && 32768.0f * (1.0f / 32768.0f) == 1.0f);

template <typename Pixel>
constexpr float kFactor = 1.0f / static_cast<float>(kScale<Pixel> == 0 ? 1 : kScale<Pixel>);

/// Nearest channel value; integers are clamped to 0..full scale, and NaN, which they cannot represent, is 0.
template <typename Pixel>
auto ToChannel(float value) {
    if constexpr (kScale<Pixel> == 0) {
        return value;
    } else {
        const float atLeastZero = value > 0.0f ? value : 0.0f;
        const float clamped = atLeastZero < 1.0f ? atLeastZero : 1.0f;
        return static_cast<int>(clamped * static_cast<float>(kScale<Pixel>) + 0.5f);
    }
}

enum class Coverage { kMixed, kNone, kFull };

/// Whether no pixel of a block has any alpha, or each has exactly all of it.
template <typename Pixel>
Coverage CoverageOf(const Pixel* pixels) {
    constexpr auto kFull = static_cast<decltype(Pixel::alpha)>(kScale<Pixel> == 0 ? 1 : kScale<Pixel>);
    bool none = pixels[0].alpha == 0;
    bool full = pixels[0].alpha == kFull;
    if (!none && !full) return Coverage::kMixed;
    for (int i = 1; i < kBlock; ++i) {
        none &= pixels[i].alpha == 0;
        full &= pixels[i].alpha == kFull;
    }
    return none ? Coverage::kNone : full ? Coverage::kFull : Coverage::kMixed;
}

template <>
inline Coverage CoverageOf<PF_Pixel>(const PF_Pixel* pixels) {
    std::uint32_t raw[kBlock];
    std::memcpy(raw, pixels, sizeof(raw));
    std::uint32_t any = 0;
    std::uint32_t all = ~0u;
    for (const std::uint32_t pixel : raw) {
        any |= pixel;
        all &= pixel;
    }
    return (any & 255u) == 0 ? Coverage::kNone : (all & 255u) == 255u ? Coverage::kFull : Coverage::kMixed;
}

/// Whether the arithmetic gives a block back to the byte when it adds nothing. It limits channels of 16 bits to full
/// scale. Of float alphas it clears the sign of 0, makes NaN of infinity, and in one mode limits them to 1; float
/// colours it keeps.
inline bool IsKept(const PF_Pixel*) {
    return true;
}
inline bool IsKept(const PF_Pixel16* pixels) {
    A_u_short raw[4 * kBlock];
    std::memcpy(raw, pixels, sizeof(raw));
    bool kept = true;
    for (const A_u_short channel : raw) kept &= channel <= kScale<PF_Pixel16>;
    return kept;
}
inline bool IsKept(const PF_PixelFloat* pixels) {
    constexpr auto kOne = std::bit_cast<std::uint32_t>(1.0f);
    bool kept = true;
    // Negative numbers, -0 too, are above all others as whole numbers.
    for (int i = 0; i < kBlock; ++i) kept &= std::bit_cast<std::uint32_t>(pixels[i].alpha) <= kOne;
    return kept;
}

template <typename Pixel>
void Load(const Pixel* pixels, Planes& planes) {
    decltype(Pixel::alpha) raw[4 * kBlock];
    std::memcpy(raw, pixels, sizeof(raw));
    for (int i = 0; i < kBlock; ++i) {
        planes.alpha[i] = static_cast<float>(raw[4 * i]) * kFactor<Pixel>;
        planes.red[i] = static_cast<float>(raw[4 * i + 1]) * kFactor<Pixel>;
        planes.green[i] = static_cast<float>(raw[4 * i + 2]) * kFactor<Pixel>;
        planes.blue[i] = static_cast<float>(raw[4 * i + 3]) * kFactor<Pixel>;
    }
}

template <typename Pixel>
void Store(const Planes& planes, Pixel* pixels) {
    using Channel = decltype(Pixel::alpha);
    Channel raw[4 * kBlock];
    for (int i = 0; i < kBlock; ++i) {
        raw[4 * i] = static_cast<Channel>(ToChannel<Pixel>(planes.alpha[i]));
        raw[4 * i + 1] = static_cast<Channel>(ToChannel<Pixel>(planes.red[i]));
        raw[4 * i + 2] = static_cast<Channel>(ToChannel<Pixel>(planes.green[i]));
        raw[4 * i + 3] = static_cast<Channel>(ToChannel<Pixel>(planes.blue[i]));
    }
    std::memcpy(pixels, raw, sizeof(raw));
}

/// Writes only the alphas, for the modes that keep the colour.
template <typename Pixel>
void StoreAlpha(const Planes& planes, Pixel* pixels) {
    using Channel = decltype(Pixel::alpha);
    for (int i = 0; i < kBlock; ++i) pixels[i].alpha = static_cast<Channel>(ToChannel<Pixel>(planes.alpha[i]));
}

// Four bytes are one word, alpha lowest, and shifting words is much faster than gathering bytes.
static_assert(std::endian::native == std::endian::little);

template <>
inline void Load<PF_Pixel>(const PF_Pixel* pixels, Planes& planes) {
    std::uint32_t raw[kBlock];
    std::memcpy(raw, pixels, sizeof(raw));
    constexpr float factor = kFactor<PF_Pixel>;
    for (int i = 0; i < kBlock; ++i) {
        planes.alpha[i] = static_cast<float>(static_cast<int>(raw[i] & 255u)) * factor;
        planes.red[i] = static_cast<float>(static_cast<int>(raw[i] >> 8 & 255u)) * factor;
        planes.green[i] = static_cast<float>(static_cast<int>(raw[i] >> 16 & 255u)) * factor;
        planes.blue[i] = static_cast<float>(static_cast<int>(raw[i] >> 24)) * factor;
    }
}

template <>
inline void Store<PF_Pixel>(const Planes& planes, PF_Pixel* pixels) {
    std::uint32_t raw[kBlock];
    for (int i = 0; i < kBlock; ++i) {
        raw[i] = static_cast<std::uint32_t>(ToChannel<PF_Pixel>(planes.alpha[i])) |
                 static_cast<std::uint32_t>(ToChannel<PF_Pixel>(planes.red[i])) << 8 |
                 static_cast<std::uint32_t>(ToChannel<PF_Pixel>(planes.green[i])) << 16 |
                 static_cast<std::uint32_t>(ToChannel<PF_Pixel>(planes.blue[i])) << 24;
    }
    std::memcpy(pixels, raw, sizeof(raw));
}

template <>
inline void StoreAlpha<PF_Pixel>(const Planes& planes, PF_Pixel* pixels) {
    std::uint32_t raw[kBlock];
    std::memcpy(raw, pixels, sizeof(raw));
    for (int i = 0; i < kBlock; ++i) {
        raw[i] = (raw[i] & ~255u) | static_cast<std::uint32_t>(ToChannel<PF_Pixel>(planes.alpha[i]));
    }
    std::memcpy(pixels, raw, sizeof(raw));
}

}  // namespace transfer

}  // namespace umbrant::host
