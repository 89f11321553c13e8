// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the transfer modes must compute, one pixel at a time in double precision, written out as the sums that define
// them. Slow on purpose and shared with nothing: the host's loops are compared with it.

#include <algorithm>
#include <cmath>
#include <optional>

#include "hostapi/transfer.h"

namespace umbrant::host {

namespace model {

struct Rgb {
    double c[3];
};

struct Pixel {
    double alpha;
    Rgb rgb;
};

inline double Y(const Rgb& x) {
    return 0.3 * x.c[0] + 0.59 * x.c[1] + 0.11 * x.c[2];
}

inline Rgb ClipColor(Rgb x) {
    const double l = Y(x);
    const double n = std::min({x.c[0], x.c[1], x.c[2]});
    const double m = std::max({x.c[0], x.c[1], x.c[2]});
    if (n < 0) {
        for (double& c : x.c) c = l - n > 1e-9 ? l + (c - l) * l / (l - n) : l;
    }
    if (m > 1) {
        for (double& c : x.c) c = m - l > 1e-9 ? l + (c - l) * (1 - l) / (m - l) : l;
    }
    return x;
}

inline Rgb SetLum(Rgb x, double l) {
    const double d = l - Y(x);
    for (double& c : x.c) c += d;
    return ClipColor(x);
}

inline double Sat(const Rgb& x) {
    return std::max({x.c[0], x.c[1], x.c[2]}) - std::min({x.c[0], x.c[1], x.c[2]});
}

/// The three-way assignment of the definition: the greatest becomes s, the middle one is placed between, the least 0.
inline Rgb SetSat(const Rgb& x, double s) {
    int order[3] = {0, 1, 2};
    std::sort(order, order + 3, [&](int a, int b) { return x.c[a] < x.c[b]; });
    Rgb out{{0, 0, 0}};
    const double least = x.c[order[0]], middle = x.c[order[1]], greatest = x.c[order[2]];
    if (greatest > least) {
        out.c[order[1]] = (middle - least) * s / (greatest - least);
        out.c[order[2]] = s;
    }
    return out;
}

inline double Dodge(double s, double d) {
    if (d <= 0) return 0;
    if (s >= 1) return 1;
    return std::min(1.0, d / (1 - s));
}

inline double Burn(double s, double d) {
    if (d >= 1) return 1;
    if (s <= 0) return 0;
    return 1 - std::min(1.0, (1 - d) / s);
}

inline double HardLight(double s, double d) {
    return s <= 0.5 ? 2 * s * d : 1 - 2 * (1 - s) * (1 - d);
}

inline double SoftLight(double s, double d) {
    if (s <= 0.5) return d - (1 - 2 * s) * d * (1 - d);
    const double g = d <= 0.25 ? ((16 * d - 12) * d + 4) * d : std::sqrt(d);
    return d + (2 * s - 1) * (g - d);
}

/// Sums of whole channel values have no rounding, so their step is met a hair early.
constexpr double kHair = 1e-9;

inline std::optional<double> Channel(int mode, double s, double d) {
    switch (mode) {
        case 4:
        case 29:
        case 21:
            return s + d;
        case 5:
            return s * d;
        case 6:
            return s + d - s * d;
        case 7:
            return HardLight(d, s);
        case 8:
            return SoftLight(s, d);
        case 9:
            return HardLight(s, d);
        case 10:
            return std::min(s, d);
        case 11:
            return std::max(s, d);
        case 12:
        case 26:
            return std::abs(s - d);
        case 23:
            return s >= 1 ? 1 : std::min(1.0, d / (1 - s));
        case 24:
            return s <= 0 ? 0 : std::max(0.0, 1 - (1 - d) / s);
        case 25:
            return s + d - 2 * s * d;
        case 27:
            return Dodge(s, d);
        case 28:
            return Burn(s, d);
        case 30:
            return std::max(0.0, s + d - 1);
        case 31:
            return d + 2 * s - 1;
        case 32:
            return s <= 0.5 ? Burn(2 * s, d) : Dodge(2 * s - 1, d);
        case 33:
            return s <= 0.5 ? std::min(d, 2 * s) : std::max(d, 2 * s - 1);
        case 34:
            return s + d >= 1 - kHair ? 1.0 : 0.0;
        case 37:
            return d - s;
        case 38:
            return s <= 0 ? 1 : d / s;
        default:
            return std::nullopt;
    }
}

inline Rgb Blend(int mode, const Rgb& s, const Rgb& d) {
    switch (mode) {
        case 13:
            return SetLum(SetSat(s, Sat(d)), Y(d));
        case 14:
            return SetLum(SetSat(d, Sat(s)), Y(d));
        case 15:
            return SetLum(s, Y(d));
        case 16:
            return SetLum(d, Y(s));
        case 35:
            return Y(s) > Y(d) + kHair ? s : d;
        case 36:
            return Y(s) < Y(d) - kHair ? s : d;
        default:
            break;
    }
    Rgb out = s;
    for (int i = 0; i < 3; ++i) out.c[i] = Channel(mode, s.c[i], d.c[i]).value_or(s.c[i]);
    return out;
}

/// The result of one pixel, before any clamping; every mode except DISSOLVE, whose choice is the host's own.
inline Pixel Composite(int mode, bool rgbOnly, const Pixel& s, const Pixel& d, double op, double mask) {
    const double a = s.alpha * op * mask;
    const bool alphaMode = mode >= 17 && mode <= 20;
    Pixel out = d;
    if (rgbOnly) {
        if (alphaMode) return d;
        Rgb b = Blend(mode, s.rgb, d.rgb);
        if (mode == PF_Xfer_BEHIND) {
            for (int i = 0; i < 3; ++i) b.c[i] = d.rgb.c[i] * d.alpha + s.rgb.c[i] * (1 - d.alpha);
        }
        for (int i = 0; i < 3; ++i) out.rgb.c[i] = d.rgb.c[i] + (b.c[i] - d.rgb.c[i]) * a;
        return out;
    }
    if (alphaMode) {
        const double shape = mode == 18 || mode == 20 ? s.alpha * Y(s.rgb) : s.alpha;
        const double k = mode >= 19 ? 1 - shape : shape;
        out.alpha = d.alpha * (1 - op + op * k);
        return out;
    }
    const Rgb b = Blend(mode, s.rgb, d.rgb);
    const double over = a + d.alpha - a * d.alpha;
    for (int i = 0; i < 3; ++i) {
        const double sc = s.rgb.c[i], dc = d.rgb.c[i];
        switch (mode) {
            case PF_Xfer_COPY:
                out.alpha = d.alpha + (s.alpha - d.alpha) * op;
                out.rgb.c[i] = out.alpha == 0 ? sc : (s.alpha * op * sc + d.alpha * (1 - op) * dc) / out.alpha;
                break;
            case PF_Xfer_BEHIND:
                out.alpha = over;
                if (over != 0) out.rgb.c[i] = (d.alpha * dc + a * (1 - d.alpha) * sc) / over;
                break;
            case PF_Xfer_ALPHA_ADD:
                out.alpha = std::min(1.0, a + d.alpha);
                if (a + d.alpha != 0) out.rgb.c[i] = (a * sc + d.alpha * dc) / (a + d.alpha);
                break;
            case PF_Xfer_ADDITIVE_PREMUL:
                out.alpha = over;
                if (over != 0) out.rgb.c[i] = (a * sc + d.alpha * (1 - a) * dc + a * d.alpha * dc) / over;
                break;
            default:
                out.alpha = over;
                if (over != 0) {
                    out.rgb.c[i] = (a * (1 - d.alpha) * sc + d.alpha * (1 - a) * dc + a * d.alpha * b.c[i]) / over;
                }
        }
    }
    return out;
}

}  // namespace model

}  // namespace umbrant::host
