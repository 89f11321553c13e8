// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What `in_data->utils` points to: the services that were there before suites, over the same functions.

#include <algorithm>

#include "host/compositing/blend_worlds.h"
#include "host/compositing/fill_world.h"
#include "host/compositing/world.h"
#include "host/suites/pf/handles.h"
#include "host/suites/pf/iterate.h"
#include "host/suites/pf/pixel_calls.h"
#include "host/suites/pf/worlds.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"
#include "host/suites/timed_call.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

constexpr char kTable[] = "utils";

template <FixedText Call, auto Function>
using Slot = Served<kTable, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kTable, Call>;

/// Null is transparent black, as fills without a colour mean it.
template <typename Pixel>
PF_PixelFloat ColorOf(const Pixel* color, int fullScale) {
    if (!color) return {};
    const auto channel = [&](int value) { return static_cast<float>(value) / static_cast<float>(fullScale); };
    return {channel(color->alpha), channel(color->red), channel(color->green), channel(color->blue)};
}

PF_Err Fill(PF_ProgPtr effectRef, const PF_Pixel* color, const PF_Rect* rect, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "fill")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kFill);
    return FillWorld(ColorOf(color, PF_MAX_CHAN8), rect, world);
}

PF_Err Fill16(PF_ProgPtr effectRef, const PF_Pixel16* color, const PF_Rect* rect, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "fill16")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kFill);
    return FillWorld(ColorOf(color, PF_MAX_CHAN16), rect, world);
}

PF_Err Premultiply(PF_ProgPtr effectRef, A_long forward, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "premultiply")) return PF_Err_BAD_CALLBACK_PARAM;
    return PremultiplyWorld(world, {}, forward != 0, world);
}

PF_Err PremultiplyColor(PF_ProgPtr effectRef, PF_EffectWorld* source, const PF_Pixel* color, A_long forward,
                        PF_EffectWorld* destination) {
    if (!EffectRef::Of(effectRef, "premultiply_color")) return PF_Err_BAD_CALLBACK_PARAM;
    return PremultiplyWorld(source, ColorOf(color, PF_MAX_CHAN8), forward != 0, destination);
}

PF_Err PremultiplyColor16(PF_ProgPtr effectRef, PF_EffectWorld* source, const PF_Pixel16* color, A_long forward,
                          PF_EffectWorld* destination) {
    if (!EffectRef::Of(effectRef, "premultiply_color16")) return PF_Err_BAD_CALLBACK_PARAM;
    return PremultiplyWorld(source, ColorOf(color, PF_MAX_CHAN16), forward != 0, destination);
}

PF_Err NewUtilWorld(PF_ProgPtr effectRef, A_long width, A_long height, PF_NewWorldFlags flags, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "new_world")) return PF_Err_BAD_CALLBACK_PARAM;
    const Depth depth = flags & PF_NewWorldFlag_DEEP_PIXELS ? Depth::k16 : Depth::k8;
    return NewEffectWorld(width, height, (flags & PF_NewWorldFlag_CLEAR_PIXELS) != 0, PixelFormatOf(depth), world);
}

PF_Err DisposeUtilWorld(PF_ProgPtr effectRef, PF_EffectWorld* world) {
    if (!EffectRef::Of(effectRef, "dispose_world")) return PF_Err_BAD_CALLBACK_PARAM;
    return DisposeEffectWorld(world);
}

/// The world's pixels seen as `Pixel`, or null when they are of another kind, which is an answer and no error.
template <typename Pixel>
PF_Err PixelData(PF_EffectWorld* world, PF_PixelPtr pixels, Pixel** seen) {
    if (!world || !seen) return PF_Err_BAD_CALLBACK_PARAM;
    PF_PixelPtr data = pixels ? pixels : world->data;
    *seen = PixelFormatOf(*world) == FormatOfPixel<Pixel>() ? static_cast<Pixel*>(static_cast<void*>(data)) : nullptr;
    return PF_Err_NONE;
}

constexpr char kColorTable[] = "utils.colorCB";
template <FixedText Call>
using NoColorSlot = Missing<kColorTable, Call>;

using Calls8 = IterateCalls<PF_Pixel>;
using Calls16 = IterateCalls<PF_Pixel16>;

}  // namespace

PF_UtilCallbacks utilCallbacks = {
    .begin_sampling = NoSlot<"begin_sampling">(),
    .subpixel_sample = NoSlot<"subpixel_sample">(),
    .area_sample = NoSlot<"area_sample">(),
    .get_batch_func_is_deprecated = nullptr,
    .end_sampling = NoSlot<"end_sampling">(),
    .composite_rect = Slot<"composite_rect", CompositeRectCall>(),
    .blend = Slot<"blend", BlendCall>(),
    .convolve = NoSlot<"convolve">(),
    .copy = Slot<"copy", CopyCall>(),
    .fill = Slot<"fill", Fill>(),
    .gaussian_kernel = NoSlot<"gaussian_kernel">(),
    .iterate = Slot<"iterate", Calls8::Iterate>(),
    .premultiply = Slot<"premultiply", Premultiply>(),
    .premultiply_color = Slot<"premultiply_color", PremultiplyColor>(),
    .new_world = Slot<"new_world", NewUtilWorld>(),
    .dispose_world = Slot<"dispose_world", DisposeUtilWorld>(),
    .iterate_origin = Slot<"iterate_origin", Calls8::IterateOrigin>(),
    .iterate_lut = Slot<"iterate_lut", IterateLutCall>(),
    .transfer_rect = Slot<"transfer_rect", TransferRectCall>(),
    .transform_world = NoSlot<"transform_world">(),
    .host_new_handle = Slot<"host_new_handle", NewHandle>(),
    .host_lock_handle = Slot<"host_lock_handle", LockHandle>(),
    .host_unlock_handle = Slot<"host_unlock_handle", UnlockHandle>(),
    .host_dispose_handle = Slot<"host_dispose_handle", DisposeHandle>(),
    .get_callback_addr = NoSlot<"get_callback_addr">(),
    .app = NoSlot<"app">(),
    .ansi =
        {
            .atan = kANSISuite.atan,
            .atan2 = kANSISuite.atan2,
            .ceil = kANSISuite.ceil,
            .cos = kANSISuite.cos,
            .exp = kANSISuite.exp,
            .fabs = kANSISuite.fabs,
            .floor = kANSISuite.floor,
            .fmod = kANSISuite.fmod,
            .hypot = kANSISuite.hypot,
            .log = kANSISuite.log,
            .log10 = kANSISuite.log10,
            .pow = kANSISuite.pow,
            .sin = kANSISuite.sin,
            .sqrt = kANSISuite.sqrt,
            .tan = kANSISuite.tan,
            .sprintf = kANSISuite.sprintf,
            .strcpy = kANSISuite.strcpy,
            .asin = kANSISuite.asin,
            .acos = kANSISuite.acos,
            .unused_longA = {},
        },
    .colorCB =
        {
            .RGBtoHLS = NoColorSlot<"RGBtoHLS">(),
            .HLStoRGB = NoColorSlot<"HLStoRGB">(),
            .RGBtoYIQ = NoColorSlot<"RGBtoYIQ">(),
            .YIQtoRGB = NoColorSlot<"YIQtoRGB">(),
            .Luminance = NoColorSlot<"Luminance">(),
            .Hue = NoColorSlot<"Hue">(),
            .Lightness = NoColorSlot<"Lightness">(),
            .Saturation = NoColorSlot<"Saturation">(),
        },
    .get_platform_data = NoSlot<"get_platform_data">(),
    .host_get_handle_size = Slot<"host_get_handle_size", HandleSize>(),
    .iterate_origin_non_clip_src = Slot<"iterate_origin_non_clip_src", Calls8::IterateOriginNonClip>(),
    .iterate_generic = Slot<"iterate_generic", IterateGeneric>(),
    .host_resize_handle = Slot<"host_resize_handle", ResizeHandle>(),
    .subpixel_sample16 = NoSlot<"subpixel_sample16">(),
    .area_sample16 = NoSlot<"area_sample16">(),
    .fill16 = Slot<"fill16", Fill16>(),
    .premultiply_color16 = Slot<"premultiply_color16", PremultiplyColor16>(),
    .iterate16 = Slot<"iterate16", Calls16::Iterate>(),
    .iterate_origin16 = Slot<"iterate_origin16", Calls16::IterateOrigin>(),
    .iterate_origin_non_clip_src16 = Slot<"iterate_origin_non_clip_src16", Calls16::IterateOriginNonClip>(),
    .get_pixel_data8 = Slot<"get_pixel_data8", PixelData<PF_Pixel8>>(),
    .get_pixel_data16 = Slot<"get_pixel_data16", PixelData<PF_Pixel16>>(),
    .reserved = {},
};

}  // namespace umbrant::host
