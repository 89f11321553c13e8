// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One row of an effect's parameters: what the effect declared, and the value it has now.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hostapi/params.h"

namespace umbrant::host {

/// A position in pixels of the full-size layer, or in percent of its size.
struct LayerPoint {
    double x = 0;
    double y = 0;
    bool isPercent = false;
    bool operator==(const LayerPoint&) const = default;
};

/// One declared row.
struct ParamRow {
    int index = 0;
    /// The whole definition as the effect gave it, with the current value in its value field. Text pointers lead to
    /// `text`, which outlives the effect's call. A point's value field is not used: see `point`.
    PF_ParamDef def{};
    std::string name;
    /// Group path, lower case with hyphens; empty for a row that only its index reaches (unnamed rows, group ends).
    std::string path;
    /// Popup items in order, separators ("(-") included; empty for other types.
    std::vector<std::string> items;
    /// A button's or check box's label.
    std::string label;
    /// Nesting depth: 0 outside every group.
    int depth = 0;
    /// A point's value once one was set; the declared default, in percent of the layer, holds until then.
    std::optional<LayerPoint> point;
    std::shared_ptr<const std::string> text;  ///< what the definition's text pointer leads to
};

}  // namespace umbrant::host
