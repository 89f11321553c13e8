// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a frame's effect sees of other times than the frame's.

#include <algorithm>

#include "host/session/frame_record.h"

namespace umbrant::host {

namespace {

bool IsSame(const Moment& a, const Moment& b) {
    // 32 bits times 32 bits.
    return std::int64_t{a.value} * std::int64_t{b.scale} == std::int64_t{b.value} * std::int64_t{a.scale};
}

}  // namespace

FrameRecord::OtherMoment* FrameRecord::Other(const Moment& moment) {
    if (IsSame(moment, {request.time, request.timeScale})) return nullptr;
    for (OtherMoment& known : moments) {
        if (IsSame(known.moment, moment)) return &known;
    }
    return &moments.emplace_back(OtherMoment{moment, {}, {}});
}

const ParamSet& FrameRecord::ParamsAt(const Moment& moment) {
    OtherMoment* other = request.valuesAt ? Other(moment) : nullptr;
    if (!other) return params;
    if (!other->params) other->params = request.valuesAt(moment);
    return *other->params;
}

const LayersSeen* FrameRecord::LayersAt(const Moment& moment) {
    OtherMoment* other = request.layersAt ? Other(moment) : nullptr;
    if (!other) return &layers;
    if (other->layers) return &*other->layers;
    auto found = request.layersAt(moment);
    if (!found) {
        if (!failure) failure = found.error();
        return nullptr;
    }
    other->layers = LayersSeen(*found, request);
    return &*other->layers;
}

}  // namespace umbrant::host
