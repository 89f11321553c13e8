// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// 3 x 3 transforms in double precision. A point (x, y) maps to (x, y, 1) M, so the translation is in the third row
// and a chain of calls applies its transforms in the order of the calls.

#include "hostapi/commands.h"
#include "hostapi/geometry.h"

/// dst becomes dst src. Both may be the same matrix.
void CCU_ConcatMatrix(const PF_FloatMatrix* src, PF_FloatMatrix* dst);

/// m becomes the identity. Returns 0.
PF_Err SetIdentityMatrix(PF_FloatMatrix* m);

/// Appends a translation by (tx, ty). Returns 0.
PF_Err TranslateMatrix(PF_FloatMatrix* m, double tx, double ty);

/// Appends x' = x + kx y, y' = ky x + y; the factors are used as given, no tangent is taken. Returns 0.
PF_Err SkewMatrix(PF_FloatMatrix* m, double kx, double ky);

/// Appends a scale by (sx, sy); does not touch m when both are exactly 1. Returns 0.
PF_Err ScaleMatrix(PF_FloatMatrix* m, double sx, double sy);

/// Appends a rotation by `degrees` about (cx, cy), with the sine and cosine of the host's ANSI suite; leaves m alone,
/// and the suite unacquired, at exactly 0. Returns 0; throws 516 when the basic suite or the ANSI suite is missing.
PF_Err RotateMatrix(PF_FloatMatrix* m, PF_InData* in_data, double degrees, double cx, double cy);
