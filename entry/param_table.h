// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The parameter table: one row per parameter, in index order. The set-up, the count and the documentation derive from
// it. Neither name nor disk id is a key: names occur twice, and one disk id is shared on purpose.

#include <array>

#include "entry/global_data.h"
#include "entry/param_ids.h"
#include "hostapi/params.h"

namespace umbrant::effect {

/// Ranges of a float slider, in the parameter's own unit. `initial` is value and default.
struct FloatSliderRow {
    float validMin;
    float validMax;
    float sliderMin;
    float sliderMax;
    float initial;
    PF_Precision precision;
    PF_ValueDisplayFlags display;
};

/// One parameter as it is declared to the host. What does not belong to its type is zero.
struct ParamRow {
    ParamIndex index;
    A_long diskId;  ///< what projects store; never to be changed
    PF_ParamType type;
    const char* name;  ///< null: the effect's name with its version
    PF_ParamFlags flags = PF_ParamFlag_NONE;
    PF_ParamUIFlags uiFlags = PF_PUI_NONE;
    A_short uiWidth = 0;  ///< self-drawn area, panel pixels
    A_short uiHeight = 0;
    FloatSliderRow slider{};
    const char* items = nullptr;  ///< popup: texts separated by '|'
    A_short itemCount = 0;
    A_short initialItem = 0;                          ///< 1-based
    char (GlobalData::*driverString)[100] = nullptr;  ///< popup: the one item, instead of `items`
    const char* label = nullptr;                      ///< button: the text on its face
    A_long initialDegrees = 0;                        ///< angle
    PF_Pixel initialColour{};
    A_short arbitraryId = 0;
};

using ParamTable = std::array<ParamRow, PARAM_NUM_PARAMS>;

/// Row i is parameter i. Row 0 is the layer that the effect is applied to, which the host supplies itself.
extern const ParamTable kParamTable;

}  // namespace umbrant::effect
