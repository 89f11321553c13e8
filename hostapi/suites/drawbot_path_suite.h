// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Builds paths.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_PathSuiteName[] = "DRAWBOT Path Suite";
inline constexpr int32_t kDRAWBOT_PathSuite_Version1 = 1;

struct DRAWBOT_PathSuite1 {
    SPErr (*MoveTo)(DRAWBOT_PathRef in_path_ref, float in_x, float in_y);
    SPErr (*LineTo)(DRAWBOT_PathRef in_path_ref, float in_x, float in_y);
    SPErr (*BezierTo)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_PointF32* in_pt1P, const DRAWBOT_PointF32* in_pt2P,
                      const DRAWBOT_PointF32* in_pt3P);
    SPErr (*AddRect)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_RectF32* in_rectPR);
    SPErr (*AddArc)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_PointF32* in_centerP, float in_radius,
                    float in_start_angle, float in_sweep);
    SPErr (*Close)(DRAWBOT_PathRef in_path_ref);
};
