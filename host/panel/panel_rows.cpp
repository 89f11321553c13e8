// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_rows.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>

#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"

namespace umbrant::host {

namespace {

constexpr std::string_view kAll = "all";

/// The path of the group around a row; empty outside of groups.
std::string GroupPath(const ParamSet& params, int index) {
    int depth = 0;
    for (int i = index - 1; i > 0; --i) {
        const ParamKind kind = KindOf(params.Row(i).def);
        if (kind == ParamKind::kGroupEnd) ++depth;
        if (kind == ParamKind::kGroup && depth-- == 0) return params.Row(i).path;
    }
    return "";
}

/// A name as it is typed, each part of its path in the form that names have: "Free Plugins" is "free-plugins".
std::string TypedForm(std::string_view name) {
    if (name.starts_with('#')) return std::string(name);
    std::string form;
    for (std::size_t begin = 0; begin <= name.size();) {
        const std::size_t end = std::min(name.find('/', begin), name.size());
        form += (begin == 0 ? "" : "/") + PathForm(name.substr(begin, end - begin));
        begin = end + 1;
    }
    return form;
}

/// What a button answers to, the shortest first.
std::vector<std::string> ButtonNames(const ParamSet& params, const ParamRow& row) {
    std::vector<std::string> names;
    const std::string face = PathForm(row.label);
    const std::string group = GroupPath(params, row.index);
    if (!face.empty()) names.push_back(face);
    if (!face.empty() && !group.empty()) names.push_back(group + "/" + face);
    if (!row.path.empty()) names.push_back(row.path);
    names.push_back(fmt::format("#{}", row.index));
    return names;
}

bool HasTwirl(const PanelRow& row) {
    const ParamKind kind = KindOf(row.type);
    return kind == ParamKind::kGroup || kind == ParamKind::kAngle || IsSlider(kind);
}

/// Whether the effect has taken a row out of the panel, itself or with a group around it.
bool IsHidden(const ParamSet& params, const std::vector<PanelRow>& rows, int index) {
    if (rows[static_cast<std::size_t>(index)].hidden) return true;
    int depth = 0;
    for (int i = index - 1; i > 0; --i) {
        const ParamKind kind = KindOf(params.Row(i).def);
        if (kind == ParamKind::kGroupEnd) ++depth;
        if (kind == ParamKind::kGroup && depth-- == 0) {
            if (rows[static_cast<std::size_t>(i)].hidden) return true;
            depth = 0;
        }
    }
    return false;
}

}  // namespace

Result<int> FindButton(const EffectSession& session, std::string_view name) {
    const ParamSet& params = session.Params();
    std::vector<int> found;
    std::vector<std::string> known;
    const std::string form = TypedForm(name);
    for (const ParamRow& row : params.Rows()) {
        if (KindOf(row.def) != ParamKind::kButton) continue;
        const std::vector<std::string> names = ButtonNames(params, row);
        known.insert(known.end(), names.begin(), names.end());
        if (std::find(names.begin(), names.end(), form) != names.end()) found.push_back(row.index);
    }
    if (found.empty()) {
        const auto near = Nearest(form, known, 2);
        return Failure{
            ErrorKind::kUsage,
            known.empty() ? fmt::format("there is no button '{}'; the effect has no buttons", name)
            : near.empty()
                ? fmt::format("there is no button '{}'; the buttons are: '{}'", name, fmt::join(known, "', '"))
                : fmt::format("there is no button '{}'; closest: '{}'", name, fmt::join(near, "', '"))};
    }
    if (found.size() > 1) {
        return Failure{ErrorKind::kUsage, fmt::format("several buttons are called '{}'; press one by its index: #{}",
                                                      name, fmt::join(found, ", #"))};
    }
    const std::vector<PanelRow> rows = session.Panel().Rows();
    if (IsHidden(params, rows, found.front())) {
        return Failure{ErrorKind::kUsage, fmt::format("the button '{}' is hidden", name)};
    }
    if (rows[static_cast<std::size_t>(found.front())].disabled) {
        return Failure{ErrorKind::kUsage, fmt::format("the button '{}' is disabled", name)};
    }
    return found.front();
}

std::vector<std::string> TwirlNames(const EffectSession& session) {
    std::vector<std::string> names{std::string(kAll)};
    const std::vector<PanelRow> rows = session.Panel().Rows();
    for (const ParamRow& row : session.Params().Rows()) {
        if (!row.path.empty() && HasTwirl(rows[static_cast<std::size_t>(row.index)])) names.push_back(row.path);
    }
    return names;
}

Result<Done> Twirl(EffectSession& session, std::string_view name, bool open) {
    const std::vector<PanelRow> rows = session.Panel().Rows();
    if (name == kAll) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (HasTwirl(rows[i])) session.SetTwirl(static_cast<int>(i), !open);
        }
        return Done{};
    }
    const auto index = TRY(session.Params().Find(name));
    if (!HasTwirl(rows[static_cast<std::size_t>(index)])) {
        return Failure{ErrorKind::kUsage, fmt::format("'{}' cannot be opened or closed", name)};
    }
    session.SetTwirl(index, !open);
    return Done{};
}

}  // namespace umbrant::host
