// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Keyframes as the page has them: as in a preset, with times in frames; and as curves.

#include <nlohmann/json.hpp>
#include <string>

#include "host/animation/preset.h"
#include "host/result.h"

namespace umbrant::host {

/// What a preset's "keyframes" would have, by rows, with times in frames; an empty object without any.
nlohmann::ordered_json KeyframesJson(const AnimatedParams& params, const AnimationClock& clock);

/// Reads what KeyframesJson wrote and the page changed. Fails as ApplyPresetText does.
Result<Animation> ReadKeyframes(const std::string& text, const ParamSet& params);

/// The frames from the first key to the last, whole numbers around them, as ParseFrames reads them. At least two; empty
/// without keys, and where they are further apart than a timeline is long.
std::string FramesOfKeys(const Animation& animation, const AnimationClock& clock);

/// The values of each row that moves at equal steps from `first` to `last`: frames, and by rows a list of numbers for
/// each of them. `steps` is at least 1.
nlohmann::ordered_json CurvesJson(const AnimatedParams& params, const AnimationClock& clock, double first, double last,
                                  int steps);

}  // namespace umbrant::host
