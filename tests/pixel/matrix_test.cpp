// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The transforms: row-vector convention, order of application, exact sums, and the host's sine and cosine.

#include "pixel/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

PF_FloatMatrix Numbers(double first, double step) {
    PF_FloatMatrix m;
    for (int i = 0; i < 9; ++i) m.mat[i / 3][i % 3] = first + step * i;
    return m;
}

bool SameBits(const PF_FloatMatrix& a, const PF_FloatMatrix& b) {
    return std::memcmp(&a, &b, sizeof(a)) == 0;
}

struct Mapped {
    double x, y;
};
Mapped Map(const PF_FloatMatrix& m, double x, double y) {
    return {x * m.mat[0][0] + y * m.mat[1][0] + m.mat[2][0], x * m.mat[0][1] + y * m.mat[1][1] + m.mat[2][1]};
}

PF_FloatMatrix Identity() {
    PF_FloatMatrix m = Numbers(7, 7);
    EXPECT_EQ(SetIdentityMatrix(&m), PF_Err_NONE);
    return m;
}

TEST(Matrix, Identity) {
    EXPECT_TRUE(SameBits(Identity(), {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}));
}

TEST(Matrix, ConcatMultipliesOnTheRight) {
    const PF_FloatMatrix src = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 10}}};
    PF_FloatMatrix dst = {{{2, 0, 1}, {1, 3, 0}, {0, 5, 4}}};
    CCU_ConcatMatrix(&src, &dst);
    EXPECT_TRUE(SameBits(dst, {{{9, 12, 16}, {13, 17, 21}, {48, 57, 70}}}));
}

TEST(Matrix, ConcatWithItself) {
    PF_FloatMatrix m = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 10}}};
    CCU_ConcatMatrix(&m, &m);
    EXPECT_TRUE(SameBits(m, {{{30, 36, 45}, {66, 81, 102}, {109, 134, 169}}}));
}

// (k0 + k1) + k2: any other order loses the 1 here.
TEST(Matrix, ConcatSumsInOrder) {
    const PF_FloatMatrix src = {{{1e16, 0, 0}, {-1e16, 0, 0}, {1, 0, 0}}};
    PF_FloatMatrix dst = {{{1, 1, 1}, {0, 0, 0}, {0, 0, 0}}};
    CCU_ConcatMatrix(&src, &dst);
    EXPECT_EQ(dst.mat[0][0], 1.0);
    const PF_FloatMatrix other = {{{1, 0, 0}, {1e16, 0, 0}, {-1e16, 0, 0}}};
    PF_FloatMatrix lost = {{{1, 1, 1}, {0, 0, 0}, {0, 0, 0}}};
    CCU_ConcatMatrix(&other, &lost);
    EXPECT_EQ(lost.mat[0][0], 0.0);
}

TEST(Matrix, RightHandMatrices) {
    PF_FloatMatrix m = Identity();
    EXPECT_EQ(TranslateMatrix(&m, 3, -4), PF_Err_NONE);
    EXPECT_TRUE(SameBits(m, {{{1, 0, 0}, {0, 1, 0}, {3, -4, 1}}}));
    m = Identity();
    EXPECT_EQ(SkewMatrix(&m, 2, 5), PF_Err_NONE);
    EXPECT_TRUE(SameBits(m, {{{1, 5, 0}, {2, 1, 0}, {0, 0, 1}}}));
    m = Identity();
    EXPECT_EQ(ScaleMatrix(&m, 2, 5), PF_Err_NONE);
    EXPECT_TRUE(SameBits(m, {{{2, 0, 0}, {0, 5, 0}, {0, 0, 1}}}));
}

TEST(Matrix, SkewTakesNoTangent) {
    PF_FloatMatrix m = Identity();
    SkewMatrix(&m, 0.5, 0.25);
    const Mapped p = Map(m, 8, 16);
    EXPECT_EQ(p.x, 8 + 0.5 * 16);
    EXPECT_EQ(p.y, 0.25 * 8 + 16);
}

TEST(Matrix, ChainsApplyInTheOrderOfTheCalls) {
    PF_FloatMatrix m = Identity();
    TranslateMatrix(&m, 1, 2);
    ScaleMatrix(&m, 10, 100);
    const Mapped moved = Map(m, 5, 5);
    EXPECT_EQ(moved.x, 60);
    EXPECT_EQ(moved.y, 700);
    m = Identity();
    ScaleMatrix(&m, 10, 100);
    TranslateMatrix(&m, 1, 2);
    EXPECT_EQ(Map(m, 5, 5).x, 51);
}

TEST(Matrix, ScaleByOneDoesNotTouch) {
    PF_FloatMatrix m = Numbers(0.1, 0.7);
    m.mat[1][1] = -0.0;
    m.mat[0][0] = std::nan("");
    const PF_FloatMatrix before = m;
    EXPECT_EQ(ScaleMatrix(&m, 1, 1), PF_Err_NONE);
    EXPECT_TRUE(SameBits(m, before));
    PF_FloatMatrix other = Numbers(1, 1);
    ScaleMatrix(&other, 1, 2);
    EXPECT_TRUE(SameBits(other, {{{1, 4, 3}, {4, 10, 6}, {7, 16, 9}}}));
}

TEST(RotateMatrix, QuarterTurnAndItsMatrix) {
    TestHost host;
    PF_FloatMatrix m = Identity();
    EXPECT_EQ(RotateMatrix(&m, &host.inData, 90, 0, 0), PF_Err_NONE);
    const Mapped p = Map(m, 1, 0);
    EXPECT_NEAR(p.x, 0, 1e-15);
    EXPECT_NEAR(p.y, 1, 1e-15);

    const double theta = 30.0 * 0.017453292519943295;
    const double c = std::cos(theta), s = std::sin(theta);
    m = Identity();
    RotateMatrix(&m, &host.inData, 30, 7, 11);
    EXPECT_TRUE(SameBits(m, {{{c, s, 0}, {-s, c, 0}, {s * 11 + (1 - c) * 7, (1 - c) * 11 - s * 7, 1}}}));
    const Mapped centre = Map(m, 7, 11);
    EXPECT_NEAR(centre.x, 7, 1e-12);
    EXPECT_NEAR(centre.y, 11, 1e-12);
    std::string why;
    EXPECT_TRUE(host.Balanced(&why)) << why;
}

double FakeSin(double angle) {
    return angle * 1000;
}
double FakeCos(double angle) {
    return angle * -10;
}

TEST(RotateMatrix, TakesSineAndCosineFromTheHost) {
    TestHost host;
    host.ansiSuite.sin = FakeSin;
    host.ansiSuite.cos = FakeCos;
    PF_FloatMatrix m = Identity();
    RotateMatrix(&m, &host.inData, 2, 0, 0);
    const double theta = 2 * 0.017453292519943295;
    EXPECT_EQ(m.mat[0][0], theta * -10);
    EXPECT_EQ(m.mat[0][1], theta * 1000);
    EXPECT_EQ(m.mat[1][0], -(theta * 1000));
    EXPECT_EQ(host.CountOf("AcquireSuite PF ANSI Suite 1"), 1);
    EXPECT_EQ(host.CountOf("ReleaseSuite PF ANSI Suite 1"), 1);
}

TEST(RotateMatrix, ZeroDegreesAcquiresNothing) {
    TestHost host;
    host.Refuse("PF ANSI Suite");
    PF_FloatMatrix m = Numbers(0.1, 0.7);
    const PF_FloatMatrix before = m;
    EXPECT_EQ(RotateMatrix(&m, &host.inData, 0, 3, 4), PF_Err_NONE);
    EXPECT_EQ(RotateMatrix(&m, &host.inData, -0.0, 3, 4), PF_Err_NONE);
    EXPECT_TRUE(SameBits(m, before));
    EXPECT_TRUE(host.calls.empty());
}

int ThrownBy(PF_InData* inData, double degrees) {
    PF_FloatMatrix m = Identity();
    try {
        RotateMatrix(&m, inData, degrees, 0, 0);
    } catch (PF_Err err) {
        return err;
    }
    return 0;
}

TEST(RotateMatrix, MissingSuites) {
    TestHost host;
    host.Refuse("PF ANSI Suite");
    EXPECT_EQ(ThrownBy(&host.inData, 1), 516);
    host.inData.pica_basicP = nullptr;
    EXPECT_EQ(ThrownBy(&host.inData, 1), 516);
    EXPECT_EQ(ThrownBy(&host.inData, 0), 516) << "the basic suite is looked at before the angle";
}

}  // namespace

}  // namespace umbrant::effect
