// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Drawing the banner through the host's drawing suites.

#include "entry/panel_drawing.h"

#include <cstdint>
#include <cstring>

#include "entry/banner.h"
#include "entry/suites/suite_handler.h"
#include "entry/suites/suite_scoper.h"
#include "entry/suites/without_throwing.h"
#include "pixel/locked_handle.h"

namespace umbrant::effect {

namespace {

/// The three drawing suites, released in the reverse order. What is missing throws 13 and says so to the user.
struct DrawingSuites {
    DrawingSuites(PF_InData* in_data, PF_OutData* out_data)
        : draw(in_data, kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1, out_data, nullptr),
          supplier(in_data, kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1, out_data, nullptr),
          surface(in_data, kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1, out_data, nullptr) {}

    AEFX_SuiteScoper<DRAWBOT_DrawbotSuite1> draw;
    AEFX_SuiteScoper<DRAWBOT_SupplierSuite1> supplier;
    AEFX_SuiteScoper<DRAWBOT_SurfaceSuite1> surface;
};

constexpr DRAWBOT_MatrixF32 Scale(float factor) {
    return {{{factor, 0.0f, 0.0f}, {0.0f, factor, 0.0f}, {0.0f, 0.0f, factor}}};
}

/// Where the banner's top left lies, in the half-size space in which it is drawn.
// Intended: horizontally only the frame's width counts, and the banner begins 62.5 panel pixels left of its middle.
DRAWBOT_PointF32 BannerOrigin(const PF_UnionableRect& frame) {
    const int64_t width = int64_t{frame.right} - frame.left;
    return {static_cast<float>(width) - 125.0f, static_cast<float>(2.0 * frame.top)};
}

PF_Err DrawAtHalfSize(const DRAWBOT_SurfaceSuite1* suite, DRAWBOT_SurfaceRef surface, DRAWBOT_ImageRef image,
                      const DRAWBOT_PointF32& origin) {
    constexpr DRAWBOT_MatrixF32 kHalf = Scale(0.5f);
    constexpr DRAWBOT_MatrixF32 kTwice = Scale(2.0f);
    PF_Err err = suite->Transform(surface, &kHalf);
    if (err == PF_Err_NONE) err = suite->DrawImage(surface, image, &origin, 1.0f);
    if (err == PF_Err_NONE) err = suite->Transform(surface, &kTwice);
    return err;
}

/// Draws the banner, or, when `err` says that there is nothing to draw on, only takes and gives back its memory.
PF_Err DrawBanner(PF_Err err, const DrawingSuites& drawing, const PF_HandleSuite1* handles,
                  DRAWBOT_SupplierRef supplier, DRAWBOT_SurfaceRef surface, const PF_UnionableRect& frame) {
    LockedHandle banner(handles, kBannerBytes);
    void* bytes = banner.Lock();
    if (bytes != nullptr) std::memcpy(bytes, um2_map, kBannerBytes);
    if (err != PF_Err_NONE) return err;
    if (bytes == nullptr) return PF_Err_OUT_OF_MEMORY;
    DRAWBOT_ImageRef image = nullptr;
    err = drawing.supplier->NewImageFromBuffer(supplier, kBannerWidth, kBannerHeight, kBannerRowBytes,
                                               kDRAWBOT_PixelLayout_32BGRA_Straight, bytes, &image);
    if (err != PF_Err_NONE || image == nullptr) return err;
    PF_Err released = PF_Err_NONE;
    RunBoth([&] { err = DrawAtHalfSize(drawing.surface.get(), surface, image, BannerOrigin(frame)); },
            [&] { released = drawing.supplier->ReleaseObject(reinterpret_cast<DRAWBOT_ObjectRef>(image)); });
    return err != PF_Err_NONE ? err : released;
}

PF_Err Draw(PF_InData* in_data, PF_OutData* out_data, PF_EventExtra* event) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const DrawingSuites drawing(in_data, out_data);

    DRAWBOT_DrawRef reference = nullptr;
    PF_Err err = suites.EffectCustomUISuite1()->PF_GetDrawingReference(event->contextH, &reference);
    if (err != PF_Err_NONE || reference == nullptr) return err;

    DRAWBOT_SupplierRef supplier = nullptr;
    DRAWBOT_SurfaceRef surface = nullptr;
    err = drawing.draw->GetSupplier(reference, &supplier);
    if (err == PF_Err_NONE) err = drawing.draw->GetSurface(reference, &surface);
    if (event->effect_win.area == PF_EA_CONTROL) {
        err = DrawBanner(err, drawing, suites.HandleSuite1(), supplier, surface, event->effect_win.current_frame);
    }
    if (err == PF_Err_NONE) event->evt_out_flags = PF_EO_HANDLED_EVENT;
    return err;
}

}  // namespace

PF_Err HandleEvent(PF_InData* in_data, PF_OutData* out_data, PF_EventExtra* event) {
    if (event->e_type != PF_Event_DRAW) return PF_Err_NONE;
    return Draw(in_data, out_data, event);
}

}  // namespace umbrant::effect
