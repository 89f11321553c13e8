// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/panel_state.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace umbrant::host {

namespace {

/// The name field, which an effect may have filled to its last byte.
std::string NameOf(const PF_ParamDef& def) {
    const char* begin = std::begin(def.name_do_not_use_directly);
    const char* end = std::end(def.name_do_not_use_directly);
    return {begin, std::find(begin, end, '\0')};
}

}  // namespace

PanelRow DeclaredPanelRow(const PF_ParamDef& def) {
    PanelRow row;
    row.type = def.param_type;
    row.name = NameOf(def);
    row.hidden = (def.ui_flags & (PF_PUI_NO_ECW_UI | PF_PUI_INVISIBLE)) != 0;
    row.disabled = (def.ui_flags & PF_PUI_DISABLED) != 0;
    row.collapsed = (def.flags & PF_ParamFlag_START_COLLAPSED) != 0;
    return row;
}

void PanelState::Reset(std::vector<PanelRow> rows) {
    const std::lock_guard lock(mutex_);
    rows_ = std::move(rows);
}

std::vector<PanelRow> PanelState::Rows() const {
    const std::lock_guard lock(mutex_);
    return rows_;
}

int PanelState::Count() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(rows_.size());
}

bool PanelState::Update(int index, const PF_ParamDef& def) {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= static_cast<int>(rows_.size())) return false;
    PanelRow& row = rows_[static_cast<std::size_t>(index)];
    if (row.type != def.param_type) return false;
    const PanelRow looks = DeclaredPanelRow(def);
    row.name = looks.name;
    row.disabled = looks.disabled;
    row.collapsed = looks.collapsed;
    ++row.updates;
    return true;
}

bool PanelState::SetHidden(int index, bool hidden) {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= static_cast<int>(rows_.size())) return false;
    rows_[static_cast<std::size_t>(index)].hidden = hidden;
    ++rows_[static_cast<std::size_t>(index)].updates;
    return true;
}

bool PanelState::SetDisabled(int index, bool disabled) {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= static_cast<int>(rows_.size())) return false;
    rows_[static_cast<std::size_t>(index)].disabled = disabled;
    ++rows_[static_cast<std::size_t>(index)].updates;
    return true;
}

bool PanelState::SetCollapsed(int index, bool collapsed) {
    const std::lock_guard lock(mutex_);
    if (index < 0 || index >= static_cast<int>(rows_.size())) return false;
    rows_[static_cast<std::size_t>(index)].collapsed = collapsed;
    return true;
}

void PanelState::SetOptionsButton(std::string name) {
    const std::lock_guard lock(mutex_);
    optionsButton_ = std::move(name);
}

std::string PanelState::OptionsButton() const {
    const std::lock_guard lock(mutex_);
    return optionsButton_;
}

}  // namespace umbrant::host
