// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/reference/shadow_model.h"

#include <algorithm>
#include <cmath>

namespace umbrant::effect {

namespace {

double Round16(double value) {
    return std::round(std::clamp(value, 0.0, 1.0) * 65535) / 65535;
}

int WrapIndex(int i, int size, Wrap wrap) {
    if (wrap == Wrap::kClamp) return std::clamp(i, 0, size - 1);
    int phase = i % (2 * size);
    if (phase < 0) phase += 2 * size;
    return phase < size ? phase : 2 * size - 1 - phase;
}

double Weight(double x) {
    return std::exp(-0.5 * x * x / 0.06);
}

double Ease(int mode, double i, double n, double b, double c) {
    if (i == 0) return b;
    if (mode == 1) return b + c * std::pow(2, 10 * (i / n - 1));
    if (i == n) return b + c;
    const double u = i / (n / 2);
    if (u < 1) return b + c / 2 * std::pow(2, 10 * (u - 1));
    return b + c / 2 * (2 - std::pow(2, -10 * (u - 1)));
}

// In this form a mix of equal numbers is that number to the last bit, on which a tap more or less may hang.
double Mix(double from, double to, double weight) {
    return from - (from - to) * weight;
}

struct Copy {
    double x, y, softness, opacity;
};

Copy CopyOf(int i, const PanelValues& p, double travelX, double travelY, double softness) {
    const double n = std::floor(p.samples);
    const double start = p.opacityMaster * p.opacityStart / 1e4;
    const double end = p.opacityMaster * p.opacityEnd / 1e4;
    const double weightDistance = std::min(p.ease * p.easeDistance / 1e4, 1.0);
    const double weightSoftness = std::min(p.ease * p.easeSoftness / 1e4, 1.0);
    const double weightOpacity = std::min(p.ease * p.easeOpacity / 1e4, 1.0);
    Copy copy;
    copy.x = Mix(travelX * i / n, Ease(p.easeMode, i, n, 0, travelX), weightDistance);
    copy.y = Mix(travelY * i / n, Ease(p.easeMode, i, n, 0, travelY), weightDistance);
    // A tap more or less hangs on the last bit here: the fraction comes first.
    copy.softness = Mix(i / n * softness, Ease(p.easeMode, i, n, 0, softness), weightSoftness);
    copy.opacity =
        Mix(Mix(start, end, (i + 1) / n), std::abs(Ease(p.easeMode, i, n, start, end - start)), weightOpacity);
    return copy;
}

// Across: every pixel of the padded buffer looks at the layer, which is smaller and lies centred in it.
Plane BlurAcross(const Plane& layer, Wrap wrap, double paddedW, double paddedH, int width, int height, int taps,
                 double stride, double opacity) {
    Plane out(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = ((x + 0.5) / width - 0.5) * paddedW / layer.width + 0.5;
            const double v = ((y + 0.5) / height - 0.5) * paddedH / layer.height + 0.5;
            double sum = 0;
            double weights = 0;
            for (int i = -taps; i <= taps; ++i) {
                const double weight = Weight(static_cast<double>(i) / taps);
                sum += weight * SampleLinear(layer, u + i * stride, v, wrap);
                weights += weight;
            }
            out.At(x, y) = Round16(sum / weights * opacity);
        }
    }
    return out;
}

Plane BlurDown(const Plane& across, int taps, double stride) {
    Plane out(across.width, across.height);
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) {
            const double u = (x + 0.5) / out.width;
            const double v = (y + 0.5) / out.height;
            double sum = 0;
            double weights = 0;
            for (int i = -taps; i <= taps; ++i) {
                const double weight = Weight(static_cast<double>(i) / taps);
                sum += weight * SampleLinear(across, u, v + i * stride, Wrap::kMirror);
                weights += weight;
            }
            out.At(x, y) = Round16(sum / weights);
        }
    }
    return out;
}

// Rasterizers snap corners to a grid of 1/256 pixel before they ask which pixels' centres lie inside.
double Snap(double corner) {
    return std::round(corner * 256) / 256;
}

// Lays the padded copy so that its centre falls (shiftX, shiftY) pixels from the output's, and adds it.
void Accumulate(const Plane& copy, double paddedW, double paddedH, double shiftX, double shiftY, Plane* out) {
    const double left = out->width / 2.0 + shiftX - paddedW / 2;
    const double top = out->height / 2.0 + shiftY - paddedH / 2;
    for (int y = 0; y < out->height; ++y) {
        for (int x = 0; x < out->width; ++x) {
            const double centreX = x + 0.5;
            const double centreY = y + 0.5;
            if (centreX < Snap(left) || centreX >= Snap(left + paddedW)) continue;
            if (centreY < Snap(top) || centreY >= Snap(top + paddedH)) continue;
            const double u = (centreX - left) / paddedW;
            const double v = (centreY - top) / paddedH;
            const double s = SampleLinear(copy, u, v, Wrap::kMirror);
            const double d = out->At(x, y);
            out->At(x, y) = Round16(s * (1 - d) + d);
        }
    }
}

}  // namespace

double SampleLinear(const Plane& plane, double u, double v, Wrap wrap) {
    const double x = u * plane.width - 0.5;
    const double y = v * plane.height - 0.5;
    const int x0 = static_cast<int>(std::floor(x));
    const int y0 = static_cast<int>(std::floor(y));
    const double fx = x - x0;
    const double fy = y - y0;
    const auto texel = [&](int i, int j) {
        return plane.At(WrapIndex(i, plane.width, wrap), WrapIndex(j, plane.height, wrap));
    };
    return Mix(Mix(texel(x0, y0), texel(x0 + 1, y0), fx), Mix(texel(x0, y0 + 1), texel(x0 + 1, y0 + 1), fx), fy);
}

Plane NormalShadow(const Plane& layerAlpha, const PanelValues& panel, const CentrePlacement& placement, int outputWidth,
                   int outputHeight) {
    const int n = static_cast<int>(panel.samples);
    const double radians = panel.angle * 0.0174533;
    const double travelX = panel.distance * panel.scale * std::sin(radians);
    const double travelY = -panel.distance * panel.scale * std::cos(radians);
    const double softness = std::floor(panel.softness * panel.scale);
    const double resolution = panel.resolution * 0.2;
    const int buffers = std::min(n, 2);

    Plane out(outputWidth, outputHeight);
    for (int i = 0; i < n; ++i) {
        const Copy copy = CopyOf(i, panel, travelX, travelY, softness);
        // The later half of the samples has a border twice as wide.
        const int buffer = static_cast<int>(std::floor((static_cast<double>(buffers) / n - 0.000001) * i));
        const double pad = std::ceil(softness / buffers * (buffer + 1));
        const double paddedW = layerAlpha.width + 2 * pad;
        const double paddedH = layerAlpha.height + 2 * pad;
        const int width = static_cast<int>(resolution * paddedW);
        const int height = static_cast<int>(resolution * paddedH);
        if (width < 1 || height < 1) continue;

        const double reach = std::max(copy.softness, 1.0);
        const int taps = std::max(static_cast<int>(std::ceil(resolution * reach)), 1);
        const Plane across = BlurAcross(layerAlpha, Wrap::kClamp, paddedW, paddedH, width, height, taps,
                                        reach / taps / layerAlpha.width, copy.opacity);
        const Plane blurred = BlurDown(across, taps, reach / taps / paddedH);
        Accumulate(blurred, paddedW, paddedH,
                   copy.x + panel.offsetShadow * panel.scale * std::sin(radians) + placement.centreX,
                   copy.y - panel.offsetShadow * panel.scale * std::cos(radians) + placement.centreY, &out);
    }
    return out;
}

Plane InnerShadow(const Plane& layerAlpha, const PanelValues& panel, const Growth& growth, double colourAlpha,
                  int outputWidth, int outputHeight) {
    const int n = static_cast<int>(panel.samples);
    const double radians = panel.angle * 0.0174533;
    const double travelX = panel.distance * panel.scale * std::sin(radians);
    const double travelY = -panel.distance * panel.scale * std::cos(radians);
    const double softness = std::floor(panel.softness * panel.scale);
    const double resolution = panel.resolution * 0.2;
    const int width = static_cast<int>(resolution * outputWidth);
    const int height = static_cast<int>(resolution * outputHeight);

    Plane padded(outputWidth, outputHeight);
    for (int y = 0; y < layerAlpha.height; ++y) {
        for (int x = 0; x < layerAlpha.width; ++x) {
            const int toX = x + growth.left;
            const int toY = y + growth.top;
            if (toX < outputWidth && toY < outputHeight) padded.At(toX, toY) = layerAlpha.At(x, y);
        }
    }
    Plane inverted(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double alpha = SampleLinear(padded, (x + 0.5) / width, (y + 0.5) / height, Wrap::kClamp);
            inverted.At(x, y) = Round16((1 - alpha) * colourAlpha);
        }
    }

    Plane out(outputWidth, outputHeight);
    for (int i = 0; i < n; ++i) {
        const Copy copy = CopyOf(i, panel, travelX, travelY, softness);
        const double reach = std::max(copy.softness, 1.0);
        const int taps = std::max(static_cast<int>(std::ceil(resolution * reach)), 1);
        const Plane across = BlurAcross(inverted, Wrap::kMirror, inverted.width, inverted.height, width, height, taps,
                                        reach / taps / outputWidth, copy.opacity);
        const Plane blurred = BlurDown(across, taps, reach / taps / outputHeight);
        Accumulate(blurred, outputWidth, outputHeight, copy.x + panel.offsetShadow * panel.scale * std::sin(radians),
                   copy.y - panel.offsetShadow * panel.scale * std::cos(radians), &out);
    }
    return out;
}

std::vector<RadialCopy> RadialCopies(const PanelValues& p, const RadialPlacement& placement) {
    std::vector<RadialCopy> copies;
    const double n = std::floor(p.samples);
    const double soft = std::floor(p.softness * p.scale);
    const double final = 1 + p.distance / 400;
    const double pad = std::ceil(soft / final);
    const double start = p.opacityMaster * p.opacityStart / 1e4;
    const double end = p.opacityMaster * p.opacityEnd / 1e4;
    for (int i = 1; i <= n; ++i) {
        const double t = i / n;
        RadialCopy copy;
        copy.pad = pad;
        copy.scale = Mix(1 + (final - 1) * t, Ease(p.easeMode, i, n, 1, final - 1),
                         std::min(p.ease * p.easeDistance / 1e4, 1.0));
        const double softness =
            Mix(i * (soft / n), Ease(p.easeMode, i, n, 0, soft), std::min(p.ease * p.easeSoftness / 1e4, 1.0));
        copy.softness = std::max(std::ceil(softness / copy.scale), 1.0);
        copy.opacity = Mix(Mix(start, end, t), std::abs(Ease(p.easeMode, i, n, start, end - start)),
                           std::min(p.ease * p.easeOpacity / 1e4, 1.0));
        // The padded layer's corner, moved away from the fixed point by the scale.
        const double fixedX = placement.originX - placement.placeX;
        const double fixedY = placement.originY - placement.placeY;
        copy.x = fixedX + (-placement.outputX - pad - fixedX) * copy.scale;
        copy.y = fixedY + (-placement.outputY - pad - fixedY) * copy.scale;
        copies.push_back(copy);
    }
    return copies;
}

Plane RadialShadow(const Plane& layerAlpha, const PanelValues& panel, const RadialPlacement& placement, int outputWidth,
                   int outputHeight) {
    Plane out(outputWidth, outputHeight);
    for (const RadialCopy& copy : RadialCopies(panel, placement)) {
        const int pad = static_cast<int>(copy.pad);
        Plane padded(layerAlpha.width + 2 * pad, layerAlpha.height + 2 * pad);
        for (int y = 0; y < layerAlpha.height; ++y) {
            for (int x = 0; x < layerAlpha.width; ++x) padded.At(x + pad, y + pad) = Round16(layerAlpha.At(x, y));
        }
        const int taps = std::max(static_cast<int>(std::ceil(panel.resolution * 0.2 * copy.softness)), 1);
        const Plane across = BlurAcross(padded, Wrap::kMirror, padded.width, padded.height, padded.width, padded.height,
                                        taps, copy.softness / taps / padded.width, copy.opacity);
        const Plane blurred = BlurDown(across, taps, copy.softness / taps / padded.height);
        const double width = padded.width * copy.scale;
        const double height = padded.height * copy.scale;
        Accumulate(blurred, width, height, copy.x + width / 2 - outputWidth / 2.0,
                   copy.y + height / 2 - outputHeight / 2.0, &out);
    }
    return out;
}

}  // namespace umbrant::effect
