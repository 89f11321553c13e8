// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect's panel as the effect has left it: which rows are hidden, disabled or collapsed.

#include <string>
#include <vector>

#include "host/process/fork_lock.h"
#include "hostapi/params.h"

namespace umbrant::host {

/// One row of the panel.
struct PanelRow {
    PF_ParamType type = PF_Param_LAYER;
    std::string name;
    bool hidden = false;
    bool disabled = false;
    bool collapsed = false;
    int updates = 0;  ///< how often the effect has changed the row's looks since it was declared

    bool operator==(const PanelRow&) const = default;
};

/// The rows in the order of their declaration, row 0 the layer itself. Safe on every thread.
class PanelState {
 public:
    /// Starts again from a declaration.
    void Reset(std::vector<PanelRow> rows);
    std::vector<PanelRow> Rows() const;
    int Count() const;

    /// Takes over the looks (name, disabled, collapsed) of an updated definition.
    /// Returns false, and changes nothing, when there is no such row or its type differs.
    bool Update(int index, const PF_ParamDef& def);
    /// False when there is no such row.
    bool SetHidden(int index, bool hidden);
    /// False when there is no such row.
    bool SetDisabled(int index, bool disabled);
    /// Opens or closes a row's twirl, as the user does. False when there is no such row.
    bool SetCollapsed(int index, bool collapsed);
    /// The name of the options button; empty while the effect has set none.
    void SetOptionsButton(std::string name);
    std::string OptionsButton() const;

 private:
    mutable ForkLock mutex_;
    std::vector<PanelRow> rows_;
    std::string optionsButton_;
};

/// How a declared row looks before the effect changes anything.
PanelRow DeclaredPanelRow(const PF_ParamDef& def);

}  // namespace umbrant::host
