// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/animation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kFixedOne = 65536.0;
/// What an angle or a coordinate holds either way.
constexpr double kFixedLimit = 32767.0;

bool IsBefore(const RowTrack& track, int row) {
    return track.row < row;
}

int Channel(double value) {
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0)));
}

std::string Within(double value, double low, double high) {
    return fmt::format("{}", std::clamp(value, low, high));
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
        const std::string text = TextOf(base.Row(track.row), track.track.At(frame, clock), track.isPercent);
        // The keys were taken by the row, and what lies between them is kept within its range.
        (void)values.SetFromText(fmt::format("#{}", track.row), text);
    }
    return values;
}

std::optional<std::string> WhyStill(const ParamRow& row) {
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
        case PF_Param_FIX_SLIDER:
        case PF_Param_FLOAT_SLIDER:
        case PF_Param_ANGLE:
        case PF_Param_CHECKBOX:
        case PF_Param_COLOR:
        case PF_Param_POINT:
        case PF_Param_POINT_3D:
        case PF_Param_POPUP:
            break;
        default:
            return fmt::format("is a {} and has no value that could move", ParamTypeName(row.def.param_type));
    }
    if (row.def.flags & PF_ParamFlag_CANNOT_TIME_VARY) {
        return "cannot have keyframes: the effect keeps it the same for all frames; give it one value in \"values\"";
    }
    return std::nullopt;
}

bool IsHeldOnly(const ParamRow& row) {
    return row.def.param_type == PF_Param_POPUP || row.def.param_type == PF_Param_CHECKBOX;
}

std::vector<double> NumbersOf(const ParamRow& row, bool& isPercent) {
    const PF_ParamDefUnion& u = row.def.u;
    isPercent = false;
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
            return {static_cast<double>(u.sd.value)};
        case PF_Param_FIX_SLIDER:
            return {u.fd.value / kFixedOne};
        case PF_Param_FLOAT_SLIDER:
            return {u.fs_d.value};
        case PF_Param_ANGLE:
            return {u.ad.value / kFixedOne};
        case PF_Param_CHECKBOX:
            return {u.bd.value ? 1.0 : 0.0};
        case PF_Param_POPUP:
            return {static_cast<double>(u.pd.value)};
        case PF_Param_COLOR:
            return {static_cast<double>(u.cd.value.red), static_cast<double>(u.cd.value.green),
                    static_cast<double>(u.cd.value.blue)};
        case PF_Param_POINT_3D:
            return {u.point3d_d.x_value, u.point3d_d.y_value, u.point3d_d.z_value};
        case PF_Param_POINT: {
            const LayerPoint declared{u.td.x_dephault / kFixedOne, u.td.y_dephault / kFixedOne, true};
            const LayerPoint point = row.point.value_or(declared);
            isPercent = point.isPercent;
            return {point.x, point.y};
        }
        default:
            return {0};
    }
}

std::string TextOf(const ParamRow& row, const std::vector<double>& numbers, bool isPercent) {
    const PF_ParamDefUnion& u = row.def.u;
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
            return Within(std::round(numbers[0]), u.sd.valid_min, u.sd.valid_max);
        case PF_Param_FIX_SLIDER:
            return Within(numbers[0], u.fd.valid_min / kFixedOne, u.fd.valid_max / kFixedOne);
        case PF_Param_FLOAT_SLIDER:
            return Within(numbers[0], static_cast<double>(u.fs_d.valid_min), static_cast<double>(u.fs_d.valid_max));
        case PF_Param_ANGLE:
            return Within(numbers[0], -kFixedLimit, kFixedLimit);
        case PF_Param_CHECKBOX:
            return numbers[0] != 0 ? "on" : "off";
        case PF_Param_COLOR:
            return fmt::format("#{:02x}{:02x}{:02x}", Channel(numbers[0]), Channel(numbers[1]), Channel(numbers[2]));
        case PF_Param_POINT_3D:
            return fmt::format("{},{},{}", numbers[0], numbers[1], numbers[2]);
        case PF_Param_POINT: {
            const char* unit = isPercent ? "%" : "";
            return fmt::format("{0}{2},{1}{2}", Within(numbers[0], -kFixedLimit, kFixedLimit),
                               Within(numbers[1], -kFixedLimit, kFixedLimit), unit);
        }
        default:
            return fmt::format("{}", numbers[0]);
    }
}
