// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The blend functions that need a whole colour: those of hue, saturation, colour and luminosity, and the two that
// choose the lighter or the darker colour. Same form as in blend_functions.h.

#include <cmath>

#include "host/compositing/transfer/blend_functions.h"

namespace umbrant::host {

namespace blend {

inline float Least(const Colour& c) {
    return Min(c.red, Min(c.green, c.blue));
}
inline float Greatest(const Colour& c) {
    return Max(c.red, Max(c.green, c.blue));
}
inline float Saturation(const Colour& c) {
    return Greatest(c) - Least(c);
}

/// (c - luma) times `scale` about the luma, on each channel.
inline Colour ScaleAbout(const Colour& c, float luma, float scale) {
    return {luma + (c.red - luma) * scale, luma + (c.green - luma) * scale, luma + (c.blue - luma) * scale};
}

/// Pulls a colour towards its own luminance until it fits 0..1. A grey has no direction to be pulled in, so a distance
/// that is only rounding counts as none and the grey stays.
inline Colour ClipColour(const Colour& c) {
    const float luma = Luma(c);
    const float least = Least(c);
    const float greatest = Greatest(c);
    const float noise = 1e-6f * Max(1.0f, std::fabs(luma));
    const float below = luma - least;
    const float above = greatest - luma;
    const float raiseQuotient = luma / below;
    const float lowerQuotient = (1.0f - luma) / above;
    const float raiseOrGrey = below > noise ? raiseQuotient : 0.0f;
    const float lowerOrGrey = above > noise ? lowerQuotient : 0.0f;
    const Colour raised = ScaleAbout(c, luma, least < 0.0f ? raiseOrGrey : 1.0f);
    return ScaleAbout(raised, luma, greatest > 1.0f ? lowerOrGrey : 1.0f);
}

inline Colour SetLuma(const Colour& c, float luma) {
    const float shift = luma - Luma(c);
    return ClipColour({c.red + shift, c.green + shift, c.blue + shift});
}

/// The colour with its channels spread to 0..saturation, keeping their order; black when it is a grey.
inline Colour SetSaturation(const Colour& c, float saturation) {
    const float least = Least(c);
    const float spread = Greatest(c) - least;
    const float quotient = saturation / spread;
    const float scale = spread > 0.0f ? quotient : 0.0f;
    return {(c.red - least) * scale, (c.green - least) * scale, (c.blue - least) * scale};
}

struct Hue {
    template <int>
    static Colour Of(const Colour& s, const Colour& d) {
        return SetLuma(SetSaturation(s, Saturation(d)), Luma(d));
    }
};

struct SaturationMode {
    template <int>
    static Colour Of(const Colour& s, const Colour& d) {
        return SetLuma(SetSaturation(d, Saturation(s)), Luma(d));
    }
};

struct ColourMode {
    template <int>
    static Colour Of(const Colour& s, const Colour& d) {
        return SetLuma(s, Luma(d));
    }
};

struct Luminosity {
    template <int>
    static Colour Of(const Colour& s, const Colour& d) {
        return SetLuma(d, Luma(s));
    }
};

/// How much brighter s is than d. Whole-number channels are compared as such: equal colours may not differ by a
/// rounding.
template <int Scale>
float LumaLead(const Colour& s, const Colour& d) {
    if constexpr (Scale == 0) {
        return Luma(s) - Luma(d);
    } else {
        const auto weigh = [](const Colour& c) {
            return 30 * static_cast<int>(c.red * Scale + 0.5f) + 59 * static_cast<int>(c.green * Scale + 0.5f) +
                   11 * static_cast<int>(c.blue * Scale + 0.5f);
        };
        return static_cast<float>(weigh(s) - weigh(d));
    }
}

struct LighterColour {
    template <int Scale>
    static Colour Of(const Colour& s, const Colour& d) {
        return Choose(LumaLead<Scale>(s, d) > 0.0f, s, d);
    }
};

struct DarkerColour {
    template <int Scale>
    static Colour Of(const Colour& s, const Colour& d) {
        return Choose(LumaLead<Scale>(s, d) < 0.0f, s, d);
    }
};

}  // namespace blend

}  // namespace umbrant::host
