// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The body of the row loops, included by the three files that compile it for one pixel type each.

#include <array>
#include <cstdint>
#include <cstring>

#include "host/compositing/transfer/blend_functions.h"
#include "host/compositing/transfer/composite_operators.h"
#include "host/compositing/transfer/nonseparable_functions.h"
#include "host/compositing/transfer/pixel_planes.h"
#include "host/compositing/transfer/transfer_rows.h"

namespace umbrant::host {

namespace transfer {

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

/// Composites a block without a mask whose source has no alpha at all, or all of it, where the result is one of the
/// two: to the byte what CompositeBlock makes, in a tenth of its time. Most blocks of a layer are such. False for the
/// others.
template <typename Pixel, typename Operator, bool RgbOnly>
bool CompositeEvenBlock(const Pixel* source, Pixel* destination, float opacity) {
    const Coverage coverage = CoverageOf(source);
    if (Operator::kSkipsTransparent && coverage == Coverage::kNone) return IsKept(destination);
    if constexpr (Operator::kCopiesOpaque && !RgbOnly) {
        if (coverage != Coverage::kFull || opacity != 1.0f || !IsKept(source)) return false;
        // Integers are rounded. Of floats the arithmetic moves the last bits, except over an alpha of 0 or 1.
        if (kScale<Pixel> == 0 && CoverageOf(destination) == Coverage::kMixed) return false;
        std::memmove(destination, source, sizeof(Pixel) * kBlock);
        return true;
    }
    if constexpr (Operator::kClearsAlpha && !RgbOnly) {
        if (coverage == Coverage::kMixed || opacity != 1.0f || !IsKept(destination)) return false;
        if ((coverage == Coverage::kNone) == Operator::kIsInverted) return true;
        for (int i = 0; i < kBlock; ++i) destination[i].alpha = 0;
        return true;
    }
    return false;
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
            if (!mask && CompositeEvenBlock<Pixel, Operator, RgbOnly>(source + at, destination + at, place.opacity)) {
                continue;
            }
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
