// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The transforms, each built as a right-hand matrix and concatenated.

#include "pixel/matrix.h"

#include "entry/suites/suite_handler.h"

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;

}  // namespace

void CCU_ConcatMatrix(const PF_FloatMatrix* src, PF_FloatMatrix* dst) {
    PF_FloatMatrix product;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            // The order of the sum is part of the result.
            product.mat[row][column] =
                (dst->mat[row][0] * src->mat[0][column] + dst->mat[row][1] * src->mat[1][column]) +
                dst->mat[row][2] * src->mat[2][column];
        }
    }
    *dst = product;
}

PF_Err SetIdentityMatrix(PF_FloatMatrix* m) {
    *m = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    return PF_Err_NONE;
}

PF_Err TranslateMatrix(PF_FloatMatrix* m, double tx, double ty) {
    const PF_FloatMatrix translation = {{{1, 0, 0}, {0, 1, 0}, {tx, ty, 1}}};
    CCU_ConcatMatrix(&translation, m);
    return PF_Err_NONE;
}

PF_Err SkewMatrix(PF_FloatMatrix* m, double kx, double ky) {
    const PF_FloatMatrix skew = {{{1, ky, 0}, {kx, 1, 0}, {0, 0, 1}}};
    CCU_ConcatMatrix(&skew, m);
    return PF_Err_NONE;
}

PF_Err ScaleMatrix(PF_FloatMatrix* m, double sx, double sy) {
    if (sx == 1.0 && sy == 1.0) return PF_Err_NONE;
    const PF_FloatMatrix scale = {{{sx, 0, 0}, {0, sy, 0}, {0, 0, 1}}};
    CCU_ConcatMatrix(&scale, m);
    return PF_Err_NONE;
}

PF_Err RotateMatrix(PF_FloatMatrix* m, PF_InData* in_data, double degrees, double cx, double cy) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    if (degrees == 0.0) return PF_Err_NONE;
    const PF_ANSICallbacksSuite1* ansi = suites.ANSICallbacksSuite1();
    const double theta = degrees * kRadiansPerDegree;
    const double c = ansi->cos(theta);
    const double s = ansi->sin(theta);
    const PF_FloatMatrix rotation = {{{c, s, 0}, {-s, c, 0}, {s * cy + (1.0 - c) * cx, (1.0 - c) * cy - s * cx, 1}}};
    CCU_ConcatMatrix(&rotation, m);
    return PF_Err_NONE;
}
