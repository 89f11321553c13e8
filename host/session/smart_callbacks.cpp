// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The callbacks of a smart render: layers asked for in pre-render, their pixels and the output in render.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/compositing/copy_world.h"
#include "host/session/frame_record.h"
#include "host/suites/offered_rows.h"
#include "host/suites/slots.h"
#include "host/suites/timed_call.h"

namespace umbrant::host {

namespace {

constexpr char kPreRenderTable[] = "pre-render";
constexpr char kSmartRenderTable[] = "smart-render";

/// The size that `size` downsampled pixels have at full resolution.
A_long FullSize(int size, const PF_RationalScale& scale) {
    if (scale.num <= 0) return size;
    return static_cast<A_long>(std::lround(static_cast<double>(size) * scale.den / scale.num));
}

PF_Err CheckoutLayer(PF_ProgPtr effectRef, PF_ParamIndex index, A_long id, const PF_RenderRequest* request, A_long time,
                     A_long, A_u_long timeScale, PF_CheckoutResult* result) {
    FrameRecord* frame = FrameOf(effectRef, FrameRecord::Phase::kPreRender, "checkout_layer");
    if (!frame || !request || !result || timeScale == 0) return PF_Err_BAD_CALLBACK_PARAM;
    if (index < 0 || index >= frame->params.Count()) return PF_Err_INVALID_INDEX;
    if (frame->params.Row(index).def.param_type != PF_Param_LAYER) {
        Report(fmt::format("checkout_layer was called for row {}, which is not a layer", index));
        return PF_Err_INVALID_INDEX;
    }

    const std::lock_guard lock(frame->mutex);
    const auto same = [&](const LayerCheckout& checkout) { return checkout.id == id; };
    if (id < 0 || std::any_of(frame->checkouts.begin(), frame->checkouts.end(), same)) {
        Report(fmt::format("checkout_layer was called with the id {}, which is negative or in use", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const LayersSeen* layers = frame->LayersAt({time, timeScale});
    if (!layers) return PF_Err_INVALID_CALLBACK;
    LayerCheckout checkout;
    checkout.id = id;
    checkout.isTexture = index != 0;
    checkout.world = checkout.isTexture ? layers->pictures.texture : layers->pictures.layer;
    const PF_LRect& bounds = checkout.isTexture ? layers->textureBounds : layers->layerBounds;
    checkout.rect = Intersection(request->rect, bounds);

    *result = {};
    result->result_rect = checkout.rect;
    result->max_result_rect = bounds;
    result->par = frame->request.pixelAspect;
    result->ref_width = layers->geometry.width;
    result->ref_height = layers->geometry.height;
    if (checkout.isTexture) {
        result->ref_width = FullSize(WidthOf(bounds), layers->geometry.downsampleX);
        result->ref_height = FullSize(HeightOf(bounds), layers->geometry.downsampleY);
    }
    frame->checkouts.push_back(std::move(checkout));
    return PF_Err_NONE;
}

/// Nothing is cached here, so what the effect mixes in makes no difference.
PF_Err GuidMixIn(PF_ProgPtr effectRef, A_u_long size, const void* buffer) {
    if (!FrameOf(effectRef, FrameRecord::Phase::kPreRender, "GuidMixInPtr")) return PF_Err_BAD_CALLBACK_PARAM;
    return buffer || size == 0 ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

/// A world of its own with the asked part of the layer, so that an effect which writes into its input spoils nothing.
PF_Err CropTo(const PF_LRect& rect, const World& layer, PF_Point layerOrigin, World& cropped) {
    cropped = World::CreateUnwritten(WidthOf(rect), HeightOf(rect), layer.PixelDepth());
    if (cropped.IsNull()) return PF_Err_OUT_OF_MEMORY;
    PF_EffectWorld& def = cropped.Def();
    def.origin_x = rect.left;
    def.origin_y = rect.top;
    const PF_Rect part{rect.left - layerOrigin.x, rect.top - layerOrigin.y, rect.right - layerOrigin.x,
                       rect.bottom - layerOrigin.y};
    return CopyWorld(&layer.Def(), &def, &part, nullptr);
}

/// Whether the effect gets a layer's own pixels instead of a copy. A judge sees what other hosts' effects see.
bool MayShare(const FrameRecord& frame) {
    const Services& services = frame.state.services;
    return services.leavesLayersAlone && OffersRows() && !services.worldWatch;
}

/// The asked part of the layer: the layer itself where it is all of it and may be shared.
PF_Err Fetch(const FrameRecord& frame, const LayerCheckout& checkout, World& pixels) {
    const World& layer = *checkout.world;
    const PF_Point origin = checkout.isTexture ? frame.request.textureOrigin : PF_Point{};
    const bool isAll = WidthOf(checkout.rect) == layer.Width() && HeightOf(checkout.rect) == layer.Height();
    if (!isAll || !MayShare(frame)) return CropTo(checkout.rect, layer, origin, pixels);
    pixels = World::Borrow(layer);
    if (pixels.IsNull()) return PF_Err_OUT_OF_MEMORY;
    pixels.Def().origin_x = checkout.rect.left;
    pixels.Def().origin_y = checkout.rect.top;
    return PF_Err_NONE;
}

void Watch(const FrameRecord& frame, World& world, WorldRole role, bool isHandedOut) {
    if (frame.state.services.worldWatch && !world.IsNull()) frame.state.services.worldWatch(world, role, isHandedOut);
}

PF_Err CheckoutLayerPixels(PF_ProgPtr effectRef, A_long id, PF_EffectWorld** pixels) {
    FrameRecord* frame = FrameOf(effectRef, FrameRecord::Phase::kRender, "checkout_layer_pixels");
    if (!frame || !pixels) return PF_Err_BAD_CALLBACK_PARAM;
    *pixels = nullptr;
    const std::lock_guard lock(frame->mutex);
    const auto found = std::find_if(frame->checkouts.begin(), frame->checkouts.end(),
                                    [&](const LayerCheckout& checkout) { return checkout.id == id; });
    if (found == frame->checkouts.end()) {
        Report(fmt::format("checkout_layer_pixels was called with the id {}, which pre-render did not use", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (found->used) {
        Report(fmt::format("checkout_layer_pixels was called twice for the id {}", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (!IsEmpty(found->rect)) {
        const TimedCall timed(PixelCall::kFetch);
        if (const PF_Err error = Fetch(*frame, *found, found->pixels)) return error;
        found->pixels.Def().pix_aspect_ratio = frame->request.pixelAspect;
        Watch(*frame, found->pixels, found->isTexture ? WorldRole::kTexture : WorldRole::kInput, true);
        *pixels = &found->pixels.Def();
    }
    found->used = found->out = true;
    Count(Resource::kLayerPixels, 1);
    return PF_Err_NONE;
}

PF_Err CheckinLayerPixels(PF_ProgPtr effectRef, A_long id) {
    FrameRecord* frame = FrameOf(effectRef, FrameRecord::Phase::kRender, "checkin_layer_pixels");
    if (!frame) return PF_Err_BAD_CALLBACK_PARAM;
    const std::lock_guard lock(frame->mutex);
    const auto found = std::find_if(frame->checkouts.begin(), frame->checkouts.end(),
                                    [&](const LayerCheckout& checkout) { return checkout.id == id && checkout.out; });
    if (found == frame->checkouts.end()) {
        Report(fmt::format("checkin_layer_pixels was called with the id {}, which is not checked out", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    found->out = false;
    Watch(*frame, found->pixels, found->isTexture ? WorldRole::kTexture : WorldRole::kInput, false);
    found->pixels = World();
    Count(Resource::kLayerPixels, -1);
    return PF_Err_NONE;
}

PF_Err CheckoutOutput(PF_ProgPtr effectRef, PF_EffectWorld** output) {
    FrameRecord* frame = FrameOf(effectRef, FrameRecord::Phase::kRender, "checkout_output");
    if (!frame || !output) return PF_Err_BAD_CALLBACK_PARAM;
    const std::lock_guard lock(frame->mutex);
    frame->outputTaken = true;
    *output = &frame->output.Def();
    return PF_Err_NONE;
}

template <FixedText Call, auto Function>
using PreRenderSlot = Served<kPreRenderTable, Call, Function>;
template <FixedText Call, auto Function>
using SmartRenderSlot = Served<kSmartRenderTable, Call, Function>;

}  // namespace

FrameRecord* FrameOf(PF_ProgPtr effectRef, FrameRecord::Phase phase, const char* call) {
    EffectRef* ref = EffectRef::Of(effectRef, call);
    if (!ref) return nullptr;
    if (!ref->frame || ref->frame->phase != phase) {
        Report(fmt::format("{} was called outside of the command it belongs to", call));
        return nullptr;
    }
    return ref->frame;
}

PF_PreRenderCallbacks preRenderCallbacks = {
    .checkout_layer = PreRenderSlot<"checkout_layer", CheckoutLayer>(),
    .GuidMixInPtr = PreRenderSlot<"GuidMixInPtr", GuidMixIn>(),
};

PF_SmartRenderCallbacks smartRenderCallbacks = {
    .checkout_layer_pixels = SmartRenderSlot<"checkout_layer_pixels", CheckoutLayerPixels>(),
    .checkin_layer_pixels = SmartRenderSlot<"checkin_layer_pixels", CheckinLayerPixels>(),
    .checkout_output = SmartRenderSlot<"checkout_output", CheckoutOutput>(),
};

}  // namespace umbrant::host
