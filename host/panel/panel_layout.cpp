// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/parameters/param_kind.h"

namespace umbrant::host {

namespace {

constexpr char kDegree[] = "\u00B0";

/// A group that the walk is inside of.
struct OpenGroup {
    bool visible;  ///< its rows are
};

std::string Number(double value, int precision, PF_ValueDisplayFlags flags) {
    std::string digits = fmt::format("{:.{}f}", value, std::clamp(precision, 0, 9));
    if (flags & PF_ValueDisplayFlag_PERCENT) return digits + "%";
    if (flags & PF_ValueDisplayFlag_PIXEL) return digits + " px";
    return digits;
}

void FillSlider(double value, double low, double high, int precision, PF_ValueDisplayFlags flags, PanelItem* item) {
    item->control = PanelControl::kSlider;
    item->value = Number(value, precision, flags);
    item->low = Number(low, 0, flags);
    item->high = Number(high, 0, flags);
    item->position = high > low ? std::clamp((value - low) / (high - low), 0.0, 1.0) : 0.0;
    item->twirl = true;
}

/// "1x +90.0°": whole turns, then what is left, both with the value's sign.
std::string TurnsAndDegrees(double degrees) {
    const double turns = std::trunc(degrees / 360.0);
    return fmt::format("{:.0f}x {:+.1f}{}", turns + 0.0, degrees - turns * 360.0, kDegree);
}

std::string PopupItem(const ParamRow& row) {
    const A_long value = row.def.u.pd.value;
    if (value >= 1 && value <= static_cast<A_long>(row.items.size())) {
        return row.items[static_cast<std::size_t>(value) - 1];
    }
    return "";
}

std::string PointText(const ParamSet& params, int index, const LayerGeometry& geometry) {
    const PF_ParamDef def = params.CheckOut(index, geometry);
    return fmt::format("{:.1f}, {:.1f}", def.u.td.x_value / kFixedOne, def.u.td.y_value / kFixedOne);
}

/// The area that the effect requested. With a name next to it, the area is in the control column.
PF_Rect OwnFrame(const PanelItem& item, const PF_ParamDef& def, int width) {
    const int left = item.name.empty() ? PanelMetrics::kOwnLeft : static_cast<int>(PanelMetrics::ControlLeft(width));
    const int top = static_cast<int>(item.top + PanelMetrics::kOwnMargin);
    return {left, top, left + def.ui_width, top + def.ui_height};
}

/// Control, value and what else the row's type shows.
void FillControl(const ParamSet& params, const ParamRow& row, const LayerGeometry& geometry, PanelItem* item) {
    const PF_ParamDefUnion& u = row.def.u;
    const ParamKind kind = KindOf(row.def);
    if (const auto range = SliderRange(row.def)) {
        FillSlider(NumbersOf(row).values[0], range->sliderMin, range->sliderMax, Precision(row.def).value_or(0),
                   DisplayFlags(row.def), item);
    }
    switch (kind) {
        case ParamKind::kAngle:
            item->control = PanelControl::kAngle;
            item->degrees = NumbersOf(row).values[0];
            item->value = TurnsAndDegrees(item->degrees);
            item->twirl = true;
            break;
        case ParamKind::kPopup:
            item->control = PanelControl::kPopup;
            item->value = PopupItem(row);
            break;
        case ParamKind::kLayer:
            item->control = PanelControl::kLayer;
            item->value = "None";
            break;
        case ParamKind::kPoint:
            item->control = PanelControl::kPoint;
            item->value = PointText(params, row.index, geometry);
            break;
        case ParamKind::kColor:
            item->control = PanelControl::kColor;
            item->color = u.cd.value;
            break;
        case ParamKind::kButton:
            item->control = PanelControl::kButton;
            item->value = row.label;
            break;
        case ParamKind::kCheckBox:
            item->control = PanelControl::kCheckBox;
            item->value = row.label;
            item->checked = u.bd.value != 0;
            break;
        default:
            break;
    }
    const bool own = (row.def.ui_flags & PF_PUI_CONTROL) != 0 && row.def.ui_width > 0 && row.def.ui_height > 0;
    if (own) item->control = PanelControl::kOwn;
    const bool valued = kind != ParamKind::kButton && !own && item->control != PanelControl::kNothing;
    item->clock = valued && !(row.def.flags & PF_ParamFlag_CANNOT_TIME_VARY);
}

double HeightOf(const PanelItem& item, const PF_ParamDef& def) {
    switch (item.control) {
        case PanelControl::kSlider:
            return PanelMetrics::kRow + (item.open ? PanelMetrics::kTrack : 0);
        case PanelControl::kAngle:
            return PanelMetrics::kRow + (item.open ? PanelMetrics::kDial : 0);
        case PanelControl::kSpacer:
            return PanelMetrics::kSpacer;
        case PanelControl::kOwn:
            return def.ui_height + 2 * PanelMetrics::kOwnMargin;
        default:
            return PanelMetrics::kRow;
    }
}

/// A group's row; one that holds nothing is there for its name, or for the gap that it makes.
void FillGroup(bool empty, PanelItem* item) {
    item->control = !empty ? PanelControl::kGroup : item->name.empty() ? PanelControl::kSpacer : PanelControl::kHeading;
    item->twirl = !empty;
}

}  // namespace

std::vector<PanelItem> LayOutPanel(const ParamSet& params, const std::vector<PanelRow>& rows,
                                   const LayerGeometry& geometry, int width) {
    std::vector<PanelItem> items;
    std::vector<OpenGroup> groups;
    double top = PanelMetrics::kHeader;
    for (int i = 1; i < params.Count(); ++i) {
        const ParamRow& row = params.Row(i);
        const PanelRow& looks = rows[static_cast<std::size_t>(i)];
        if (KindOf(row.def) == ParamKind::kGroupEnd) {
            if (!groups.empty()) groups.pop_back();
            continue;
        }
        const bool visible = !looks.hidden && (groups.empty() || groups.back().visible);
        const bool isGroup = KindOf(row.def) == ParamKind::kGroup;
        const bool empty =
            isGroup && (i + 1 == params.Count() || KindOf(params.Row(i + 1).def) == ParamKind::kGroupEnd);

        const bool afterRows = !items.empty() && items.back().depth > 0;
        if (visible && isGroup && groups.empty() && afterRows) top += PanelMetrics::kGroupGap;

        PanelItem item;
        item.index = i;
        item.name = looks.name;
        item.depth = static_cast<int>(groups.size());
        item.disabled = looks.disabled;
        item.top = top;
        if (isGroup) {
            groups.push_back({visible && !looks.collapsed});
            FillGroup(empty, &item);
        } else {
            FillControl(params, row, geometry, &item);
        }
        if (!visible) continue;
        item.open = item.twirl && !looks.collapsed;
        item.height = HeightOf(item, row.def);
        if (item.control == PanelControl::kOwn) item.frame = OwnFrame(item, row.def, width);
        top += item.height;
        items.push_back(std::move(item));
    }
    return items;
}

double PanelHeight(const std::vector<PanelItem>& items) {
    const double end = items.empty() ? PanelMetrics::kHeader : items.back().top + items.back().height;
    return end + PanelMetrics::kMargin;
}

}  // namespace umbrant::host
