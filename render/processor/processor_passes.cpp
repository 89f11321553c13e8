// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host's side of the CPU renderer: alpha up, alpha down, and what is said and returned when something is missing.

#include "render/processor/processor_passes.h"

#include <functional>
#include <new>
#include <optional>

#include "hostapi/errors.h"
#include "pixel/effect_world.h"
#include "pixel/locked_handle.h"
#include "pixel/return_message.h"
#include "pixel/world_alpha.h"
#include "pixel/world_rows.h"
#include "render/inner_composite.h"
#include "render/passes/passes.h"
#include "render/processor/processor_path.h"

namespace umbrant::effect {

namespace {

/// Beyond this a buffer cannot be had: four bytes a pixel make the largest block of memory 4 GiB.
constexpr int64_t kMostPixels = int64_t{1} << 30;

bool IsZeroSized(int32_t width, int32_t height) {
    return width < 1 || height < 1;
}

// Whether there can be a buffer of that size; zero-sized ones are left out later.
bool CanHave(int32_t width, int32_t height, PF_OutData* out_data) {
    if (IsZeroSized(width, height) || int64_t{width} * height <= kMostPixels) return true;
    WriteReturnMessage(BadBufferMessage(width, height), out_data);
    return false;
}

bool CanHaveRecords(const myParams& settings, PF_OutData* out_data) {
    bool all = true;
    for (const framebufferData& record : settings.framebuffers) {
        if (!CanHave(record.fboW, record.fboH, out_data)) all = false;
    }
    return all;
}

/// A layer's alpha in host memory, for as long as the passes read it.
class Upload {
 public:
    Upload(PF_LayerDef* world, myParams* params, PF_OutData* out_data)
        : zeroSized_(IsZeroSized(world->width, world->height)) {
        error_ = Fill(world, params, out_data);
    }

    bool ZeroSized() const { return zeroSized_; }
    bool Failed() const { return error_ != PF_Err_NONE; }
    /// What a frame without its layer returns: whatever an iteration returns, there is no memory for the layer.
    PF_Err FrameError() const { return walkError_ ? walkError_ : PF_Err_OUT_OF_MEMORY; }
    const ProcessorLayer& Layer() const { return layer_; }

 private:
    PF_Err Fill(PF_LayerDef* world, myParams* params, PF_OutData* out_data) {
        if (params->bitDepth != 8 && params->bitDepth != 32) {
            WriteReturnMessage(kDepthRefused, out_data);
            return PF_Err_INTERNAL_STRUCT_DAMAGED;
        }
        memory_.emplace(params->suites->HandleSuite1(),
                        ElementBytes(world->width, world->height, ChannelBytes(params->bitDepth)));
        void* buffer = memory_->Lock();
        if (!buffer) return PF_Err_OUT_OF_MEMORY;
        layer_ = {buffer, world->width, world->height};
        if (params->isOwnHost) {
            const size_t row = static_cast<size_t>(world->width) * static_cast<size_t>(ChannelBytes(params->bitDepth));
            const auto copied = WalkRows(params->in_data, world, [&](A_long y, void* pixels) {
                TakeAlphas(pixels, static_cast<size_t>(world->width), params->bitDepth,
                           static_cast<char*>(buffer) + static_cast<size_t>(y) * row);
            });
            if (copied) return walkError_ = *copied;
        }
        return FillFromWorld(buffer, world, params->bitDepth, params->in_data, *params->suites);
    }

    std::optional<LockedHandle> memory_;
    ProcessorLayer layer_;
    bool zeroSized_;
    PF_Err walkError_ = PF_Err_NONE;
    PF_Err error_ = PF_Err_NONE;
};

PF_Err ReadBack(const uint16_t* alpha, PF_InData* in_data, AEGP_SuiteHandler& suites, myParams* settings,
                PF_LayerDef* output) {
    if (settings->isOwnHost) {
        const auto width = static_cast<size_t>(output->width);
        const auto written = WalkRows(in_data, output, [&](A_long y, void* pixels) {
            ColourRow(alpha + static_cast<size_t>(y) * width, width, *settings, pixels);
        });
        if (written) return *written;
    }
    LockedHandle memory(suites.HandleSuite1(),
                        ElementBytes(output->width, output->height, ChannelBytes(settings->bitDepth)));
    void* buffer = memory.Lock();
    if (!buffer) return PF_Err_OUT_OF_MEMORY;
    const size_t pixels = static_cast<size_t>(output->width) * static_cast<size_t>(output->height);
    ConvertAlpha(alpha, pixels, settings->bitDepth, buffer);
    if (settings->bitDepth == 32) {
        return FillWorld32(buffer, in_data, suites, &settings->shadowColourFloat, output);
    }
    return FillWorld8(buffer, in_data, suites, &settings->shadowColour8, output);
}

// Null without memory.
const uint16_t* Drawn(const std::function<const uint16_t*()>& draw) {
    try {
        return draw();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

PF_Err TooSmall(PF_InData* in_data, PF_OutData* out_data, const char* message) {
    in_data->utils->ansi.sprintf(out_data->return_msg, "%s", message);
    return PF_Err_NONE;
}

}  // namespace

PF_Err RenderNormalOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                               const RadialGeometry&) {
    if (settings->samples.empty()) return PF_Err_NONE;
    PF_LayerDef* output = settings->outputWorld;

    const uint16_t* alpha = nullptr;
    {
        const Upload input(settings->inputWorld, settings, out_data);
        const bool records = CanHaveRecords(*settings, out_data);
        const bool accumulated = CanHave(output->width, output->height, out_data);
        if (input.ZeroSized() || IsZeroSized(output->width, output->height)) {
            return TooSmall(in_data, out_data, kNormalTooSmall);
        }
        if (input.Failed()) return input.FrameError();
        if (!records || !accumulated) return PF_Err_OUT_OF_MEMORY;
        alpha = Drawn([&] { return DrawNormalOnProcessor(*settings, input.Layer()); });
    }
    return alpha ? ReadBack(alpha, in_data, suites, settings, output) : PF_Err_OUT_OF_MEMORY;
}

PF_Err RenderInnerOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                              const RadialGeometry&) {
    if (settings->samples.empty()) return CompositeInnerShadow(in_data, suites, settings, nullptr);
    const PF_LayerDef& output = *settings->outputWorld;
    HV_EffectWorld padded(in_data, output);
    if (PF_Err err = PadInput(in_data, *settings, &padded)) return err;
    settings->innerSourceWorld = &padded.world;

    const uint16_t* alpha = nullptr;
    {
        const Upload source(settings->innerSourceWorld, settings, out_data);
        const bool records = CanHaveRecords(*settings, out_data);
        if (source.Failed()) return source.FrameError();
        if (!records) return PF_Err_OUT_OF_MEMORY;
        const framebufferData& first = settings->framebuffers.front();
        if (!CanHave(output.width, output.height, out_data)) return PF_Err_OUT_OF_MEMORY;
        if (source.ZeroSized() || IsZeroSized(first.fboW, first.fboH) || IsZeroSized(output.width, output.height)) {
            return TooSmall(in_data, out_data, kInnerTooSmall);
        }
        alpha = Drawn([&] { return DrawInnerOnProcessor(*settings, source.Layer()); });
    }
    if (!alpha) return PF_Err_OUT_OF_MEMORY;
    return CompositeInnerShadow(in_data, suites, settings, [&](PF_EffectWorld* shadow) {
        return ReadBack(alpha, in_data, suites, settings, shadow);
    });
}

PF_Err RenderRadialOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                               const RadialGeometry& geometry) {
    if (settings->samples.empty()) return PF_Err_NONE;
    PF_LayerDef* output = settings->outputWorld;

    const uint16_t* alpha = nullptr;
    {
        const Upload input(settings->inputWorld, settings, out_data);
        const bool padded = CanHave(geometry.paddedW, geometry.paddedH, out_data);
        const bool accumulated = CanHave(output->width, output->height, out_data);
        if (input.ZeroSized() || IsZeroSized(geometry.paddedW, geometry.paddedH) ||
            IsZeroSized(output->width, output->height)) {
            return TooSmall(in_data, out_data, kRadialTooSmall);
        }
        if (input.Failed()) return input.FrameError();
        if (!padded || !accumulated) return PF_Err_OUT_OF_MEMORY;
        alpha = Drawn([&] { return DrawRadialOnProcessor(*settings, input.Layer(), geometry); });
    }
    return alpha ? ReadBack(alpha, in_data, suites, settings, output) : PF_Err_OUT_OF_MEMORY;
}

}  // namespace umbrant::effect
