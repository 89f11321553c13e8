// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The parameters of one effect instance: what the effect declared, and the values they have now. The host knows
// parameters only from the declaration; from outside a row is named by its group path ("style/distance") or by its
// index ("#17").

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/parameters/param_row.h"
#include "host/result.h"

namespace umbrant::host {

/// What turns the outside's values into what the effect sees.
struct LayerGeometry {
    int width = 0;  ///< the layer's full size, pixels
    int height = 0;
    PF_RationalScale downsampleX{1, 1};
    PF_RationalScale downsampleY{1, 1};
};

/// Copyable: a frame renders with the values that held when it was asked for.
class ParamSet {
 public:
    /// Starts with row 0, the layer that the effect is applied to, which the host supplies.
    ParamSet();

    /// Records a row. `index` is -1 or the next free index. Returns the error for the effect:
    /// `PF_Err_INVALID_INDEX`, `PF_Err_UNRECOGNIZED_PARAM_TYPE`, `PF_Err_BAD_CALLBACK_PARAM` (no definition) or none.
    PF_Err Add(PF_ParamIndex index, const PF_ParamDef* def);
    /// Ends the declaration. Returns what is wrong with its groups (an end without a start, a group left open), or an
    /// empty text.
    std::string Finish();

    int Count() const { return static_cast<int>(rows_.size()); }
    const std::vector<ParamRow>& Rows() const { return rows_; }
    const ParamRow& Row(int index) const { return rows_[static_cast<std::size_t>(index)]; }

    /// The row's whole record, for a host that hands an effect what no panel would let through. A point's value is in
    /// `point`.
    ParamRow& RawRow(int index) { return rows_[static_cast<std::size_t>(index)]; }

    /// The index of the row that "group/name" or "#index" names. Fails with `ErrorKind::kUsage` and the nearest right
    /// names, also when two rows share the name.
    Result<int> Find(std::string_view path) const;
    /// Sets a row's value from its text: a number (percent sliders as shown, a trailing % allowed), an angle in
    /// degrees, `x,y` in pixels of the full-size layer or `x%,y%` of its size, `#rrggbb`, a popup item's text or
    /// 1-based number, on/off. Fails with `ErrorKind::kUsage`, changing nothing.
    Result<Done> SetFromText(std::string_view path, std::string_view text);

    /// The current value in the form that SetFromText takes; empty for a row without one. Popup values as item text in
    /// path form (the number where the item has none), points that were never set as "x%,y%".
    std::string ValueText(int index) const;
    /// The declared default in the same form.
    std::string DefaultText(int index) const;

    /// Takes over a value that the effect wrote into a checked-out definition of the row; the type must be the row's.
    void TakeValue(int index, const PF_ParamDef& def, const LayerGeometry& geometry);

    /// Sets the row's value to that of a copy of the set in another process: `u` and `point` are what they are in that
    /// copy's ParamRow. Text pointers in `u` are not followed.
    void SetValue(int index, const PF_ParamDefUnion& u, const std::optional<LayerPoint>& point);

    /// A copy of the row's definition with the value that the effect sees: points in 16.16 downsampled pixels.
    PF_ParamDef CheckOut(int index, const LayerGeometry& geometry) const;

 private:
    std::vector<ParamRow> rows_;
    std::vector<int> openGroups_;  ///< indices of the groups that enclose the next row
    std::string groupProblem_;
};

/// What a person calls the type: "slider", "popup", "group", ...
const char* ParamTypeName(PF_ParamType type);

}  // namespace umbrant::host
