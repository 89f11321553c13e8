// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/settings/radial_samples.h"

#include <algorithm>
#include <cmath>

#include "pixel/easing.h"
#include "pixel/matrix.h"
#include "pixel/saturate.h"
#include "render/settings/samples.h"

namespace umbrant::effect {

namespace {

using EaseFunction = double (*)(double t, double b, double c, double d);

// Shrinks or grows the padded copy about the origin, after moving it to where the layer is in the output.
void Place(const myParams& s, const RadialGeometry& geometry, perSampleData* sample) {
    const double aboutX = geometry.originX - s.preRender.centreOffsetX;
    const double aboutY = geometry.originY - s.preRender.centreOffsetY;
    PF_FloatMatrix m;
    SetIdentityMatrix(&m);
    TranslateMatrix(&m, static_cast<double>(s.inputWorld->origin_x) - s.outputWorld->origin_x,
                    static_cast<double>(s.inputWorld->origin_y) - s.outputWorld->origin_y);
    TranslateMatrix(&m, -geometry.pad, -geometry.pad);
    TranslateMatrix(&m, -aboutX, -aboutY);
    if (sample->radialScale != 1.0) ScaleMatrix(&m, sample->radialScale, sample->radialScale);
    TranslateMatrix(&m, aboutX, aboutY);
    sample->radialTx = m.mat[2][0];
    sample->radialTy = m.mat[2][1];
}

perSampleData BuildSample(const myParams& s, const RadialGeometry& geometry, int32_t index, EaseFunction ease) {
    const double i = index;
    const double n = s.numSamples;
    const double t = i / n;
    const double scaleStep = geometry.growth / n;
    const double softStep = geometry.soft / n;

    perSampleData sample{};
    sample.radialScale = weightFloat(i * scaleStep + 1, ease(i, 1, (1 + geometry.growth) - 1, n), s.easeDistance);
    const double softness = weightFloat(i * softStep, ease(i, 0, geometry.soft, n), s.easeSoftness);
    // The copy is scaled up after the blur, so the blur is scaled down before.
    sample.softness = std::max(std::ceil(softness / sample.radialScale), 1.0);
    const double linear = t * s.opacityEnd + (1 - t) * s.opacityStart;
    const double eased = ease(i, s.opacityStart, s.opacityEnd - s.opacityStart, n);
    sample.opacity = weightFloat(linear, std::abs(eased), s.easeOpacity);
    Place(s, geometry, &sample);
    return sample;
}

}  // namespace

RadialGeometry BuildRadialGeometry(const CheckedOutParams& params, const myParams& settings) {
    RadialGeometry geometry;
    // Intended: a quarter of what pre-render makes room for.
    geometry.growth = params[PARAM_DISTANCE].u.fs_d.value * 0.25 * 0.01;
    geometry.soft = ToInt32(settings.softnessPx);
    geometry.pad = ToInt32(std::ceil(geometry.soft / std::abs(1 + geometry.growth)));
    geometry.paddedW = ToInt32(settings.inputWorld->width + 2.0 * geometry.pad);
    geometry.paddedH = ToInt32(settings.inputWorld->height + 2.0 * geometry.pad);
    geometry.originX = params[PARAM_ORIGIN].u.td.x_value * 1.52587890625e-05;
    geometry.originY = params[PARAM_ORIGIN].u.td.y_value * 1.52587890625e-05;
    return geometry;
}

std::vector<perSampleData> BuildRadialSamples(const myParams& settings, const RadialGeometry& geometry) {
    std::vector<perSampleData> samples;
    const int32_t count = std::clamp(settings.numSamples, 0, kMostSamples);
    samples.reserve(static_cast<size_t>(count));
    const EaseFunction ease = settings.easeMode == 0 ? easeIn : easeInOut;
    // Intended: counted from one, unlike the other shadow types, so the last copy reaches the end values.
    for (int32_t i = 1; i <= count; ++i) samples.push_back(BuildSample(settings, geometry, i, ease));
    return samples;
}

}  // namespace umbrant::effect
