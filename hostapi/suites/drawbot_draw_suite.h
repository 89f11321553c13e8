// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From a drawing reference to its supplier and surface.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_DrawSuiteName[] = "DRAWBOT Draw Suite";
inline constexpr int32_t kDRAWBOT_DrawSuite_Version1 = 1;

struct DRAWBOT_DrawbotSuite1 {
    SPErr (*GetSupplier)(DRAWBOT_DrawRef in_drawbot_ref, DRAWBOT_SupplierRef* out_supplierP);
    SPErr (*GetSurface)(DRAWBOT_DrawRef in_drawbot_ref, DRAWBOT_SurfaceRef* out_surfaceP);
};
