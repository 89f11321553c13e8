// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Parameters that move: a track of keyframes for some rows of an effect, and the values that they have at a time.

#include <optional>
#include <string>
#include <vector>

#include "host/animation/keyframes.h"
#include "host/parameters/param_set.h"

namespace umbrant::host {

inline bool operator==(const Track& a, const Track& b) {
    return a.inFrames == b.inFrames && a.keys == b.keys;
}

/// A row's track. Numbers are those that a person types: percents as shown, degrees, pixels or percents of the layer,
/// channels from 0 to 255, a popup's item number, 0 and 1.
struct RowTrack {
    int row = 0;
    bool isPercent = false;  ///< a point's numbers are percents of the layer
    Track track;
    bool operator==(const RowTrack&) const = default;
};

class Animation {
 public:
    bool IsEmpty() const { return tracks_.empty(); }
    const std::vector<RowTrack>& Tracks() const { return tracks_; }

    /// Adds a track, in the place of one that its row has.
    void Put(RowTrack track);
    /// The row keeps still.
    void Remove(int row);
    /// Null for a row that keeps still.
    const RowTrack* Find(int row) const;

    /// The values at a frame, whole or fractional: those of `base`, with the tracks' in their rows. What overshoots a
    /// row's range stays at its end; rows of whole numbers are rounded to the nearest.
    ParamSet ValuesAt(const ParamSet& base, double frame, const AnimationClock& clock) const;

 private:
    std::vector<RowTrack> tracks_;  ///< in the order of their rows
};

/// Why a row cannot move, as the rest of a sentence that begins with its name, or nothing when it can.
std::optional<std::string> WhyNotAnimatable(const ParamRow& row);

}  // namespace umbrant::host
