// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Values and tracks as a preset's text.

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "host/animation/preset.h"
#include "host/animation/value_json.h"
#include "host/parameters/param_kind.h"

namespace umbrant::host {

namespace {

using OrderedJson = nlohmann::ordered_json;

/// Whether the user can set the value: the effect uses the others for its own texts, which differ between
/// machines.
bool IsSettable(const ParamRow& row) {
    return (row.def.ui_flags & PF_PUI_DISABLED) == 0;
}

/// A whole number without a fraction, as a person writes it.
OrderedJson NumberJson(double number) {
    if (number == std::floor(number) && std::abs(number) < 1e15) return static_cast<std::int64_t>(number);
    return number;
}

OrderedJson SideJson(const KeySide& side) {
    if (side.kind == Interpolation::kHold) return "hold";
    if (side.kind == Interpolation::kLinear) return "linear";
    if (side == KeySide{Interpolation::kBezier}) return "ease";
    return {{"speed", NumberJson(side.speed)}, {"influence", NumberJson(side.influence)}};
}

std::string PairText(const std::vector<double>& numbers) {
    return fmt::format("{},{}", numbers[0], numbers[1]);
}

/// A key as JSON; changes the row's value in `scratch`.
OrderedJson KeyJson(ParamSet& scratch, const RowTrack& track, const Keyframe& key) {
    ParamRow& row = scratch.RawRow(track.row);
    SetNumbers(row, {key.value, track.isPercent});
    OrderedJson json{{track.track.inFrames ? "frame" : "seconds", NumberJson(key.time)},
                     {"value", ValueJson(row, scratch.ValueText(row.index))}};
    if (IsDiscrete(KindOf(row.def))) return json;
    if (key.in.kind != Interpolation::kLinear) json["in"] = SideJson(key.in);
    if (key.out.kind != Interpolation::kLinear) json["out"] = SideJson(key.out);
    if (!key.tangentIn.empty()) json["tangent-in"] = PairText(key.tangentIn);
    if (!key.tangentOut.empty()) json["tangent-out"] = PairText(key.tangentOut);
    return json;
}

}  // namespace

nlohmann::ordered_json ValueJson(const ParamRow& row, const std::string& text) {
    const ParamKind kind = KindOf(row.def);
    if (!IsSlider(kind) && kind != ParamKind::kAngle) return text;
    // A number that JSON has no form for, such as an infinite one, stays a text.
    const OrderedJson number = OrderedJson::parse(text, nullptr, false);
    return number.is_number() ? number : OrderedJson(text);
}

std::string PresetText(const AnimatedParams& params) {
    OrderedJson values = OrderedJson::object();
    OrderedJson keyframes = OrderedJson::object();
    ParamSet scratch = params.values;
    for (const ParamRow& row : params.values.Rows()) {
        const std::string value = params.values.ValueText(row.index);
        if (value.empty() || !IsSettable(row)) continue;
        const bool isNamed = !row.path.empty() && params.values.Find(row.path);
        const std::string name = isNamed ? row.path : fmt::format("#{}", row.index);
        const RowTrack* track = params.animation.Find(row.index);
        if (!track) {
            values[name] = ValueJson(row, value);
            continue;
        }
        for (const Keyframe& key : track->track.keys) keyframes[name].push_back(KeyJson(scratch, *track, key));
    }
    OrderedJson preset{{"version", keyframes.empty() ? 1 : 2}, {"values", values}};
    if (!keyframes.empty()) preset["keyframes"] = keyframes;
    return preset.dump(2, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

}  // namespace umbrant::host
