// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Builds a path that the supplier made. Coordinates are panel pixels, y downwards.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_PathSuiteName[] = "DRAWBOT Path Suite";
inline constexpr int32_t kDRAWBOT_PathSuite_Version1 = 1;

struct DRAWBOT_PathSuite1 {
    /// Begins a new figure at a point. [main]
    SPErr (*MoveTo)(DRAWBOT_PathRef in_path_ref, float in_x, float in_y);
    /// Adds a straight line from the current point. [main]
    SPErr (*LineTo)(DRAWBOT_PathRef in_path_ref, float in_x, float in_y);
    /// Adds a cubic curve from the current point: two control points, then the end point. [main]
    SPErr (*BezierTo)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_PointF32* in_pt1P, const DRAWBOT_PointF32* in_pt2P,
                      const DRAWBOT_PointF32* in_pt3P);
    /// Adds a closed rectangle. [main]
    SPErr (*AddRect)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_RectF32* in_rectPR);
    /// Adds an arc about a centre; angles in degrees. [main]
    SPErr (*AddArc)(DRAWBOT_PathRef in_path_ref, const DRAWBOT_PointF32* in_centerP, float in_radius,
                    float in_start_angle, float in_sweep);
    /// Closes the current figure with a straight line to its start. [main]
    SPErr (*Close)(DRAWBOT_PathRef in_path_ref);
};
