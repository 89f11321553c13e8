// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The declaration and what the effect sees of it; texts are in read_param_text.cpp and write_param_text.cpp.

#include "host/parameters/param_set.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>

#include "host/parameters/echo_text.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"
#include "hostapi/errors.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kSuggestions = 3;

std::string NameOf(const PF_ParamDef& def) {
    const char* begin = std::begin(def.name_do_not_use_directly);
    return {begin, std::find(begin, std::end(def.name_do_not_use_directly), '\0')};
}

std::vector<std::string> SplitItems(const std::string& text) {
    std::vector<std::string> items;
    std::size_t start = 0;
    for (std::size_t bar = 0; bar != std::string::npos; start = bar + 1) {
        bar = text.find('|', start);
        items.push_back(text.substr(start, bar == std::string::npos ? bar : bar - start));
    }
    return items;
}

/// A new instance starts from its defaults.
void SetToDefault(PF_ParamDef& def) {
    PF_ParamDefUnion& u = def.u;
    switch (def.param_type) {
        case PF_Param_SLIDER:
            u.sd.value = u.sd.dephault;
            break;
        case PF_Param_FIX_SLIDER:
            u.fd.value = u.fd.dephault;
            break;
        case PF_Param_FLOAT_SLIDER:
            u.fs_d.value = static_cast<PF_FpLong>(u.fs_d.dephault);
            break;
        case PF_Param_ANGLE:
            u.ad.value = u.ad.dephault;
            break;
        case PF_Param_CHECKBOX:
            u.bd.value = u.bd.dephault;
            break;
        case PF_Param_COLOR:
            u.cd.value = u.cd.dephault;
            break;
        case PF_Param_POPUP:
            u.pd.value = u.pd.dephault;
            break;
        case PF_Param_POINT_3D:
            u.point3d_d.x_value = u.point3d_d.x_dephault;
            u.point3d_d.y_value = u.point3d_d.y_dephault;
            u.point3d_d.z_value = u.point3d_d.z_dephault;
            break;
        case PF_Param_ARBITRARY_DATA:
            u.arb_d.value = u.arb_d.dephault;
            break;
        default:
            break;
    }
}

/// 16.16, saturating; not-a-number gives 0.
PF_Fixed ToFixed(double value) {
    const double scaled = std::round(value * kFixedOne);
    if (std::isnan(scaled)) return 0;
    return static_cast<PF_Fixed>(
        std::clamp<double>(scaled, std::numeric_limits<PF_Fixed>::min(), std::numeric_limits<PF_Fixed>::max()));
}

double Ratio(const PF_RationalScale& scale) {
    return scale.den == 0 ? 1.0 : static_cast<double>(scale.num) / scale.den;
}

}  // namespace

ParamSet::ParamSet() {
    ParamRow layer;
    layer.def.param_type = PF_Param_LAYER;
    layer.def.u.ld.dephault = PF_LayerDefault_MYSELF;
    rows_.push_back(std::move(layer));
}

PF_Err ParamSet::Add(PF_ParamIndex index, const PF_ParamDef* def) {
    if (!def) return PF_Err_BAD_CALLBACK_PARAM;
    if (index != PF_ParamIndex_NONE && index != Count()) return PF_Err_INVALID_INDEX;
    const PF_ParamType type = def->param_type;
    if (type < PF_Param_LAYER || type > PF_Param_POINT_3D || type == PF_Param_RESERVED2 || type == PF_Param_RESERVED3) {
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }

    ParamRow row;
    row.index = Count();
    row.def = *def;
    row.name = NameOf(*def);
    if (const char** pointer = TextPointer(row.def)) {
        row.text = std::make_shared<const std::string>(*pointer ? *pointer : "");
        *pointer = row.text->c_str();
        if (type == PF_Param_POPUP) {
            row.items = SplitItems(*row.text);
        } else {
            row.label = *row.text;
        }
    }
    SetToDefault(row.def);

    if (type == PF_Param_GROUP_END) {
        if (openGroups_.empty()) {
            groupProblem_ = fmt::format("row {} ends a group, but none is open", row.index);
        } else {
            openGroups_.pop_back();
        }
    } else {
        row.path = PathForm(row.name);
        for (auto group = openGroups_.rbegin(); group != openGroups_.rend() && !row.path.empty(); ++group) {
            const std::string name = PathForm(Row(*group).name);
            if (!name.empty()) row.path = name + "/" + row.path;
        }
    }
    row.depth = static_cast<int>(openGroups_.size());
    if (type == PF_Param_GROUP_START) openGroups_.push_back(row.index);
    rows_.push_back(std::move(row));
    return PF_Err_NONE;
}

std::string ParamSet::Finish() {
    if (groupProblem_.empty() && !openGroups_.empty()) {
        groupProblem_ = fmt::format("the group of row {} has no end", openGroups_.back());
    }
    return groupProblem_;
}

Result<int> ParamSet::Find(std::string_view path) const {
    if (path.starts_with('#')) {
        int index = -1;
        const char* end = path.data() + path.size();
        const auto [stop, error] = std::from_chars(path.data() + 1, end, index);
        if (error == std::errc() && stop == end && index >= 0 && index < Count()) return index;
        return Failure{ErrorKind::kUsage, fmt::format("there is no parameter '{}'; the effect has #0 to #{}",
                                                      EchoText(path), Count() - 1)};
    }
    std::vector<std::string> found;
    std::vector<std::string> names;
    int index = -1;
    for (const ParamRow& row : rows_) {
        if (row.path.empty()) continue;
        if (row.def.param_type != PF_Param_GROUP_START) names.push_back(row.path);
        if (row.path != path) continue;
        index = row.index;
        found.push_back(fmt::format("#{}", row.index));
    }
    if (found.size() == 1) return index;
    if (!found.empty()) {
        return Failure{ErrorKind::kUsage, fmt::format("'{}' names {} parameters; use one of {}", path, found.size(),
                                                      fmt::join(found, ", "))};
    }
    std::vector<std::string> near = Nearest(path, names, kSuggestions);
    for (std::string& name : near) name = fmt::format("'{}'", name);
    return Failure{
        ErrorKind::kUsage,
        names.empty() ? fmt::format("there is no parameter '{}'; the effect has no named parameters", EchoText(path))
        : near.empty()
            ? fmt::format("there is no parameter '{}'; `umbrant params` lists all parameters", EchoText(path))
            : fmt::format("there is no parameter '{}'; closest: {}", EchoText(path), fmt::join(near, ", "))};
}

PF_ParamDef ParamSet::CheckOut(int index, const LayerGeometry& geometry) const {
    const ParamRow& row = Row(index);
    PF_ParamDef def = row.def;
    if (def.param_type != PF_Param_POINT) return def;
    // A default is in percent of the layer, 16.16.
    const LayerPoint declared{def.u.td.x_dephault / kFixedOne, def.u.td.y_dephault / kFixedOne, true};
    LayerPoint point = row.point.value_or(declared);
    if (point.isPercent) {
        point.x = point.x * 0.01 * geometry.width;
        point.y = point.y * 0.01 * geometry.height;
    }
    def.u.td.x_value = ToFixed(point.x * Ratio(geometry.downsampleX));
    def.u.td.y_value = ToFixed(point.y * Ratio(geometry.downsampleY));
    return def;
}

void ParamSet::TakeValue(int index, const PF_ParamDef& def, const LayerGeometry& geometry) {
    ParamRow& row = rows_[static_cast<std::size_t>(index)];
    if (def.param_type != row.def.param_type) return;
    if (def.param_type == PF_Param_POINT) {
        row.point = LayerPoint{def.u.td.x_value / kFixedOne / Ratio(geometry.downsampleX),
                               def.u.td.y_value / kFixedOne / Ratio(geometry.downsampleY)};
        return;
    }
    if (def.param_type == PF_Param_LAYER) return;
    row.def.u = def.u;
    if (const char** pointer = TextPointer(row.def)) *pointer = row.text->c_str();
}

void ParamSet::SetValue(int index, const PF_ParamDefUnion& u, const std::optional<LayerPoint>& point) {
    ParamRow& row = rows_[static_cast<std::size_t>(index)];
    row.def.u = u;
    row.point = point;
    if (const char** pointer = TextPointer(row.def)) *pointer = row.text->c_str();
}

}  // namespace umbrant::host
