// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/render/render_host.h"

#include <cstring>
#include <string>

namespace umbrant::effect {

namespace {
int dummyLayer = 0;
int dummyEffect = 0;
}  // namespace

// The host's callbacks; each logs its name and answers from the current RenderHost.
struct RenderHostCalls {
    // A call with another effect or moment than the command's is a misuse.
    static void CheckEffect(PF_ProgPtr effect) {
        RenderHost& host = RenderHost::Current();
        if (effect != host.inData.effect_ref) ++host.misuses;
    }
    static void CheckMoment(A_long time, A_long step, A_u_long scale) {
        RenderHost& host = RenderHost::Current();
        const PF_InData& in = host.inData;
        if (time != in.current_time || step != in.time_step || scale != in.time_scale) ++host.misuses;
    }
    static bool Due(int* calls, int failAt) { return ++*calls == failAt; }

    static PF_Err CheckoutParam(PF_ProgPtr effect, PF_ParamIndex index, A_long time, A_long step, A_u_long scale,
                                PF_ParamDef* param) {
        CheckEffect(effect);
        CheckMoment(time, step, scale);
        RenderHost& host = RenderHost::Current();
        host.Log("checkout_param " + std::to_string(index));
        if (Due(&host.checkoutParams_, host.failCheckoutParam)) return RenderHost::kInjected;
        ++host.paramsOut;
        *param = host.panel[static_cast<size_t>(index)];
        return PF_Err_NONE;
    }
    static PF_Err CheckinParam(PF_ProgPtr effect, PF_ParamDef*) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("checkin_param");
        --host.paramsOut;
        return Due(&host.checkinParams_, host.failCheckinParam) ? RenderHost::kInjected : PF_Err_NONE;
    }
    static PF_Err CheckoutLayer(PF_ProgPtr effect, PF_ParamIndex index, A_long id, const PF_RenderRequest* request,
                                A_long time, A_long step, A_u_long scale, PF_CheckoutResult* result) {
        CheckEffect(effect);
        CheckMoment(time, step, scale);
        RenderHost& host = RenderHost::Current();
        host.Log("checkout_layer " + std::to_string(index));
        host.layerRequests.push_back({index, id, *request, time, step, scale});
        if (Due(&host.checkoutLayers_, host.failCheckoutLayer)) return RenderHost::kInjected;
        if (index == PARAM_INPUT) *result = host.layerGranted;
        return PF_Err_NONE;
    }
    static PF_Err CheckoutPixels(PF_ProgPtr effect, A_long id, PF_EffectWorld** pixels) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("checkout_layer_pixels " + std::to_string(id));
        if (Due(&host.checkoutPixels_, host.failCheckoutPixels)) return RenderHost::kInjected;
        ++host.layersOut;
        *pixels = id == PARAM_TEXTURE_LAYER ? host.texture : host.input;
        return PF_Err_NONE;
    }
    static PF_Err CheckinPixels(PF_ProgPtr effect, A_long id) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("checkin_layer_pixels " + std::to_string(id));
        --host.layersOut;
        return host.checkinPixelsError;
    }
    static PF_Err CheckoutOutput(PF_ProgPtr effect, PF_EffectWorld** output) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("checkout_output");
        *output = host.output;
        return host.checkoutOutputError;
    }
    static PF_Err Fill(PF_ProgPtr effect, const PF_Pixel* colour, const PF_Rect* area, PF_EffectWorld* world) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log(std::string("fill ") + (colour ? "colour" : "clear") + (area ? " area" : " whole"));
        if (host.fillError) return host.fillError;
        for (A_long y = 0; y < world->height; ++y) {
            const size_t row = static_cast<size_t>(world->width) * (host.renderInput.bitdepth == 32 ? 16 : 4);
            std::memset(reinterpret_cast<char*>(world->data) + y * world->rowbytes, 0, row);
        }
        return PF_Err_NONE;
    }
    static PF_Err Copy(PF_ProgPtr effect, PF_EffectWorld* source, PF_EffectWorld* destination, PF_Rect* from,
                       PF_Rect* to) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log(std::string("copy ") + (from ? "area" : "whole") + " to " + std::to_string(to->left) + " " +
                 std::to_string(to->top) + " " + std::to_string(to->right) + " " + std::to_string(to->bottom));
        if (host.copyError) return host.copyError;
        const ptrdiff_t bytes = host.renderInput.bitdepth == 32 ? 16 : 4;
        for (A_long y = 0; y < source->height; ++y) {
            for (A_long x = 0; x < source->width; ++x) {
                const ptrdiff_t toX = to->left + x;
                const ptrdiff_t toY = to->top + y;
                if (toX < 0 || toY < 0 || toX >= destination->width || toY >= destination->height) continue;
                std::memcpy(reinterpret_cast<char*>(destination->data) + toY * destination->rowbytes + toX * bytes,
                            reinterpret_cast<char*>(source->data) + ptrdiff_t{y} * source->rowbytes + x * bytes,
                            static_cast<size_t>(bytes));
            }
        }
        return PF_Err_NONE;
    }
    static PF_Err Colour(PF_ProgPtr effect, const PF_ParamDef* def, PF_PixelFloat* colour) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("PF_GetFloatingPointColorFromColorDef");
        const PF_Pixel& c = def->u.cd.value;
        *colour = {c.alpha / 255.0f, c.red / 255.0f, c.green / 255.0f, c.blue / 255.0f};
        return host.colourError;
    }
    static PF_Err TransferRect(PF_ProgPtr effect, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                               const PF_Rect* area, const PF_EffectWorld* source, const PF_CompositeMode* mode,
                               const PF_MaskWorld* mask, A_long x, A_long y, PF_EffectWorld* destination) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("transfer_rect " + std::to_string(mode->xfer));
        host.transfers.push_back({quality, flags, field, *area, source, *mode, mask, x, y, destination});
        if (host.onTransfer) host.onTransfer(host.transfers.back());
        return Due(&host.transferCalls_, host.failTransfer) ? RenderHost::kInjected : PF_Err_NONE;
    }
    static A_Err EffectLayer(PF_ProgPtr effect, AEGP_LayerH* layer) {
        CheckEffect(effect);
        RenderHost& host = RenderHost::Current();
        host.Log("AEGP_GetEffectLayer");
        *layer = host.noEffectLayer ? nullptr : reinterpret_cast<AEGP_LayerH>(&dummyLayer);
        return host.effectLayerError;
    }
    static A_Err LayerFlags(AEGP_LayerH, AEGP_LayerFlags* flags) {
        RenderHost& host = RenderHost::Current();
        host.Log("AEGP_GetLayerFlags");
        *flags = host.layerFlags;
        return host.layerFlagsError;
    }
};

RenderHost& RenderHost::Current() {
    return static_cast<RenderHost&>(TestHost::Current());
}

RenderHost::RenderHost() {
    using Calls = RenderHostCalls;
    inData.effect_ref = reinterpret_cast<PF_ProgPtr>(&dummyEffect);
    inData.version = {13, 28};
    inData.width = 40;
    inData.height = 30;
    inData.downsample_x = {1, 1};
    inData.downsample_y = {1, 1};
    inData.current_time = 7;
    inData.time_step = 2;
    inData.time_scale = 25;
    inData.quality = PF_Quality_HI;
    inData.field = PF_Field_FRAME;
    inData.inter.checkout_param = Calls::CheckoutParam;
    inData.inter.checkin_param = Calls::CheckinParam;
    utils.fill = Calls::Fill;
    utils.copy = Calls::Copy;
    inData.global_data = MakeHandle(sizeof(GlobalData));
    globalHandle_ = inData.global_data;
    writtenRecords.Note(globalHandle_);
    global = static_cast<GlobalData*>(BytesOf(globalHandle_));

    preCallbacks.checkout_layer = Calls::CheckoutLayer;
    preInput.output_request.rect = {0, 0, 40, 30};
    preInput.output_request.field = PF_Field_UPPER;
    preInput.output_request.channel_mask = PF_ChannelMask_ARGB;
    preInput.output_request.preserve_rgb_of_zero_alpha = 1;
    preExtra = {&preInput, &preOutput, &preCallbacks};
    layerGranted.result_rect = {0, 0, 40, 30};
    layerGranted.max_result_rect = {0, 0, 40, 30};

    renderCallbacks = {Calls::CheckoutPixels, Calls::CheckinPixels, Calls::CheckoutOutput};
    renderInput.bitdepth = 8;
    renderInput.pre_render_data = &record;
    renderExtra = {&renderInput, &renderCallbacks};

    interfaceSuite.AEGP_GetEffectLayer = Calls::EffectLayer;
    layerSuite.AEGP_GetLayerFlags = Calls::LayerFlags;
    colourSuite.PF_GetFloatingPointColorFromColorDef = Calls::Colour;
    transformSuite.transfer_rect = Calls::TransferRect;
    Offer(kAEGPPFInterfaceSuiteName, kAEGPPFInterfaceSuiteVersion1, &interfaceSuite);
    Offer(kAEGPLayerSuiteName, kAEGPLayerSuiteVersion7, &layerSuite);
    Offer(kPFColorParamSuiteName, kPFColorParamSuiteVersion1, &colourSuite);
    Offer(kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1, &transformSuite);
}

RenderHost::~RenderHost() {
    writtenRecords.Forget(globalHandle_);
}

void RenderHost::ResetFailures() {
    failCheckoutParam = failCheckinParam = failCheckoutLayer = failCheckoutPixels = failTransfer = 0;
    checkoutOutputError = fillError = copyError = checkinPixelsError = colourError = effectLayerError =
        layerFlagsError = 0;
    checkoutParams_ = checkinParams_ = checkoutLayers_ = checkoutPixels_ = transferCalls_ = 0;
}

}  // namespace umbrant::effect
