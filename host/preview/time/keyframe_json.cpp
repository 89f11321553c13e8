// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/time/keyframe_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/parameters/param_kind.h"
#include "host/preview/panel_json.h"
#include "host/preview/time/shots.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

Json KeyframesJson(const AnimatedParams& params, const AnimationClock& clock) {
    AnimatedParams inFrames{params.values, {}};
    for (RowTrack track : params.animation.Tracks()) {
        for (Keyframe& key : track.track.keys) key.time = track.track.FrameOf(key, clock);
        track.track.inFrames = true;
        inFrames.animation.Put(std::move(track));
    }
    const Json preset = Json::parse(PresetText(inFrames));
    return preset.value("keyframes", Json::object());
}

Result<Animation> ReadKeyframes(const std::string& text, const ParamSet& params) {
    if (text.empty()) return Animation();
    AnimatedParams read{params, {}};
    TRY(ApplyPresetText("{\"version\": 2, \"keyframes\": " + text + "}", "timeline", read));
    return std::move(read.animation);
}

std::string FramesOfKeys(const Animation& animation, const AnimationClock& clock) {
    if (animation.IsEmpty()) return "";
    double first = std::numeric_limits<double>::infinity();
    double last = -first;
    for (const RowTrack& track : animation.Tracks()) {
        first = std::min(first, std::floor(track.track.FrameOf(track.track.keys.front(), clock)));
        last = std::max(last, std::ceil(track.track.FrameOf(track.track.keys.back(), clock)));
    }
    const bool isNear = std::abs(first) < kFarthestFrame && std::abs(last) < kFarthestFrame &&
                        last - first < static_cast<double>(kMostShotFrames);
    if (!isNear) return "";
    return fmt::format("{}-{}", static_cast<int>(first), static_cast<int>(std::max(last, first + 1)));
}

Json CurvesJson(const AnimatedParams& params, const AnimationClock& clock, double first, double last, int steps) {
    Json frames = Json::array();
    Json rows = Json::object();
    for (int i = 0; i <= steps; ++i) {
        const double frame = first + (last - first) * i / steps;
        frames.push_back(frame);
        const ParamSet now = params.animation.ValuesAt(params.values, frame, clock);
        for (const RowTrack& track : params.animation.Tracks()) {
            const ParamRow& row = now.Row(track.row);
            rows[RowKey(row)].push_back(NumbersOf(row).values);
        }
    }
    return {{"frames", frames}, {"rows", rows}};
}

}  // namespace umbrant::host
