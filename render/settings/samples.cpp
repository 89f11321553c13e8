// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/settings/samples.h"

#include <algorithm>
#include <cmath>

#include "pixel/easing.h"
#include "pixel/saturate.h"

namespace umbrant::effect {

namespace {

using EaseFunction = double (*)(double t, double b, double c, double d);

perSampleData BuildSample(const myParams& s, int32_t index, EaseFunction ease) {
    const double i = index;
    const double n = s.numSamples;
    const double u = i / n;
    // Intended: the opacity ramp runs on (i + 1) / n where every other attribute runs on i / n.
    const double v = (i + 1) / n;

    perSampleData sample{};
    // Counts that only a damaged project has, from a million on, would make the place in the list negative.
    sample.fbIndex = static_cast<uint32_t>(std::max(std::floor((s.numFramebuffers / n - 0.000001) * i), 0.0));
    sample.offsetX = weightFloat(s.stepX * i, ease(i, 0, s.travelX, n), s.easeDistance);
    sample.offsetY = weightFloat(s.stepY * i, ease(i, 0, s.travelY, n), s.easeDistance);
    sample.softness = weightFloat(u * s.softnessPx, ease(i, 0, s.softnessPx, n), s.easeSoftness);
    const double linear = v * s.opacityEnd + (1 - v) * s.opacityStart;
    const double eased = ease(i, s.opacityStart, s.opacityEnd - s.opacityStart, n);
    sample.opacity = weightFloat(linear, std::abs(eased), s.easeOpacity);
    return sample;
}

}  // namespace

std::vector<perSampleData> BuildSamples(const myParams& settings) {
    std::vector<perSampleData> samples;
    const int32_t count = std::clamp(settings.numSamples, 0, kMostSamples);
    samples.reserve(static_cast<size_t>(count));
    const EaseFunction ease = settings.easeMode == 0 ? easeIn : easeInOut;
    for (int32_t i = 0; i < count; ++i) samples.push_back(BuildSample(settings, i, ease));
    return samples;
}

std::vector<framebufferData> BuildFramebufferRecords(const myParams& settings) {
    std::vector<framebufferData> records;
    for (int32_t j = 1; j <= settings.numFramebuffers; ++j) {
        framebufferData record{};
        record.pad = std::ceil(settings.softnessPx / settings.numFramebuffers * j);
        record.pad2 = settings.shadowType == SHADOW_INNER ? 0 : 2 * record.pad;
        record.paddedW = ToInt32(settings.bufferW + record.pad2);
        record.paddedH = ToInt32(settings.bufferH + record.pad2);
        record.fboW = ToInt32(settings.resolutionScale * (settings.bufferW + record.pad2));
        record.fboH = ToInt32(settings.resolutionScale * (settings.bufferH + record.pad2));
        records.push_back(record);
    }
    return records;
}

}  // namespace umbrant::effect
