// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Contexts, references and objects: what they lead to, how they are counted, and how wrong ones are detected.

#include <limits>

#include "tests/host/suites/drawbot_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(DrawbotTest, AContextLeadsToItsSupplierAndSurface) {
    DRAWBOT_DrawRef reference = nullptr;
    ASSERT_EQ(kEffectCustomUISuite.PF_GetDrawingReference(canvas->Context(), &reference), 0);
    ASSERT_NE(reference, nullptr);
    EXPECT_EQ((*canvas->Context())->magic, PF_CONTEXT_MAGIC);
    EXPECT_EQ((*canvas->Context())->w_type, PF_Window_EFFECT);
    EXPECT_EQ((*canvas->Context())->reserved_drawref, reference);
    DRAWBOT_SupplierRef itsSupplier = nullptr;
    DRAWBOT_SurfaceRef itsSurface = nullptr;
    EXPECT_EQ(kDrawbotDrawSuite.GetSupplier(reference, &itsSupplier), 0);
    EXPECT_EQ(kDrawbotDrawSuite.GetSurface(reference, &itsSurface), 0);
    EXPECT_EQ(itsSupplier, supplier);
    EXPECT_EQ(itsSurface, surface);
    EXPECT_NE(static_cast<void*>(itsSupplier), static_cast<void*>(itsSurface));
    EXPECT_EQ(kEffectCustomUISuite.PF_GetDrawingReference(canvas->Context(), nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_THAT(services.Misbehaviour(), IsEmpty());
}

TEST_F(DrawbotTest, NoReferenceOutlivesItsDrawEvent) {
    const PF_ContextH context = canvas->Context();
    const DRAWBOT_DrawRef draw = canvas->Draw();
    canvas.reset();
    DRAWBOT_DrawRef reference = draw;
    EXPECT_EQ(kEffectCustomUISuite.PF_GetDrawingReference(context, &reference), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(reference, nullptr);
    EXPECT_EQ(kDrawbotDrawSuite.GetSupplier(draw, &supplier), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotDrawSuite.GetSurface(draw, &surface), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(Image(1, 1, 4, 6, "abcd"), nullptr);
    EXPECT_EQ(Paint(kRedColor, {0, 0, 1, 1}), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_THAT(services.Misbehaviour(),
                ElementsAre("PF_GetDrawingReference was called with an invalid or released context",
                            "GetSupplier was called with an invalid or released drawing reference",
                            "GetSurface was called with an invalid or released drawing reference",
                            "NewImageFromBuffer was called with an invalid or released supplier",
                            "PaintRect was called with an invalid or released surface"));
}

TEST_F(DrawbotTest, TwoCanvasesAreToldApart) {
    const std::unique_ptr<Drawing> other = NewPicture();
    {
        DrawbotCanvas second(*other, 1.0f);
        float scale = 0;
        EXPECT_EQ(kDrawbotSurfaceSuite.GetTransformToScreenScale(second.Surface(), &scale), 0);
        EXPECT_EQ(scale, 1.0f);
        EXPECT_EQ(kDrawbotSurfaceSuite.GetTransformToScreenScale(surface, &scale), 0);
        EXPECT_EQ(scale, 2.0f);
        const DRAWBOT_Rect32 rect{0, 0, 4, 4};
        EXPECT_EQ(kDrawbotSurfaceSuite.Clip(surface, second.Supplier(), &rect), PF_Err_BAD_CALLBACK_PARAM);
    }
}

TEST_F(DrawbotTest, ObjectsAreCountedUntilTheirLastUserIsGone) {
    DRAWBOT_PenRef pen = nullptr;
    DRAWBOT_FontRef font = nullptr;
    EXPECT_EQ(kDrawbotSupplierSuite.NewPen(supplier, &kRedColor, 1.5f, &pen), 0);
    EXPECT_EQ(kDrawbotSupplierSuite.NewDefaultFont(supplier, 11, &font), 0);
    const DRAWBOT_BrushRef brush = Brush(kRedColor);
    const DRAWBOT_PathRef path = Path();
    const DRAWBOT_ImageRef image = Image(1, 1, 4, 6, "abcd");
    EXPECT_EQ(Objects(), 5);
    EXPECT_EQ(services.tally.Snapshot().Text(), "drawing objects 5");

    const auto object = reinterpret_cast<DRAWBOT_ObjectRef>(image);
    EXPECT_EQ(kDrawbotSupplierSuite.RetainObject(object), 0);
    Release(image);
    EXPECT_EQ(Objects(), 5) << "it has a user left";
    Release(image);
    Release(pen);
    Release(font);
    Release(brush);
    Release(path);
    EXPECT_EQ(Objects(), 0);
    EXPECT_THAT(services.Misbehaviour(), IsEmpty());

    EXPECT_EQ(kDrawbotSupplierSuite.ReleaseObject(object), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.RetainObject(object), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.ReleaseObject(nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(Objects(), 0);
    EXPECT_THAT(services.Misbehaviour(), ElementsAre("an invalid or released drawing object was released",
                                                     "an invalid or released drawing object was retained",
                                                     "an invalid or released drawing object was released"));
}

TEST_F(DrawbotTest, AnObjectOfAnotherKindIsRefused) {
    const DRAWBOT_PathRef path = Path();
    const DRAWBOT_BrushRef brush = Brush(kRedColor);
    EXPECT_EQ(kDrawbotSurfaceSuite.FillPath(surface, reinterpret_cast<DRAWBOT_BrushRef>(path), path, 1), 516);
    EXPECT_EQ(kDrawbotPathSuite.MoveTo(reinterpret_cast<DRAWBOT_PathRef>(brush), 0, 0), 516);
    EXPECT_EQ(kDrawbotSurfaceSuite.StrokePath(surface, nullptr, path), 516);
    EXPECT_THAT(services.Misbehaviour(),
                ElementsAre("FillPath was called with a drawing object of another kind",
                            "MoveTo was called with a drawing object of another kind",
                            "StrokePath was called with an invalid or released drawing object"));
    Release(path);
    Release(brush);
}

TEST_F(DrawbotTest, TheSupplierSaysWhatItCan) {
    DRAWBOT_Boolean answer = 9;
    float size = 0;
    EXPECT_EQ(kDrawbotSupplierSuite.SupportsText(supplier, &answer), 0);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(kDrawbotSupplierSuite.SupportsPixelLayoutBGRA(supplier, &answer), 0);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(kDrawbotSupplierSuite.PrefersPixelLayoutARGB(supplier, &answer), 0);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(kDrawbotSupplierSuite.SupportsPixelLayoutARGB(supplier, &answer), 0);
    EXPECT_EQ(answer, 1);
    answer = 0;
    EXPECT_EQ(kDrawbotSupplierSuite.PrefersPixelLayoutBGRA(supplier, &answer), 0);
    EXPECT_EQ(answer, 1);
    EXPECT_EQ(kDrawbotSupplierSuite.GetDefaultFontSize(supplier, &size), 0);
    EXPECT_EQ(size, 11.0f);
    EXPECT_EQ(kDrawbotSupplierSuite.SupportsText(supplier, nullptr), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(DrawbotTest, NonsenseMakesNoObject) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    const DRAWBOT_ColorRGBA noColor{none, 0, 0, 1};
    DRAWBOT_PenRef pen = nullptr;
    DRAWBOT_FontRef font = nullptr;
    DRAWBOT_BrushRef brush = nullptr;
    EXPECT_EQ(kDrawbotSupplierSuite.NewPen(supplier, &noColor, 1, &pen), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewPen(supplier, &kRedColor, -1, &pen), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewPen(supplier, &kRedColor, 1, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewBrush(supplier, nullptr, &brush), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewDefaultFont(supplier, 0, &font), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewDefaultFont(supplier, none, &font), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSupplierSuite.NewPath(supplier, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    const char bytes[64] = {};
    EXPECT_EQ(Image(0, 1, 4, 6, bytes), nullptr);
    EXPECT_EQ(Image(1, -1, 4, 6, bytes), nullptr);
    EXPECT_EQ(Image(2, 1, 7, 6, bytes), nullptr) << "rows shorter than the image";
    EXPECT_EQ(Image(2, 1, 5, 0, bytes), nullptr);
    EXPECT_NE(Image(2, 1, 6, 0, bytes), nullptr);
    EXPECT_EQ(Image(1, 1, 4, 8, bytes), nullptr);
    EXPECT_EQ(Image(1, 1, 4, -1, bytes), nullptr);
    EXPECT_EQ(Image(1, 1, 4, 6, nullptr), nullptr);
    EXPECT_EQ(Image(1 << 30, 1, std::numeric_limits<int>::max(), 6, bytes), nullptr);
    EXPECT_EQ(Objects(), 1);
}

TEST_F(DrawbotTest, TheFaultHookReachesTheDrawingSuites) {
    services.fault = [](std::string_view call) { return call == "DRAWBOT Supplier Suite.NewBrush" ? 4 : 0; };
    DRAWBOT_BrushRef brush = nullptr;
    EXPECT_EQ(kDrawbotSupplierSuite.NewBrush(supplier, &kRedColor, &brush), 4);
    EXPECT_EQ(brush, nullptr);
}

TEST_F(DrawbotTest, WhatWasPushedAndNotPoppedIsReportedAndUndone) {
    EXPECT_EQ(kDrawbotSurfaceSuite.PopStateStack(surface), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kDrawbotSurfaceSuite.PushStateStack(surface), 0);
    EXPECT_EQ(kDrawbotSurfaceSuite.PushStateStack(surface), 0);
    const DRAWBOT_MatrixF32 half{{{0.5f, 0, 0}, {0, 0.5f, 0}, {0, 0, 0.5f}}};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &half), 0);
    canvas.reset();
    EXPECT_EQ(drawing->Matrix().xx, 1.0);
    EXPECT_THAT(services.Misbehaviour(), ElementsAre("a drawing state was popped that had not been pushed",
                                                     "a drawing state was pushed and not popped, 2 in all"));
}

TEST_F(DrawbotTest, AMatrixThatIsLeftIsUndone) {
    const DRAWBOT_MatrixF32 half{{{0.5f, 0, 0}, {0, 0.5f, 0}, {0, 0, 0.5f}}};
    EXPECT_EQ(kDrawbotSurfaceSuite.Transform(surface, &half), 0);
    canvas.reset();
    EXPECT_EQ(drawing->Matrix().xx, 1.0);
}

}  // namespace

}  // namespace umbrant::host
