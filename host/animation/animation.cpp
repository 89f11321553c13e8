// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/animation.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/parameters/param_kind.h"

namespace umbrant::host {

namespace {

bool IsBefore(const RowTrack& track, int row) {
    return track.row < row;
}

}  // namespace

void Animation::Put(RowTrack track) {
    Remove(track.row);
    tracks_.insert(std::lower_bound(tracks_.begin(), tracks_.end(), track.row, IsBefore), std::move(track));
}

void Animation::Remove(int row) {
    std::erase_if(tracks_, [&](const RowTrack& track) { return track.row == row; });
}

const RowTrack* Animation::Find(int row) const {
    const auto found = std::lower_bound(tracks_.begin(), tracks_.end(), row, IsBefore);
    return found != tracks_.end() && found->row == row ? &*found : nullptr;
}

ParamSet Animation::ValuesAt(const ParamSet& base, double frame, const AnimationClock& clock) const {
    ParamSet values = base;
    for (const RowTrack& track : tracks_) {
        SetNumbers(values.RawRow(track.row), {track.track.At(frame, clock), track.isPercent});
    }
    return values;
}

std::optional<std::string> WhyNotAnimatable(const ParamRow& row) {
    if (!HasValue(KindOf(row.def))) {
        return fmt::format("is a {} and cannot have keyframes", ParamTypeName(row.def.param_type));
    }
    if (row.def.flags & PF_ParamFlag_CANNOT_TIME_VARY) {
        return "cannot have keyframes: the effect does not let it vary over time; set one value in \"values\"";
    }
    return std::nullopt;
}

}  // namespace umbrant::host
