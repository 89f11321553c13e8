// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From a drawing reference to the two objects that draw.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error, and only after a zero may an out-parameter be read.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_DrawSuiteName[] = "DRAWBOT Draw Suite";
inline constexpr int32_t kDRAWBOT_DrawSuite_Version1 = 1;

struct DRAWBOT_DrawbotSuite1 {
    /// The maker of pens, brushes, paths and images. It stays the host's and lives as long as the draw event. [main]
    SPErr (*GetSupplier)(DRAWBOT_DrawRef in_drawbot_ref, DRAWBOT_SupplierRef* out_supplierP);
    /// The panel area to draw on. It stays the host's and lives as long as the draw event. [main]
    SPErr (*GetSurface)(DRAWBOT_DrawRef in_drawbot_ref, DRAWBOT_SurfaceRef* out_surfaceP);
};
