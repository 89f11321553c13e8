// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "DRAWBOT Supplier Suite" 1: makes pens, brushes, fonts, paths and images.

#include "hostapi/suites/drawbot_supplier_suite.h"

#include <cmath>
#include <utility>

#include "host/suites/drawbot/canvas.h"
#include "host/suites/drawbot/objects.h"
#include "host/suites/drawbot/text.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

/// Hands out a new object in the shape of its reference.
template <typename Reference>
SPErr HandOut(DrawObject object, Reference* reference) {
    *reference = reinterpret_cast<Reference>(NewDrawObject(std::move(object)));
    return kSPNoError;
}

bool IsColor(const DRAWBOT_ColorRGBA* color) {
    return color && std::isfinite(color->red) && std::isfinite(color->green) && std::isfinite(color->blue) &&
           std::isfinite(color->alpha);
}

SPErr NewPen(DRAWBOT_SupplierRef supplier, const DRAWBOT_ColorRGBA* color, float size, DRAWBOT_PenRef* pen) {
    const bool good = DrawbotCanvas::Of(supplier, "NewPen") && IsColor(color) && std::isfinite(size) && size >= 0;
    return good && pen ? HandOut(DrawPen{*color, size}, pen) : PF_Err_BAD_CALLBACK_PARAM;
}

SPErr NewBrush(DRAWBOT_SupplierRef supplier, const DRAWBOT_ColorRGBA* color, DRAWBOT_BrushRef* brush) {
    const bool good = DrawbotCanvas::Of(supplier, "NewBrush") && IsColor(color);
    return good && brush ? HandOut(DrawBrush{*color}, brush) : PF_Err_BAD_CALLBACK_PARAM;
}

SPErr GetDefaultFontSize(DRAWBOT_SupplierRef supplier, float* size) {
    if (!DrawbotCanvas::Of(supplier, "GetDefaultFontSize") || !size) return PF_Err_BAD_CALLBACK_PARAM;
    *size = kPanelTypeSize;
    return kSPNoError;
}

SPErr NewDefaultFont(DRAWBOT_SupplierRef supplier, float size, DRAWBOT_FontRef* font) {
    const bool good = DrawbotCanvas::Of(supplier, "NewDefaultFont") && std::isfinite(size) && size > 0;
    return good && font ? HandOut(DrawFont{size}, font) : PF_Err_BAD_CALLBACK_PARAM;
}

SPErr NewImageFromBuffer(DRAWBOT_SupplierRef supplier, int width, int height, int rowBytes, DRAWBOT_PixelLayout layout,
                         const void* data, DRAWBOT_ImageRef* image) {
    const DrawbotCanvas* canvas = DrawbotCanvas::Of(supplier, "NewImageFromBuffer");
    if (!canvas || !image) return PF_Err_BAD_CALLBACK_PARAM;
    auto pixels = ImageFromBytes(canvas->On(), width, height, rowBytes, layout, data);
    return pixels ? HandOut(DrawImage{std::move(pixels)}, image) : PF_Err_BAD_CALLBACK_PARAM;
}

SPErr NewPath(DRAWBOT_SupplierRef supplier, DRAWBOT_PathRef* path) {
    const DrawbotCanvas* canvas = DrawbotCanvas::Of(supplier, "NewPath");
    if (!canvas || !path) return PF_Err_BAD_CALLBACK_PARAM;
    return HandOut(DrawPath{canvas->On().MakePath()}, path);
}

/// What this supplier can do, whatever the question.
template <DRAWBOT_Boolean Answer>
SPErr Can(DRAWBOT_SupplierRef supplier, DRAWBOT_Boolean* answer) {
    if (!DrawbotCanvas::Of(supplier, "a query of the supplier") || !answer) return PF_Err_BAD_CALLBACK_PARAM;
    *answer = Answer;
    return kSPNoError;
}

SPErr RetainObject(DRAWBOT_ObjectRef object) {
    return RetainDrawObject(object) ? kSPNoError : PF_Err_BAD_CALLBACK_PARAM;
}

SPErr ReleaseObject(DRAWBOT_ObjectRef object) {
    return ReleaseDrawObject(object) ? kSPNoError : PF_Err_BAD_CALLBACK_PARAM;
}

template <FixedText Call, auto Function>
using Slot = Served<kDRAWBOT_SupplierSuiteName, Call, Function>;

}  // namespace

const DRAWBOT_SupplierSuite1 kDrawbotSupplierSuite = {
    .NewPen = Slot<"NewPen", NewPen>(),
    .NewBrush = Slot<"NewBrush", NewBrush>(),
    .SupportsText = Slot<"SupportsText", Can<1>>(),
    .GetDefaultFontSize = Slot<"GetDefaultFontSize", GetDefaultFontSize>(),
    .NewDefaultFont = Slot<"NewDefaultFont", NewDefaultFont>(),
    .NewImageFromBuffer = Slot<"NewImageFromBuffer", NewImageFromBuffer>(),
    .NewPath = Slot<"NewPath", NewPath>(),
    .SupportsPixelLayoutBGRA = Slot<"SupportsPixelLayoutBGRA", Can<1>>(),
    .PrefersPixelLayoutBGRA = Slot<"PrefersPixelLayoutBGRA", Can<1>>(),
    .SupportsPixelLayoutARGB = Slot<"SupportsPixelLayoutARGB", Can<1>>(),
    .PrefersPixelLayoutARGB = Slot<"PrefersPixelLayoutARGB", Can<0>>(),
    .RetainObject = Slot<"RetainObject", RetainObject>(),
    .ReleaseObject = Slot<"ReleaseObject", ReleaseObject>(),
};

}  // namespace umbrant::host
