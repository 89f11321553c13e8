// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the judge can say about the rows of an effect that it has never seen: which can be set, and to what.

#include <fmt/format.h>

#include <algorithm>

#include "host/validate/checks/check_fixture.h"

namespace umbrant::host {

namespace {

bool IsSeparator(const std::string& item) {
    return item.starts_with("(");
}

}  // namespace

std::string RowName(const ParamRow& row) {
    return row.path.empty() ? fmt::format("#{}", row.index) : row.path;
}

std::vector<int> SettableRows(const ParamSet& params) {
    std::vector<int> rows;
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0 || (row.def.ui_flags & PF_PUI_DISABLED)) continue;
        if (HasValue(KindOf(row.def))) rows.push_back(row.index);
    }
    return rows;
}

std::optional<NumberRange> RangeOf(const ParamRow& row) {
    if (KindOf(row.def) == ParamKind::kAngle) return NumberRange{-3600, 3600, 0, 360, 0};
    return SliderRange(row.def);
}

double LowNumber(const NumberRange& range, double steps) {
    // A range around zero is low at zero.
    const double least = range.validMin < 0 && range.validMax > 0 ? 0 : range.validMin;
    return std::min(least + steps, range.validMax);
}

std::vector<Variant> StyleVariants(const ParamSet& params, int mostItems) {
    std::vector<Variant> variants{{"the defaults", [](ParamSet&) {}}};
    for (const int index : SettableRows(params)) {
        const ParamRow& row = params.Row(index);
        const PF_PopupDef& popup = row.def.u.pd;
        if (KindOf(row.def) != ParamKind::kPopup || popup.num_choices > mostItems) continue;
        for (int item = 1; item <= popup.num_choices; ++item) {
            const auto at = static_cast<std::size_t>(item) - 1;
            if (item == popup.value || (at < row.items.size() && IsSeparator(row.items[at]))) continue;
            variants.push_back({fmt::format("{} {}", RowName(row), item),
                                [index, item](ParamSet& set) { set.RawRow(index).def.u.pd.value = item; }});
        }
    }
    return variants;
}

}  // namespace umbrant::host
