// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/panel_json.h"

#include <fmt/format.h>

#include <cmath>

#include "host/animation/animation.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/parameter_description.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

const char* KindName(const ParamRow& row) {
    const bool own = (row.def.ui_flags & PF_PUI_CONTROL) != 0 && row.def.ui_width > 0 && row.def.ui_height > 0;
    if (own) return "own";
    switch (KindOf(row.def)) {
        case ParamKind::kInteger:
        case ParamKind::kFixed:
        case ParamKind::kFloat:
            return "slider";
        case ParamKind::kAngle:
            return "angle";
        case ParamKind::kCheckBox:
            return "check";
        case ParamKind::kColor:
            return "color";
        case ParamKind::kPoint:
            return "point";
        case ParamKind::kPoint3D:
            return "point3d";
        case ParamKind::kPopup:
            return "popup";
        case ParamKind::kGroup:
            return "group";
        case ParamKind::kButton:
            return "button";
        case ParamKind::kLayer:
            return "layer";
        default:
            return "nothing";
    }
}

void AddSlider(const ParamRow& row, Json& json) {
    const auto range = SliderRange(row.def);
    if (!range) return;
    json["min"] = range->validMin;
    json["max"] = range->validMax;
    json["sliderMin"] = range->sliderMin;
    json["sliderMax"] = range->sliderMax;
    json["precision"] = KindOf(row.def) == ParamKind::kInteger ? 0 : Precision(row.def).value_or(2);
    const PF_ValueDisplayFlags flags = DisplayFlags(row.def);
    json["unit"] = flags & PF_ValueDisplayFlag_PERCENT ? "%" : flags & PF_ValueDisplayFlag_PIXEL ? "px" : "";
}

Json Describe(const ParamSet& params, const ParamRow& row) {
    const std::string kind = KindName(row);
    Json json{{"key", RowKey(row)}, {"index", row.index}, {"kind", kind}, {"depth", row.depth}};
    AddSlider(row, json);
    if (HasValue(KindOf(row.def))) {
        json["default"] = params.DefaultText(row.index);
        ParamSet defaults = params;
        if (defaults.SetFromText(RowKey(row), params.DefaultText(row.index))) {
            json["defaultNumbers"] = NumbersOf(defaults.Row(row.index)).values;
        }
    }
    if (!WhyNotAnimatable(row)) json["animatable"] = true;
    if (IsDiscrete(KindOf(row.def))) json["discrete"] = true;
    if (kind == "popup") json["items"] = row.items;
    if (!row.label.empty()) json["label"] = row.label;
    if (const auto text = DescriptionOf(row.path); !text.empty()) json["description"] = text;
    if (kind == "own") {
        json["width"] = row.def.ui_width;
        json["height"] = row.def.ui_height;
    }
    if (row.def.flags & PF_ParamFlag_START_COLLAPSED) json["collapsed"] = true;
    if (row.def.ui_flags & PF_PUI_ECW_SEPARATOR) json["separator"] = true;
    return json;
}

}  // namespace

std::string RowKey(const ParamRow& row) {
    return row.path.empty() ? fmt::format("#{}", row.index) : row.path;
}

Json DeclaredRows(const ParamSet& params) {
    Json rows = Json::array();
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0 || KindOf(row.def) == ParamKind::kGroupEnd) continue;
        rows.push_back(Describe(params, row));
    }
    return rows;
}

Json CurrentRows(const EffectSession& session) {
    const ParamSet& params = session.Params();
    const std::vector<PanelRow> looks = session.Panel().Rows();
    Json rows = Json::object();
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0 || KindOf(row.def) == ParamKind::kGroupEnd) continue;
        const PanelRow& look = looks[static_cast<std::size_t>(row.index)];
        Json json{{"name", look.name}, {"hidden", look.hidden}, {"disabled", look.disabled}};
        if (HasValue(KindOf(row.def))) {
            const ParamNumbers numbers = NumbersOf(row);
            json["text"] = params.ValueText(row.index);
            json["numbers"] = numbers.values;
            if (numbers.isPercent) json["percent"] = true;
        }
        rows[RowKey(row)] = std::move(json);
    }
    return rows;
}

Json ChangedValues(const ParamSet& params) {
    Json values = Json::object();
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0 || !HasValue(KindOf(row.def))) continue;
        const std::string text = params.ValueText(row.index);
        if (text != params.DefaultText(row.index)) values[RowKey(row)] = text;
    }
    return values;
}

std::string Bytes(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace umbrant::host
