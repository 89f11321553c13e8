// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The blend functions B(s, d) of the transfer modes: what a source colour s becomes over a destination colour d, both
// straight. One type per mode with a static `Of`, so that the row loops are compiled for each mode. `Scale` is the full
// scale of the world's channels (255, 32768), or 0 for float worlds, which are never clamped except where a formula
// says so. Both sides of each choice are computed before choosing: that is what lets the loops become vector code.

#include <cmath>

namespace umbrant::host {

struct Colour {
    float red;
    float green;
    float blue;
};

/// Luminance of a straight colour, with the weights that every mode here shares.
inline float Luma(const Colour& c) {
    return 0.3f * c.red + 0.59f * c.green + 0.11f * c.blue;
}

/// d where w is 0, m where w is 1, and both are kept to the bit: the other one, even if infinite or NaN, has no effect.
inline float Mix(float d, float m, float w) {
    const float mixed = (1.0f - w) * d + w * m;
    const float orDestination = w == 0.0f ? d : mixed;
    return w == 1.0f ? m : orDestination;
}

namespace blend {

inline float Min(float a, float b) {
    return a < b ? a : b;
}
inline float Max(float a, float b) {
    return a > b ? a : b;
}

inline Colour Choose(bool first, const Colour& a, const Colour& b) {
    return {first ? a.red : b.red, first ? a.green : b.green, first ? a.blue : b.blue};
}

/// A mode that treats every channel alike.
template <typename Channel>
struct Separable {
    template <int Scale>
    static Colour Of(const Colour& s, const Colour& d) {
        return {Channel::template One<Scale>(s.red, d.red), Channel::template One<Scale>(s.green, d.green),
                Channel::template One<Scale>(s.blue, d.blue)};
    }
};

struct Add : Separable<Add> {
    template <int>
    static float One(float s, float d) {
        return s + d;
    }
};

struct Multiply : Separable<Multiply> {
    template <int>
    static float One(float s, float d) {
        return s * d;
    }
};

struct Screen : Separable<Screen> {
    template <int>
    static float One(float s, float d) {
        return s + d - s * d;
    }
};

struct HardLight : Separable<HardLight> {
    template <int>
    static float One(float s, float d) {
        const float dark = 2.0f * s * d;
        const float light = 1.0f - 2.0f * (1.0f - s) * (1.0f - d);
        return s <= 0.5f ? dark : light;
    }
};

struct Overlay : Separable<Overlay> {
    template <int Scale>
    static float One(float s, float d) {
        return HardLight::One<Scale>(d, s);
    }
};

struct SoftLight : Separable<SoftLight> {
    template <int>
    static float One(float s, float d) {
        const float polynomial = ((16.0f * d - 12.0f) * d + 4.0f) * d;
        const float root = std::sqrt(Max(d, 0.0f));
        const float lifted = d <= 0.25f ? polynomial : root;
        const float dark = d - (1.0f - 2.0f * s) * d * (1.0f - d);
        const float light = d + (2.0f * s - 1.0f) * (lifted - d);
        return s <= 0.5f ? dark : light;
    }
};

struct Darken : Separable<Darken> {
    template <int>
    static float One(float s, float d) {
        return Min(s, d);
    }
};

struct Lighten : Separable<Lighten> {
    template <int>
    static float One(float s, float d) {
        return Max(s, d);
    }
};

struct Difference : Separable<Difference> {
    template <int>
    static float One(float s, float d) {
        return std::fabs(s - d);
    }
};

struct Exclusion : Separable<Exclusion> {
    template <int>
    static float One(float s, float d) {
        return s + d - 2.0f * s * d;
    }
};

struct ClassicColourDodge : Separable<ClassicColourDodge> {
    template <int>
    static float One(float s, float d) {
        const float dodged = Min(1.0f, d / (1.0f - s));
        return s >= 1.0f ? 1.0f : dodged;
    }
};

struct ClassicColourBurn : Separable<ClassicColourBurn> {
    template <int>
    static float One(float s, float d) {
        const float burnt = Max(0.0f, 1.0f - (1.0f - d) / s);
        return s <= 0.0f ? 0.0f : burnt;
    }
};

struct ColourDodge : Separable<ColourDodge> {
    template <int>
    static float One(float s, float d) {
        const float dodged = Min(1.0f, d / (1.0f - s));
        const float orWhite = s >= 1.0f ? 1.0f : dodged;
        return d <= 0.0f ? 0.0f : orWhite;
    }
};

struct ColourBurn : Separable<ColourBurn> {
    template <int>
    static float One(float s, float d) {
        const float burnt = 1.0f - Min(1.0f, (1.0f - d) / s);
        const float orBlack = s <= 0.0f ? 0.0f : burnt;
        return d >= 1.0f ? 1.0f : orBlack;
    }
};

struct LinearBurn : Separable<LinearBurn> {
    template <int>
    static float One(float s, float d) {
        return Max(0.0f, s + d - 1.0f);
    }
};

struct LinearLight : Separable<LinearLight> {
    template <int>
    static float One(float s, float d) {
        return d + 2.0f * s - 1.0f;
    }
};

struct VividLight : Separable<VividLight> {
    template <int Scale>
    static float One(float s, float d) {
        const float burnt = ColourBurn::One<Scale>(2.0f * s, d);
        const float dodged = ColourDodge::One<Scale>(2.0f * s - 1.0f, d);
        return s <= 0.5f ? burnt : dodged;
    }
};

struct PinLight : Separable<PinLight> {
    template <int>
    static float One(float s, float d) {
        const float dark = Min(d, 2.0f * s);
        const float light = Max(d, 2.0f * s - 1.0f);
        return s <= 0.5f ? dark : light;
    }
};

struct HardMix : Separable<HardMix> {
    template <int Scale>
    static float One(float s, float d) {
        if constexpr (Scale == 0) {
            return s + d >= 1.0f ? 1.0f : 0.0f;
        } else {
            // The channels are whole numbers, and so is their sum: a rounding of s or d may not move it past the step.
            const int sum = static_cast<int>(s * Scale + 0.5f) + static_cast<int>(d * Scale + 0.5f);
            return sum >= Scale ? 1.0f : 0.0f;
        }
    }
};

struct Subtract : Separable<Subtract> {
    template <int>
    static float One(float s, float d) {
        return d - s;
    }
};

struct Divide : Separable<Divide> {
    template <int>
    static float One(float s, float d) {
        const float quotient = d / s;
        return s <= 0.0f ? 1.0f : quotient;
    }
};

/// The source colour itself: what IN_FRONT, COPY, DISSOLVE and ALPHA_ADD put down.
struct Source {
    template <int>
    static Colour Of(const Colour& s, const Colour&) {
        return s;
    }
};

}  // namespace blend

}  // namespace umbrant::host
