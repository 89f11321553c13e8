// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The reach of each shadow type as rows of data. The expected rectangles were computed by a separate program from the
// formulas, in the precision that they name.

#include "render/pre_render/pre_render_rects.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

static bool operator==(const PF_LRect& a, const PF_LRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

namespace umbrant::effect {

void PrintTo(const PF_LRect& r, std::ostream* out) {
    *out << '{' << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << '}';
}

namespace {

PreRenderInputs Layer200x100(double scale) {
    PreRenderInputs in;
    in.scale = scale;
    in.layerWidth = 200;
    in.layerHeight = 100;
    return in;
}

PF_LRect WholeLayer(const PreRenderInputs& in) {
    return {0, 0, static_cast<A_long>(in.layerWidth * in.scale), static_cast<A_long>(in.layerHeight * in.scale)};
}

struct NormalRow {
    const char* name;
    double scale, angle, distance, softness, offset, expansion;
    PF_LRect input, result, max;
};

const NormalRow kNormalRows[] = {
    {"defaults", 1, 135.0, 250, 250, 1, 0, {0, 0, 200, 100}, {-62, -62, 565, 464}, {-62, -62, 565, 464}},
    {"no reach at all", 1, 135.0, 0, 0, 0, 0, {0, 0, 200, 100}, {0, 0, 200, 100}, {0, 0, 200, 100}},
    {"softness alone grows by its quarter and its half",
     1,
     135.0,
     0,
     50,
     0,
     0,
     {0, 0, 200, 100},
     {-37, -37, 237, 137},
     {-37, -37, 237, 137}},
    {"half resolution halves every growth",
     0.5,
     135.0,
     250,
     250,
     1,
     30,
     {0, 0, 100, 50},
     {-47, -47, 298, 247},
     {-47, -47, 298, 247}},
    {"buffer expansion enters twice",
     1,
     0.0,
     0,
     0,
     0,
     25,
     {0, 0, 200, 100},
     {-26, -26, 226, 126},
     {-26, -26, 226, 126}},
    {"angle 0 goes up", 1, 0.0, 40, 0, 0, 0, {0, 0, 200, 100}, {0, -40, 200, 100}, {0, -40, 200, 100}},
    {"angle 90 goes right", 1, 90.0, 40, 0, 0, 0, {0, 0, 200, 100}, {0, 0, 240, 100}, {0, 0, 240, 100}},
    {"angle 180 goes down, the ceiling eats a pixel",
     1,
     180.0,
     40,
     0,
     0,
     0,
     {0, 0, 200, 100},
     {0, 0, 200, 139},
     {0, 0, 200, 139}},
    {"angle 270 goes left, a rounding row above",
     1,
     270.0,
     40,
     0,
     0,
     0,
     {0, 0, 200, 100},
     {-39, -1, 200, 100},
     {-39, -1, 200, 100}},
    {"angle beyond a turn", 1, 765.5, 33.3, 7.7, 2.2, 3, {0, 0, 200, 100}, {-5, -33, 234, 105}, {-5, -33, 234, 105}},
    {"negative angle", 1, -45.0, 33.3, 7.7, 2.2, 3, {0, 0, 200, 100}, {-33, -34, 205, 105}, {-33, -34, 205, 105}},
};

TEST(NormalRects, Table) {
    for (const NormalRow& row : kNormalRows) {
        SCOPED_TRACE(row.name);
        PreRenderInputs in = Layer200x100(row.scale);
        in.angleDeg = row.angle;
        in.distance = row.distance;
        in.softness = row.softness;
        in.offsetShadow = row.offset;
        in.bufferExpansion = row.expansion;
        const PreRenderRects rects = NormalRects(in, row.input, ClampToLayer(WholeLayer(in), in));
        EXPECT_EQ(rects.result, row.result);
        EXPECT_EQ(rects.max, row.max);
    }
}

TEST(NormalRects, EmptyInputKeepsItsRectangle) {
    PreRenderInputs in = Layer200x100(1);
    in.distance = 10;
    in.softness = 10;
    const PF_LRect empty = {7, 7, 7, 9};
    const PreRenderRects rects = NormalRects(in, empty, ClampToLayer(WholeLayer(in), in));
    EXPECT_EQ(rects.result, empty);
    EXPECT_EQ(rects.max, (PF_LRect{-7, -17, 207, 102}));
}

TEST(NormalRects, CrossedLayerLeavesOnePixel) {
    // A layer far outside its own frame: cut, its rectangle crosses, and only the shadow's reach is left of it.
    PreRenderInputs in = Layer200x100(1);
    const PF_LRect crossed = ClampToLayer({500, 300, 600, 400}, in);
    EXPECT_EQ(crossed, (PF_LRect{500, 300, 200, 100}));
    const PreRenderRects rects = NormalRects(in, {0, 0, 10, 10}, crossed);
    EXPECT_EQ(rects.max, (PF_LRect{199, 99, 200, 100}));
    EXPECT_EQ(rects.result, (PF_LRect{0, 0, 200, 100}));
}

TEST(NormalRects, SumsSaturate) {
    PreRenderInputs in = Layer200x100(1);
    in.distance = 1e300;
    const PreRenderRects rects = NormalRects(in, {0, 0, 200, 100}, ClampToLayer(WholeLayer(in), in));
    EXPECT_EQ(rects.max.top, -std::numeric_limits<int32_t>::max());
    in.distance = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(NormalRects(in, {0, 0, 200, 100}, ClampToLayer(WholeLayer(in), in)).max, (PF_LRect{0, 0, 200, 100}));
}

TEST(NormalOffsets, AreTakenFromTheOutputsMaxRectangle) {
    PreRenderData record{};
    RecordNormalOffsets({0, 0, 200, 100}, {-62, -60, 565, 463}, &record);
    EXPECT_EQ(record.originDeltaX, 62);
    EXPECT_EQ(record.originDeltaY, 60);
    EXPECT_EQ(record.layerOffset2X, (200 - 565) + 62);
    EXPECT_EQ(record.layerOffset2Y, (100 - 463) + 60);
    EXPECT_EQ(record.centreOffsetX, -151.5);
    EXPECT_EQ(record.centreOffsetY, -151.5);
}

TEST(ClampToLayer, CutsThenGrowsByHalfTheExpansionRoundedUp) {
    PreRenderInputs in = Layer200x100(1);
    EXPECT_EQ(ClampToLayer({-10, -20, 300, 400}, in), (PF_LRect{0, 0, 200, 100}));
    in.bufferExpansion = 5;
    EXPECT_EQ(ClampToLayer({-10, -20, 300, 400}, in), (PF_LRect{-3, -3, 203, 103}));
    EXPECT_EQ(ClampToLayer({10, 20, 30, 40}, in), (PF_LRect{7, 17, 33, 43}));
    in.scale = 0.5;
    EXPECT_EQ(BufferExpansionPixels(in), 2) << "a quarter of 5, rounded up";
    EXPECT_EQ(ClampToLayer({-10, -20, 300, 400}, in), (PF_LRect{-2, -2, 102, 52}));
    in.layerWidth = 201;
    EXPECT_EQ(ClampToLayer({0, 0, 300, 400}, in).right, 102) << "100.5 truncates";
}

TEST(ClampToLayer, HorizontalFactorServesHeights) {
    // Intended: downsample_x scales heights too, so a different vertical factor is not looked at.
    PreRenderInputs in = Layer200x100(0.25);
    EXPECT_EQ(ClampToLayer({0, 0, 1000, 1000}, in), (PF_LRect{0, 0, 50, 25}));
}

struct InnerRow {
    const char* name;
    double angle;
    int left, top, right, bottom;
    PF_LRect grown;
};

// "Distance" 60, "Offset Shadow" 1, "Softness" 20: 61 pixels of travel, at least 10 on every side.
const InnerRow kInnerRows[] = {
    {"0 degrees", 0, 10, 10, 10, 61, {-10, -10, 210, 161}},
    {"45 degrees", 45, 44, 10, 10, 44, {-44, -10, 210, 144}},
    {"90 degrees: neither top nor bottom", 90, 61, 10, 10, 10, {-61, -10, 210, 110}},
    {"135 degrees", 135, 44, 43, 10, 10, {-44, -43, 210, 110}},
    {"180 degrees: neither left nor right", 180, 10, 60, 10, 10, {-10, -60, 210, 110}},
    {"225 degrees", 225, 10, 43, 43, 10, {-10, -43, 243, 110}},
    {"270 degrees", 270, 10, 10, 60, 10, {-10, -10, 260, 110}},
    {"315 degrees", 315, 10, 10, 43, 44, {-10, -10, 243, 144}},
    {"negative turns back into range", -90, 10, 10, 60, 10, {-10, -10, 260, 110}},
    {"beyond a turn", 405.5, 44, 10, 10, 43, {-44, -10, 210, 143}},
};

TEST(InnerRects, Table) {
    for (const InnerRow& row : kInnerRows) {
        SCOPED_TRACE(row.name);
        PreRenderInputs in = Layer200x100(1);
        in.angleDeg = row.angle;
        in.distance = 60;
        in.offsetShadow = 1;
        in.softness = 20;
        PreRenderData record{};
        const PF_LRect layer = WholeLayer(in);
        const PreRenderRects rects = InnerRects(in, layer, ClampToLayer(layer, in), &record);
        EXPECT_EQ(record.innerGrowLeft, row.left);
        EXPECT_EQ(record.innerGrowTop, row.top);
        EXPECT_EQ(record.innerGrowRight, row.right);
        EXPECT_EQ(record.innerGrowBottom, row.bottom);
        EXPECT_EQ(rects.result, row.grown);
        EXPECT_EQ(rects.max, row.grown);
    }
}

TEST(InnerRects, RightAngleWithoutTravelGrowsByHalfTheSoftness) {
    PreRenderInputs in = Layer200x100(1);
    in.angleDeg = 90;
    in.softness = 20;
    PreRenderData record{};
    const PreRenderRects rects = InnerRects(in, WholeLayer(in), WholeLayer(in), &record);
    EXPECT_EQ(record.innerGrowLeft, 10);
    EXPECT_EQ(rects.result, (PF_LRect{-10, -10, 210, 110}));
}

TEST(InnerRects, MaxRectangleKeepsTheBufferExpansion) {
    PreRenderInputs in = Layer200x100(0.5);
    in.angleDeg = 135;
    in.distance = 60;
    in.offsetShadow = 1;
    in.softness = 20;
    in.bufferExpansion = 200;
    PreRenderData record{};
    const PreRenderRects rects = InnerRects(in, {0, 0, 100, 50}, ClampToLayer({0, 0, 100, 50}, in), &record);
    EXPECT_EQ(rects.result, (PF_LRect{-22, -21, 105, 55}));
    EXPECT_EQ(rects.max, (PF_LRect{-50, -50, 150, 100}));
}

struct RadialRow {
    const char* name;
    double scale, originX, originY, distance, softness, expansion;
    PF_LRect reach;
    double placeX, placeY;
};

const RadialRow kRadialRows[] = {
    {"from the corner", 1, 0, 0, 100, 0, 0, {0, 0, 400, 200}, 0, 0},
    {"from the middle, soft", 1, 100, 50, 50, 40, 0, {-119, -94, 319, 194}, -109, -84},
    {"from far away", 1, -300, 500, 20, 9.5, 12, {-8, -125, 325, 108}, 0, -117},
    {"no distance: the softness alone", 1, 100, 50, 0, 16, 0, {-36, -36, 236, 136}, -32, -32},
    {"a fraction of the softness is dropped first", 1, 0, 0, 0, 9.5, 0, {-20, -20, 220, 120}, -18, -18},
    {"half resolution", 0.5, 30, 20, 250, 250, 10, {-266, -241, 466, 316}, -232, -207},
};

TEST(RadialRects, Table) {
    for (const RadialRow& row : kRadialRows) {
        SCOPED_TRACE(row.name);
        PreRenderInputs in = Layer200x100(row.scale);
        in.originX = row.originX;
        in.originY = row.originY;
        in.distance = row.distance;
        in.softness = row.softness;
        in.bufferExpansion = row.expansion;
        PreRenderData record{};
        PF_LRect grown{};
        const PreRenderRects rects = RadialRects(in, ClampToLayer(WholeLayer(in), in), &grown);
        RecordRadialPlacement(rects.result, grown, &record);
        EXPECT_EQ(rects.result, row.reach);
        EXPECT_EQ(rects.max, row.reach);
        EXPECT_EQ(record.centreOffsetX, row.placeX);
        EXPECT_EQ(record.centreOffsetY, row.placeY);
    }
}

TEST(RadialRects, OnePixelIsLeftOfAnEmptyLayer) {
    PreRenderInputs in = Layer200x100(1);
    in.distance = 100;
    PF_LRect grown{};
    EXPECT_EQ(RadialRects(in, {50, 40, 50, 40}, &grown).result, (PF_LRect{99, 79, 100, 80}));
}

TEST(RadialRects, CollapsedLayerStaysInsideTheComposition) {
    PreRenderInputs in = Layer200x100(1);
    in.distance = 100;
    in.collapsed = true;
    PF_LRect grown{};
    EXPECT_EQ(RadialRects(in, {0, 0, 200, 100}, &grown).result, (PF_LRect{0, 0, 200, 100}));
    // Even where the scaled copy lies wholly outside, a pixel of the composition is left.
    in.originX = -4000;
    in.originY = -4000;
    const PreRenderRects rects = RadialRects(in, {50, 50, 50, 50}, &grown);
    EXPECT_EQ(rects.result, (PF_LRect{199, 99, 200, 100}));
}

TEST(ClampToComposition, KeepsAPixel) {
    const PreRenderInputs in = Layer200x100(0.5);
    EXPECT_EQ(ClampToComposition({-10, -10, 300, 300}, in), (PF_LRect{0, 0, 100, 50}));
    EXPECT_EQ(ClampToComposition({-30, 10, -20, 20}, in), (PF_LRect{0, 10, 1, 20}));
    EXPECT_EQ(ClampToComposition({400, 300, 500, 400}, in), (PF_LRect{99, 49, 100, 50}));
}

}  // namespace

}  // namespace umbrant::effect
