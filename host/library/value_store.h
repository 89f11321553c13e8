// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a Values holds: the values and keyframes of an effect at a moment, which its copies share, and the rows that
// were set since.

#include <umbrant/effect.h>
#include <umbrant/values.h>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "host/animation/preset.h"

namespace umbrant {

namespace host {

struct ValueStore {
    /// A row that was set. Without its texts and items, so that a copy of many is cheap.
    struct SetRow {
        int index = 0;
        PF_ParamDefUnion u{};
        std::optional<LayerPoint> point;
    };

    std::shared_ptr<const AnimatedParams> base;
    std::vector<SetRow> rows;  ///< each once

    /// The row with its present value. Fails with `ErrorKind::kUsage` when there is no such row.
    Result<ParamRow> Find(std::string_view path) const;
    void Keep(const ParamRow& row);
    /// The values at the time of the options, which were checked. A row that was set keeps still.
    ParamSet At(const FrameOptions& options) const;
};

/// Whether two sets have the same rows, so that values of one are values of the other.
bool HaveSameRows(const ParamSet& a, const ParamSet& b);

}  // namespace host

struct Values::State {
    host::ValueStore store;
};

}  // namespace umbrant
