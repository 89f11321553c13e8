// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The operators of the transfer modes: how a source pixel and a destination pixel become one, for a blend function or
// for a rule about alpha. Part of the row loops: compiled once for each pixel type.

#include <type_traits>

#include "host/compositing/transfer/blend_functions.h"

namespace umbrant::host {

namespace transfer {

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
    /// A source without alpha leaves the destination as it is.
    static constexpr bool kSkipsTransparent = true;
    /// An opaque source at full opacity replaces the destination.
    static constexpr bool kCopiesOpaque = false;
    /// At full opacity a source without alpha clears the destination's, and an opaque one keeps it; or the reverse.
    static constexpr bool kClearsAlpha = false;
};

/// Source over destination with the blend function B.
template <typename B>
struct Over : WritesColour {
    static constexpr bool kCopiesOpaque = std::is_same_v<B, blend::Source>;
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
    static constexpr bool kSkipsTransparent = false;
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
    static constexpr bool kSkipsTransparent = false;
    static constexpr bool kCopiesOpaque = false;
    static constexpr bool kClearsAlpha = !Luminance;
    static constexpr bool kIsInverted = Inverted;
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

}  // namespace transfer

}  // namespace umbrant::host
