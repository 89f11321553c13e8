// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the drawing suites leave in the picture, by pixel.

#include <cmath>
#include <limits>

#include "host/suites/drawbot/text.h"
#include "tests/host/suites/drawbot_fixture.h"

namespace umbrant::host {

namespace {

const DRAWBOT_MatrixF32 kHalf{{{0.5f, 0, 0}, {0, 0.5f, 0}, {0, 0, 0.5f}}};
const DRAWBOT_MatrixF32 kTwice{{{2, 0, 0}, {0, 2, 0}, {0, 0, 2}}};

TEST_F(DrawbotTest, PaintsARectangle) {
    EXPECT_EQ(Paint(kRedColor, {2, 3, 4, 5}), 0);
    EXPECT_EQ(Covered(), 20);
    EXPECT_EQ(At(2, 3), kRed);
    EXPECT_EQ(At(5, 7), kRed);
    EXPECT_EQ(At(6, 7), kClear);
    EXPECT_EQ(Paint({0, 1, 0, 0.5f}, {0, 0, 1, 1}), 0);
    EXPECT_EQ(At(0, 0), (Premultiplied{128, 0, 128, 0})) << "straight alpha";
    EXPECT_EQ(Paint({0, 0, 1, 0.5f}, {2, 3, 1, 1}), 0);
    EXPECT_EQ(At(2, 3), (Premultiplied{255, 127, 0, 128})) << "over what is there";
    EXPECT_EQ(Paint(kRedColor, {std::nanf(""), 0, 1, 1}), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSurfaceSuite.PaintRect(surface, nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
}

struct LayoutRow {
    const char* name;
    DRAWBOT_PixelLayout layout;
    unsigned char bytes[4];
    int pixelBytes;
    Premultiplied drawn;
};

TEST_F(DrawbotTest, EveryLayoutOfAnImage) {
    const LayoutRow rows[] = {
        {"24 RGB", 0, {10, 20, 30}, 3, {255, 10, 20, 30}},
        {"24 BGR", 1, {10, 20, 30}, 3, {255, 30, 20, 10}},
        {"32 RGB", 2, {10, 20, 30, 0}, 4, {255, 10, 20, 30}},
        {"32 BGR", 3, {10, 20, 30, 0}, 4, {255, 30, 20, 10}},
        {"ARGB straight", 4, {128, 255, 100, 0}, 4, {128, 128, 50, 0}},
        {"ARGB premultiplied", 5, {128, 100, 50, 0}, 4, {128, 100, 50, 0}},
        {"BGRA straight", 6, {0, 100, 255, 128}, 4, {128, 128, 50, 0}},
        {"BGRA premultiplied", 7, {0, 50, 100, 128}, 4, {128, 100, 50, 0}},
        {"a premultiplied channel above its alpha", 7, {200, 50, 100, 128}, 4, {128, 100, 50, 128}},
        {"a clear straight pixel has no colour", 6, {255, 255, 255, 0}, 4, {0, 0, 0, 0}},
    };
    for (const LayoutRow& row : rows) {
        SCOPED_TRACE(row.name);
        Clear();
        // Two rows with padding between them; the second is all zero but for the one that must be read.
        std::vector<unsigned char> bytes(static_cast<std::size_t>(2 * (row.pixelBytes + 5)), 0xEE);
        for (int i = 0; i < row.pixelBytes; ++i) bytes[static_cast<std::size_t>(row.pixelBytes + 5 + i)] = row.bytes[i];
        const DRAWBOT_ImageRef image = Image(1, 2, row.pixelBytes + 5, row.layout, bytes.data());
        ASSERT_NE(image, nullptr);
        bytes.assign(bytes.size(), 0);  // the host has its own copy
        const DRAWBOT_PointF32 origin{3, 4};
        EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, 1), 0);
        EXPECT_EQ(At(3, 5), row.drawn);
        EXPECT_EQ(At(4, 5), kClear);
        EXPECT_EQ(At(3, 6), kClear);
        Release(image);
    }
}

TEST_F(DrawbotTest, DrawsAnImageAtHalfItsSizeAndUndoesTheScale) {
    unsigned char bytes[8 * 4 * 4];
    for (int i = 0; i < 8 * 4; ++i) {
        const unsigned char green[4] = {0, 255, 0, 255};
        std::copy(green, green + 4, bytes + 4 * i);
    }
    const DRAWBOT_ImageRef image = Image(8, 4, 32, kDRAWBOT_PixelLayout_32BGRA_Straight, bytes);
    const DRAWBOT_PointF32 origin{4, 6};  // in the half-size space
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &kHalf), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, 1), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &kTwice), 0);
    EXPECT_EQ(At(2, 3), kGreen);
    EXPECT_EQ(At(5, 4), kGreen);
    EXPECT_EQ(At(1, 3), kClear);
    EXPECT_EQ(At(6, 3), kClear);
    EXPECT_EQ(At(2, 2), kClear);
    EXPECT_EQ(At(2, 5), kClear);
    EXPECT_EQ(Paint(kRedColor, {10, 10, 1, 1}), 0);
    EXPECT_EQ(At(10, 10), kRed) << "the scale is gone";
    EXPECT_EQ(At(11, 10), kClear);
    Release(image);
}

TEST_F(DrawbotTest, AnImageMadeSmallerIsAveraged) {
    // Columns of red and of blue: half as wide, both are in every pixel.
    unsigned char bytes[8 * 4];
    for (int x = 0; x < 8; ++x) {
        const unsigned char pixel[4] = {static_cast<unsigned char>(x % 2 ? 255 : 0), 0,
                                        static_cast<unsigned char>(x % 2 ? 0 : 255), 255};
        std::copy(pixel, pixel + 4, bytes + 4 * x);
    }
    const DRAWBOT_ImageRef image = Image(8, 1, 32, kDRAWBOT_PixelLayout_32BGRA_Straight, bytes);
    const DRAWBOT_MatrixF32 narrow{{{0.5f, 0, 0}, {0, 4, 0}, {0, 0, 1}}};
    const DRAWBOT_PointF32 origin{0, 0};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &narrow), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, 1), 0);
    EXPECT_NEAR(At(1, 1).red, 128, 24);
    EXPECT_NEAR(At(1, 1).blue, 128, 24);
    Release(image);
}

TEST_F(DrawbotTest, InterpolationDecidesHowAnImageGrows) {
    const unsigned char bytes[8] = {0, 0, 255, 255, 255, 0, 0, 255};  // red, blue
    const DRAWBOT_ImageRef image = Image(2, 1, 8, kDRAWBOT_PixelLayout_32BGRA_Straight, bytes);
    const DRAWBOT_MatrixF32 eight{{{8, 0, 0}, {0, 8, 0}, {0, 0, 1}}};
    const DRAWBOT_PointF32 origin{0, 0};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &eight), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, 1), 0);
    EXPECT_EQ(At(7, 4), kRed);
    EXPECT_EQ(At(8, 4), kBlue);
    Clear();
    EXPECT_EQ(kDrawbotSurfaceSuite.SetInterpolationPolicy(surface, kDRAWBOT_InterpolationPolicy_Med), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, 1), 0);
    EXPECT_GT(At(7, 4).blue, 60);
    EXPECT_GT(At(8, 4).red, 60);
    DRAWBOT_InterpolationPolicy policy = -1;
    EXPECT_EQ(kDrawbotSurfaceSuite.GetInterpolationPolicy(surface, &policy), 0);
    EXPECT_EQ(policy, kDRAWBOT_InterpolationPolicy_Med);
    EXPECT_EQ(kDrawbotSurfaceSuite.SetInterpolationPolicy(surface, 3), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSurfaceSuite.SetInterpolationPolicy(surface, -1), PF_Err_BAD_CALLBACK_PARAM);
    Release(image);
}

TEST_F(DrawbotTest, AnImageFades) {
    const unsigned char white[4] = {255, 255, 255, 255};
    const DRAWBOT_ImageRef image = Image(1, 1, 4, kDRAWBOT_PixelLayout_32BGRA_Straight, white);
    for (const auto& [alpha, drawn] : {std::pair{0.5f, 128}, {0.0f, 0}, {1.0f, 255}, {7.0f, 255}, {-1.0f, 0}}) {
        Clear();
        const DRAWBOT_PointF32 origin{1, 1};
        EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &origin, alpha), 0);
        EXPECT_NEAR(At(1, 1).alpha, drawn, 1) << alpha;
    }
    const DRAWBOT_PointF32 nowhere{std::numeric_limits<float>::infinity(), 0};
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawImage(surface, image, &nowhere, 1), PF_Err_BAD_CALLBACK_PARAM);
    Release(image);
}

TEST_F(DrawbotTest, TransformsMultiplyAndTheThirdRowMoves) {
    const DRAWBOT_MatrixF32 moved{{{1, 0, 0}, {0, 1, 0}, {3, 5, 1}}};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &moved), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &kTwice), 0);
    EXPECT_EQ(Paint(kRedColor, {1, 1, 1, 1}), 0);
    EXPECT_EQ(At(5, 7), kRed) << "scaled first, then moved";
    EXPECT_EQ(At(6, 8), kRed);
    EXPECT_EQ(Covered(), 4);
    // Row vectors: the second number of the first row sends x to y.
    Clear();
    EXPECT_EQ(kDrawbotSurfaceSuite.PushStateStack(surface), 0);
    const DRAWBOT_MatrixF32 turned{{{0, 1, 0}, {1, 0, 0}, {0, 0, 1}}};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &turned), 0);
    EXPECT_EQ(Paint(kRedColor, {3, 0, 1, 1}), 0);
    EXPECT_EQ(At(3, 11), kRed);
    EXPECT_EQ(kDrawbotSurfaceSuite.PopStateStack(surface), 0);
}

TEST_F(DrawbotTest, AMatrixThatCannotBeUndoneIsRefused) {
    const DRAWBOT_MatrixF32 flat{{{1, 0, 0}, {0, 0, 0}, {0, 0, 1}}};
    const DRAWBOT_MatrixF32 endless{{{std::numeric_limits<float>::infinity(), 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &flat), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &endless), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(Paint(kRedColor, {0, 0, 1, 1}), 0);
    EXPECT_EQ(At(0, 0), kRed) << "drawing goes on";
}

TEST_F(DrawbotTest, ClipsUntilTheStateIsPopped) {
    const DRAWBOT_Rect32 clip{4, 4, 6, 3};
    EXPECT_EQ(kDrawbotSurfaceSuite.PushStateStack(surface), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.Clip(surface, supplier, &clip), 0);
    EXPECT_EQ(Paint(kRedColor, {0, 0, 16, 16}), 0);
    EXPECT_EQ(Covered(), 18);
    DRAWBOT_Rect32 bounds{};
    EXPECT_EQ(kDrawbotSurfaceSuite.GetClipBounds(surface, &bounds), 0);
    EXPECT_EQ(bounds.left, 4);
    EXPECT_EQ(bounds.top, 4);
    EXPECT_EQ(bounds.width, 6);
    EXPECT_EQ(bounds.height, 3);
    const struct {
        DRAWBOT_Rect32 rect;
        bool within;
    } rows[] = {{{4, 4, 6, 3}, true},  {{5, 5, 1, 1}, true},  {{3, 4, 6, 3}, false},
                {{4, 4, 7, 3}, false}, {{4, 4, 6, 4}, false}, {{4, 4, std::numeric_limits<int>::max(), 1}, false}};
    for (const auto& row : rows) {
        DRAWBOT_Boolean within = 9;
        EXPECT_EQ(kDrawbotSurfaceSuite.IsWithinClipBounds(surface, &row.rect, &within), 0);
        EXPECT_EQ(within != 0, row.within) << row.rect.left << " " << row.rect.width;
    }
    const DRAWBOT_Rect32 second{8, 0, 8, 16};
    EXPECT_EQ(kDrawbotSurfaceSuite.Clip(surface, supplier, &second), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.GetClipBounds(surface, &bounds), 0);
    EXPECT_EQ(bounds.left, 8) << "clips narrow each other";
    EXPECT_EQ(bounds.width, 2);
    EXPECT_EQ(kDrawbotSurfaceSuite.PopStateStack(surface), 0);
    EXPECT_EQ(Paint(kRedColor, {0, 0, 16, 16}), 0);
    EXPECT_EQ(Covered(), 256);
}

TEST_F(DrawbotTest, PoliciesComeBackWithTheState) {
    DRAWBOT_AntiAliasPolicy policy = -1;
    EXPECT_EQ(kDrawbotSurfaceSuite.PushStateStack(surface), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.SetAntiAliasPolicy(surface, kDRAWBOT_AntiAliasPolicy_High), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.GetAntiAliasPolicy(surface, &policy), 0);
    EXPECT_EQ(policy, kDRAWBOT_AntiAliasPolicy_High);
    EXPECT_EQ(kDrawbotSurfaceSuite.PopStateStack(surface), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.GetAntiAliasPolicy(surface, &policy), 0);
    EXPECT_EQ(policy, kDRAWBOT_AntiAliasPolicy_Default);
    EXPECT_EQ(kDrawbotSurfaceSuite.SetAntiAliasPolicy(surface, 3), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(DrawbotTest, AntiAliasDecidesHowAnEdgeLooks) {
    EXPECT_EQ(Paint(kRedColor, {0, 0, 2.5f, 1}), 0);
    EXPECT_TRUE(At(2, 0) == kRed || At(2, 0) == kClear) << At(2, 0);
    Clear();
    EXPECT_EQ(kDrawbotSurfaceSuite.SetAntiAliasPolicy(surface, kDRAWBOT_AntiAliasPolicy_Med), 0);
    EXPECT_EQ(Paint(kRedColor, {0, 0, 2.5f, 1}), 0);
    EXPECT_NEAR(At(2, 0).alpha, 128, 2);
}

TEST_F(DrawbotTest, FillsAPathByEitherRule) {
    const DRAWBOT_PathRef path = Path();
    const DRAWBOT_BrushRef brush = Brush(kBlueColor);
    const DRAWBOT_RectF32 outer{2, 2, 10, 10}, inner{4, 4, 4, 4};
    EXPECT_EQ(kDrawbotPathSuite.AddRect(path, &outer), 0);
    EXPECT_EQ(kDrawbotPathSuite.AddRect(path, &inner), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, path, kDRAWBOT_FillType_Winding), 0);
    EXPECT_EQ(Covered(), 100);
    EXPECT_EQ(At(5, 5), kBlue);
    Clear();
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, path, kDRAWBOT_FillType_EvenOdd), 0);
    EXPECT_EQ(Covered(), 84) << "the path is still there, and has a hole";
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, path, 2), PF_Err_BAD_CALLBACK_PARAM);
    Release(path);
    Release(brush);
}

TEST_F(DrawbotTest, DrawsOutlinesWithAPen) {
    const DRAWBOT_PathRef path = Path();
    DRAWBOT_PenRef pen = nullptr;
    EXPECT_EQ(kDrawbotSupplierSuite.NewPen(supplier, &kRedColor, 2, &pen), 0);
    EXPECT_EQ(kDrawbotPathSuite.MoveTo(path, 2, 5), 0);
    EXPECT_EQ(kDrawbotPathSuite.LineTo(path, 10, 5), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.StrokePath(surface, pen, path), 0);
    EXPECT_EQ(Covered(), 16) << "8 long, 2 wide";
    EXPECT_EQ(At(2, 4), kRed);
    EXPECT_EQ(At(9, 5), kRed);
    EXPECT_EQ(At(10, 5), kClear);
    Release(path);
    Release(pen);
}

TEST_F(DrawbotTest, CurvesArcsAndClosedFigures) {
    const DRAWBOT_BrushRef brush = Brush(kBlueColor);
    const DRAWBOT_PathRef round = Path();
    const DRAWBOT_PointF32 centre{8, 8};
    EXPECT_EQ(kDrawbotPathSuite.AddArc(round, &centre, 6, 0, 360), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, round, 1), 0);
    EXPECT_NEAR(Covered(), 113, 8) << "a disk of radius 6";
    EXPECT_EQ(At(8, 8), kBlue);
    EXPECT_EQ(At(2, 2), kClear);

    // Clockwise from the right: the first quarter lies below.
    Clear();
    const DRAWBOT_PathRef quarter = Path();
    EXPECT_EQ(kDrawbotPathSuite.MoveTo(quarter, 8, 8), 0);
    EXPECT_EQ(kDrawbotPathSuite.AddArc(quarter, &centre, 6, 0, 90), 0);
    EXPECT_EQ(kDrawbotPathSuite.Close(quarter), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, quarter, 1), 0);
    EXPECT_EQ(At(10, 10), kBlue);
    EXPECT_EQ(At(10, 5), kClear);
    EXPECT_EQ(At(5, 10), kClear);

    // Counterclockwise for a negative sweep.
    Clear();
    const DRAWBOT_PathRef back = Path();
    EXPECT_EQ(kDrawbotPathSuite.MoveTo(back, 8, 8), 0);
    EXPECT_EQ(kDrawbotPathSuite.AddArc(back, &centre, 6, 0, -90), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, back, 1), 0);
    EXPECT_EQ(At(10, 5), kBlue);
    EXPECT_EQ(At(10, 10), kClear);

    Clear();
    const DRAWBOT_PathRef curve = Path();
    const DRAWBOT_PointF32 first{0, 16}, second{16, 16}, end{16, 0};
    EXPECT_EQ(kDrawbotPathSuite.MoveTo(curve, 0, 0), 0);
    EXPECT_EQ(kDrawbotPathSuite.BezierTo(curve, &first, &second, &end), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, brush, curve, 1), 0);
    EXPECT_EQ(At(8, 11), kBlue) << "the curve's middle is at 12";
    EXPECT_EQ(At(8, 13), kClear);

    EXPECT_EQ(kDrawbotPathSuite.LineTo(curve, std::nanf(""), 0), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotPathSuite.AddArc(curve, &centre, -1, 0, 1), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotPathSuite.AddRect(curve, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    for (const DRAWBOT_PathRef path : {round, quarter, back, curve}) Release(path);
    Release(brush);
}

TEST_F(DrawbotTest, DrawsTextWhereItIsAligned) {
    DRAWBOT_FontRef font = nullptr;
    EXPECT_EQ(kDrawbotSupplierSuite.NewDefaultFont(supplier, 8, &font), 0);
    const DRAWBOT_BrushRef brush = Brush(kBlueColor);
    const DRAWBOT_UTF16Char text[] = {'H', 'H', 0};
    const auto left = [&](DRAWBOT_TextAlignment alignment) {
        Clear();
        const DRAWBOT_PointF32 origin{8, 12};
        EXPECT_EQ(kDrawbotSurfaceSuite.DrawString(surface, brush, font, text, &origin, alignment, 0, 0), 0);
        for (int x = 0; x < kSize; ++x) {
            for (int y = 0; y < kSize; ++y) {
                if (At(x, y) != kClear) return x;
            }
        }
        return kSize;
    };
    const int starts = left(kDRAWBOT_TextAlignment_Left);
    EXPECT_GE(starts, 8);
    EXPECT_LT(starts, kSize) << "something is drawn";
    EXPECT_EQ(At(starts, 13), kClear) << "above the line";
    EXPECT_LT(left(kDRAWBOT_TextAlignment_Center), 7);
    EXPECT_LT(left(kDRAWBOT_TextAlignment_Right), left(kDRAWBOT_TextAlignment_Center));
    EXPECT_EQ(kDrawbotSurfaceSuite.DrawString(surface, brush, font, nullptr, nullptr, 0, 0, 0), 516);
    EXPECT_EQ(kDrawbotSurfaceSuite.Flush(surface), 0);
    Release(font);
    Release(brush);
}

TEST(PanelText, ComesFromUtf16) {
    const struct {
        const char* name;
        std::vector<DRAWBOT_UTF16Char> units;
        const char* text;
    } rows[] = {
        {"plain", {'a', 'b', 0}, "ab"},
        {"two bytes", {0xE9, 0}, "\xC3\xA9"},
        {"three bytes", {0x20AC, 0}, "\xE2\x82\xAC"},
        {"a pair", {0xD83D, 0xDE00, 0}, "\xF0\x9F\x98\x80"},
        {"half a pair", {0xD83D, 'x', 0}, "\xEF\xBF\xBDx"},
        {"the other half", {0xDE00, 0}, "\xEF\xBF\xBD"},
        {"half a pair at the end", {0xD83D, 0}, "\xEF\xBF\xBD"},
        {"nothing", {0}, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(Utf8FromUtf16(row.units.data()), row.text) << row.name;
}

class FittedText : public DrawbotTest {};

TEST_F(FittedText, IsCutAsTheStyleSays) {
    drawing->SetFont(kPanelTypeface, 10);
    const std::string text = "abcdefghij\xC3\xA9\xC3\xA9";
    const double whole = drawing->TextWidth(text);
    EXPECT_GT(whole, 20);
    EXPECT_EQ(FitText(*drawing, text, whole, kDRAWBOT_TextTruncation_EndEllipsis), text);
    EXPECT_EQ(FitText(*drawing, text, 1, kDRAWBOT_TextTruncation_None), text);

    const std::string end = FitText(*drawing, text, whole / 2, kDRAWBOT_TextTruncation_End);
    EXPECT_TRUE(text.starts_with(end) && end.size() >= 3 && end.size() < text.size()) << end;
    EXPECT_LE(drawing->TextWidth(end), whole / 2);

    const std::string dots = FitText(*drawing, text, whole / 2, kDRAWBOT_TextTruncation_EndEllipsis);
    EXPECT_TRUE(dots.starts_with("ab") && dots.ends_with("\xE2\x80\xA6")) << dots;
    EXPECT_LE(drawing->TextWidth(dots), whole / 2);

    const std::string middle = FitText(*drawing, text, whole / 2, kDRAWBOT_TextTruncation_PathEllipsis);
    EXPECT_TRUE(middle.starts_with("a") && middle.ends_with("\xC3\xA9")) << middle;
    EXPECT_NE(middle.find("\xE2\x80\xA6"), std::string::npos);
    EXPECT_LE(drawing->TextWidth(middle), whole / 2);

    EXPECT_EQ(FitText(*drawing, text, 0, kDRAWBOT_TextTruncation_End), "");
}

}  // namespace

}  // namespace umbrant::host
