// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The body of the row loops, included by the three files that compile it for one pixel type each. Pixels are taken in
// blocks and sorted into planes (all alphas, all reds, ...), because whole planes are what vector code works on.

#include <array>
#include <bit>
#include <cstring>

#include "host/compositing/transfer/blend_functions.h"
#include "host/compositing/transfer/transfer_rows.h"

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

/// One pixel on its way: both colours and alphas, and what weighs the source.
struct Meeting {
    Colour s;
    float sourceAlpha;
    Colour d;
    float destinationAlpha;
    float opacity;  ///< the call's
    float a;        ///< source alpha x opacity x mask
    float chance;   ///< 0..1, fixed by place and seed
};

struct Outcome {
    Colour colour;
    float alpha;
};

inline Colour Mix(const Colour& d, const Colour& m, float w) {
    return {umbrant::host::Mix(d.red, m.red, w), umbrant::host::Mix(d.green, m.green, w),
            umbrant::host::Mix(d.blue, m.blue, w)};
}

/// part / whole, and 0 where there is nothing.
inline float Share(float part, float whole) {
    const float quotient = part / whole;
    return whole == 0.0f ? 0.0f : quotient;
}

// Each operator below gives the result of a whole pixel (All) and, with the destination's alpha kept, its colour
// (RgbOnly). The colours are written as mixes, which are the table's sums with one division: for a blend mode
// [a(1-ad)s + ad(1-a)d + a ad B] / ao = (1-w) d + w [(1-ad) s + ad B] with w = a / ao.

/// The default properties of operators.
struct WritesColour {
    static constexpr bool kKeepsColour = false;
};

/// Source over destination with the blend function B.
template <typename B>
struct Over : WritesColour {
    template <int Scale>
    static Outcome All(const Meeting& m) {
        const float alpha = m.a + m.destinationAlpha - m.a * m.destinationAlpha;
        const Colour blended = Mix(m.s, B::template Of<Scale>(m.s, m.d), m.destinationAlpha);
        return {Mix(m.d, blended, Share(m.a, alpha)), alpha};
    }
    template <int Scale>
    static Colour RgbOnly(const Meeting& m) {
        return Mix(m.d, B::template Of<Scale>(m.s, m.d), m.a);
    }
};

struct Behind : WritesColour {
    template <int>
    static Outcome All(const Meeting& m) {
        const float seen = m.a * (1.0f - m.destinationAlpha);
        const float alpha = m.a + m.destinationAlpha - m.a * m.destinationAlpha;
        return {Mix(m.d, m.s, Share(seen, alpha)), alpha};
    }
    template <int>
    static Colour RgbOnly(const Meeting& m) {
        return Mix(m.d, Mix(m.s, m.d, m.destinationAlpha), m.a);
    }
};

/// The source replaces the destination as far as the opacity goes. Intended: the mask has no part in it.
struct Copy : WritesColour {
    template <int>
    static Outcome All(const Meeting& m) {
        const float put = m.sourceAlpha * m.opacity;
        const float alpha = umbrant::host::Mix(m.destinationAlpha, m.sourceAlpha, m.opacity);
        const float quotient = put / alpha;
        return {Mix(m.d, m.s, alpha == 0.0f || m.opacity == 1.0f ? 1.0f : quotient), alpha};
    }
    template <int>
    static Colour RgbOnly(const Meeting& m) {
        return Mix(m.d, m.s, m.a);
    }
};

/// Each pixel comes whole from the source or whole from the destination.
struct Dissolve : WritesColour {
    template <int>
    static Outcome All(const Meeting& m) {
        const bool taken = m.chance < m.a;
        return {blend::Choose(taken, m.s, m.d), taken ? m.sourceAlpha : m.destinationAlpha};
    }
    template <int>
    static Colour RgbOnly(const Meeting& m) {
        return blend::Choose(m.chance < m.a, m.s, m.d);
    }
};

/// Both coverages side by side, as two halves of one antialiased edge.
struct AlphaAdd : WritesColour {
    template <int>
    static Outcome All(const Meeting& m) {
        const float sum = m.a + m.destinationAlpha;
        return {Mix(m.d, m.s, Share(m.a, sum)), blend::Min(1.0f, sum)};
    }
    template <int>
    static Colour RgbOnly(const Meeting& m) {
        return Mix(m.d, m.s, m.a);
    }
};

/// The source's shape scales the destination's alpha; its colour is kept. With the alpha kept too, nothing changes.
template <bool Luminance, bool Inverted>
struct ScaleAlpha {
    static constexpr bool kKeepsColour = true;
    template <int>
    static Outcome All(const Meeting& m) {
        const float shape = Luminance ? m.sourceAlpha * Luma(m.s) : m.sourceAlpha;
        const float k = Inverted ? 1.0f - shape : shape;
        return {m.d, m.destinationAlpha * (1.0f - m.opacity + m.opacity * k)};
    }
    template <int>
    static Colour RgbOnly(const Meeting& m) {
        return m.d;
    }
};

/// A fixed number in 0..1 for a place and a seed.
inline float Chance(int x, int y, std::uint32_t seed) {
    std::uint32_t h =
        static_cast<std::uint32_t>(x) * 0x9E3779B1u + static_cast<std::uint32_t>(y) * 0x85EBCA77u + seed * 0xC2B2AE3Du;
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    h ^= h >> 16;
    return static_cast<float>(static_cast<int>(h >> 8)) * (1.0f / 16777216.0f);
}

template <typename Pixel, typename Operator, bool RgbOnly>
void CompositeBlock(const Pixel* source, Pixel* destination, const float* weights, const RowPlace& place) {
    Planes s, d, out;
    Load(source, s);
    Load(destination, d);
    for (int i = 0; i < kBlock; ++i) {
        const Meeting meeting{{s.red[i], s.green[i], s.blue[i]},
                              s.alpha[i],
                              {d.red[i], d.green[i], d.blue[i]},
                              d.alpha[i],
                              place.opacity,
                              s.alpha[i] * weights[i],
                              Chance(place.x + i, place.y, place.seed)};
        Outcome outcome;
        if constexpr (RgbOnly) {
            outcome = {Operator::template RgbOnly<kScale<Pixel>>(meeting), d.alpha[i]};
        } else {
            outcome = Operator::template All<kScale<Pixel>>(meeting);
        }
        out.alpha[i] = outcome.alpha;
        out.red[i] = outcome.colour.red;
        out.green[i] = outcome.colour.green;
        out.blue[i] = outcome.colour.blue;
    }
    if constexpr (Operator::kKeepsColour) {
        StoreAlpha(out, destination);
    } else {
        Store(out, destination);
    }
}

template <typename Pixel, typename Operator, bool RgbOnly>
void CompositeRow(const Pixel* source, Pixel* destination, const float* mask, int count, RowPlace place) {
    alignas(64) float weights[kBlock];
    for (float& weight : weights) weight = place.opacity;
    for (int at = 0; at < count; at += kBlock, place.x += kBlock) {
        const int held = count - at < kBlock ? count - at : kBlock;
        if (mask) {
            for (int i = 0; i < held; ++i) weights[i] = place.opacity * mask[at + i];
        }
        if (held == kBlock) {
            CompositeBlock<Pixel, Operator, RgbOnly>(source + at, destination + at, weights, place);
        } else {
            Pixel lastSource[kBlock]{};
            Pixel lastDestination[kBlock]{};
            std::memcpy(lastSource, source + at, sizeof(Pixel) * static_cast<std::size_t>(held));
            std::memcpy(lastDestination, destination + at, sizeof(Pixel) * static_cast<std::size_t>(held));
            CompositeBlock<Pixel, Operator, RgbOnly>(lastSource, lastDestination, weights, place);
            std::memcpy(destination + at, lastDestination, sizeof(Pixel) * static_cast<std::size_t>(held));
        }
    }
}

/// A row of the table below: both loops of a mode.
template <typename Pixel>
struct ModeRows {
    PF_TransferMode mode;
    RowFunction<Pixel> all;
    RowFunction<Pixel> rgbOnly;
};

template <typename Pixel, typename Operator>
constexpr ModeRows<Pixel> Mode(PF_TransferMode mode) {
    return {mode, CompositeRow<Pixel, Operator, false>, CompositeRow<Pixel, Operator, true>};
}

/// Every transfer mode, in the order of its value.
template <typename Pixel>
constexpr std::array<ModeRows<Pixel>, 39> kModes = {{
    Mode<Pixel, Copy>(PF_Xfer_COPY),
    Mode<Pixel, Behind>(PF_Xfer_BEHIND),
    Mode<Pixel, Over<blend::Source>>(PF_Xfer_IN_FRONT),
    Mode<Pixel, Dissolve>(PF_Xfer_DISSOLVE),
    Mode<Pixel, Over<blend::Add>>(PF_Xfer_ADD),
    Mode<Pixel, Over<blend::Multiply>>(PF_Xfer_MULTIPLY),
    Mode<Pixel, Over<blend::Screen>>(PF_Xfer_SCREEN),
    Mode<Pixel, Over<blend::Overlay>>(PF_Xfer_OVERLAY),
    Mode<Pixel, Over<blend::SoftLight>>(PF_Xfer_SOFT_LIGHT),
    Mode<Pixel, Over<blend::HardLight>>(PF_Xfer_HARD_LIGHT),
    Mode<Pixel, Over<blend::Darken>>(PF_Xfer_DARKEN),
    Mode<Pixel, Over<blend::Lighten>>(PF_Xfer_LIGHTEN),
    Mode<Pixel, Over<blend::Difference>>(PF_Xfer_DIFFERENCE),
    Mode<Pixel, Over<blend::Hue>>(PF_Xfer_HUE),
    Mode<Pixel, Over<blend::SaturationMode>>(PF_Xfer_SATURATION),
    Mode<Pixel, Over<blend::ColourMode>>(PF_Xfer_COLOR),
    Mode<Pixel, Over<blend::Luminosity>>(PF_Xfer_LUMINOSITY),
    Mode<Pixel, ScaleAlpha<false, false>>(PF_Xfer_MULTIPLY_ALPHA),
    Mode<Pixel, ScaleAlpha<true, false>>(PF_Xfer_MULTIPLY_ALPHA_LUMA),
    Mode<Pixel, ScaleAlpha<false, true>>(PF_Xfer_MULTIPLY_NOT_ALPHA),
    Mode<Pixel, ScaleAlpha<true, true>>(PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA),
    Mode<Pixel, Over<blend::Add>>(PF_Xfer_ADDITIVE_PREMUL),
    Mode<Pixel, AlphaAdd>(PF_Xfer_ALPHA_ADD),
    Mode<Pixel, Over<blend::ClassicColourDodge>>(PF_Xfer_COLOR_DODGE),
    Mode<Pixel, Over<blend::ClassicColourBurn>>(PF_Xfer_COLOR_BURN),
    Mode<Pixel, Over<blend::Exclusion>>(PF_Xfer_EXCLUSION),
    Mode<Pixel, Over<blend::Difference>>(PF_Xfer_DIFFERENCE2),
    Mode<Pixel, Over<blend::ColourDodge>>(PF_Xfer_COLOR_DODGE2),
    Mode<Pixel, Over<blend::ColourBurn>>(PF_Xfer_COLOR_BURN2),
    Mode<Pixel, Over<blend::Add>>(PF_Xfer_LINEAR_DODGE),
    Mode<Pixel, Over<blend::LinearBurn>>(PF_Xfer_LINEAR_BURN),
    Mode<Pixel, Over<blend::LinearLight>>(PF_Xfer_LINEAR_LIGHT),
    Mode<Pixel, Over<blend::VividLight>>(PF_Xfer_VIVID_LIGHT),
    Mode<Pixel, Over<blend::PinLight>>(PF_Xfer_PIN_LIGHT),
    Mode<Pixel, Over<blend::HardMix>>(PF_Xfer_HARD_MIX),
    Mode<Pixel, Over<blend::LighterColour>>(PF_Xfer_LIGHTER_COLOR),
    Mode<Pixel, Over<blend::DarkerColour>>(PF_Xfer_DARKER_COLOR),
    Mode<Pixel, Over<blend::Subtract>>(PF_Xfer_SUBTRACT),
    Mode<Pixel, Over<blend::Divide>>(PF_Xfer_DIVIDE),
}};

}  // namespace transfer

template <typename Pixel>
RowFunction<Pixel> FindRowFunction(PF_TransferMode mode, bool rgbOnly) {
    constexpr auto& modes = transfer::kModes<Pixel>;
    static_assert([] {
        for (std::size_t i = 0; i < modes.size(); ++i) {
            if (modes[i].mode != static_cast<PF_TransferMode>(i)) return false;
        }
        return true;
    }());
    if (mode < 0 || mode >= static_cast<PF_TransferMode>(modes.size())) return nullptr;
    const auto& rows = modes[static_cast<std::size_t>(mode)];
    return rgbOnly ? rows.rgbOnly : rows.all;
}

}  // namespace umbrant::host
