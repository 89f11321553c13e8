// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/frame.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/doctor/openfx/images.h"
#include "openfx/abi/actions.h"
#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/abi/parameter_names.h"
#include "openfx/abi/parameter_properties.h"

namespace umbrant::host {

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
/// No effect makes more of a source of that size; what is beyond is not asked for.
constexpr double kFarthest = 2048;

/// The depth in which a frame is asked for; empty where there is none that this host has.
std::string DepthOf(const OpenFxEffect& effect) {
    for (const char* depth : {kOfxBitDepthByte, kOfxBitDepthFloat, kOfxBitDepthShort}) {
        if (effect.properties.Has(kOfxImageEffectPropSupportedPixelDepths, depth)) return depth;
    }
    return {};
}

/// Why no frame can be asked for; empty when it can.
std::string WhyNoFrame(const OpenFxEffect& effect, const OpenFxEffect& described) {
    if (DepthOf(effect).empty()) return "it takes neither 8, 16 nor 32 bits a channel";
    for (const char* name : {kOfxImageEffectSimpleSourceClipName, kOfxImageEffectOutputClipName}) {
        const OpenFxClip* const clip = described.Find(name);
        if (!clip) return fmt::format("it has no clip '{}'", name);
        if (!clip->properties.Has(kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA)) {
            return fmt::format("its clip '{}' takes no RGBA", name);
        }
    }
    for (const auto& clip : described.clips) {
        const bool isOptional = clip->properties.Get(kOfxImageClipPropOptional, 0) != 0;
        if (!isOptional && clip->name != kOfxImageEffectSimpleSourceClipName &&
            clip->name != kOfxImageEffectOutputClipName) {
            return fmt::format("it needs the clip '{}' besides", clip->name);
        }
    }
    return {};
}

void GiveValue(OpenFxParameter& parameter) {
    parameter.properties.Declare(kOfxPropType, {std::string(kOfxTypeParameterInstance)});
    const PropertySet::Values* const given = parameter.properties.Find(kOfxParamPropDefault);
    if (!given || ValueCount(parameter.type) <= 0) return;
    parameter.value = *given;
    parameter.value.resize(static_cast<std::size_t>(ValueCount(parameter.type)),
                           given->empty() ? PropertySet::Value(0) : given->front());
    if (!parameter.properties.Has(kOfxParamPropDefaultCoordinateSystem, kOfxParamCoordinatesNormalised)) return;
    for (std::size_t i = 0; i < parameter.value.size(); ++i) {
        if (auto* const number = std::get_if<double>(&parameter.value[i])) *number *= i == 1 ? kHeight : kWidth;
    }
}

/// The instance that a plug-in is given of what it described.
struct Instance {
    OpenFxEffect effect;
    OpenFxClip* source = nullptr;
    OpenFxClip* output = nullptr;
};

void ConnectClip(OpenFxClip& clip, const std::string& depth, bool isConnected) {
    PropertySet& properties = clip.properties;
    const std::string components = isConnected ? kOfxImageComponentRGBA : kOfxImageComponentNone;
    const std::string used = isConnected ? depth : kOfxBitDepthNone;
    properties.Declare(kOfxImageClipPropConnected, {isConnected ? 1 : 0});
    properties.Declare(kOfxImageEffectPropPixelDepth, {used});
    properties.Declare(kOfxImageEffectPropComponents, {components});
    properties.Declare(kOfxImageClipPropUnmappedPixelDepth, {used});
    properties.Declare(kOfxImageClipPropUnmappedComponents, {components});
    properties.Declare(kOfxImageEffectPropPreMultiplication, {std::string(kOfxImageUnPreMultiplied)});
    properties.Declare(kOfxImagePropPixelAspectRatio, {1.0});
    properties.Declare(kOfxImageEffectPropFrameRate, {25.0});
    properties.Declare(kOfxImageEffectPropUnmappedFrameRate, {25.0});
    properties.Declare(kOfxImageEffectPropFrameRange, {0.0, 0.0});
    properties.Declare(kOfxImageEffectPropUnmappedFrameRange, {0.0, 0.0});
    properties.Declare(kOfxImageClipPropFieldOrder, {std::string(kOfxImageFieldNone)});
    properties.Declare(kOfxImageClipPropContinuousSamples, {0});
}

void FillInstance(Instance& instance, const OpenFxEffect& described, const std::string& context,
                  const std::string& depth) {
    OpenFxEffect& effect = instance.effect;
    effect.properties = described.properties;
    PropertySet& properties = effect.properties;
    properties.Declare(kOfxPropType, {std::string(kOfxTypeImageEffectInstance)});
    properties.Declare(kOfxImageEffectPropContext, {context});
    properties.Declare(kOfxPropInstanceData, {static_cast<void*>(nullptr)});
    properties.Declare(kOfxImageEffectPropProjectSize, {double{kWidth}, double{kHeight}});
    properties.Declare(kOfxImageEffectPropProjectExtent, {double{kWidth}, double{kHeight}});
    properties.Declare(kOfxImageEffectPropProjectOffset, {0.0, 0.0});
    properties.Declare(kOfxImageEffectPropProjectPixelAspectRatio, {1.0});
    properties.Declare(kOfxImageEffectInstancePropEffectDuration, {1.0});
    properties.Declare(kOfxImageEffectPropFrameRate, {25.0});
    properties.Declare(kOfxPropIsInteractive, {0});
    effect.parameters.properties = described.parameters.properties;
    for (const auto& each : described.parameters.parameters) {
        effect.parameters.parameters.push_back(std::make_unique<OpenFxParameter>(*each));
        GiveValue(*effect.parameters.parameters.back());
    }
    for (const auto& each : described.clips) {
        auto clip = std::make_unique<OpenFxClip>();
        clip->name = each->name;
        clip->properties = each->properties;
        const bool isConnected =
            each->name == kOfxImageEffectSimpleSourceClipName || each->name == kOfxImageEffectOutputClipName;
        ConnectClip(*clip, depth, isConnected);
        effect.clips.push_back(std::move(clip));
    }
    instance.source = effect.Find(kOfxImageEffectSimpleSourceClipName);
    instance.output = effect.Find(kOfxImageEffectOutputClipName);
    instance.source->region = {0, 0, kWidth, kHeight};
    instance.source->image = MakeImage({0, 0, kWidth, kHeight}, depth, true);
}

PropertySet AtTimeZero() {
    PropertySet in;
    in.Declare(kOfxPropTime, {0.0});
    in.Declare(kOfxImageEffectPropRenderScale, {1.0, 1.0});
    return in;
}

/// What the output covers, in pixels.
Result<OfxRectI> RegionOf(PluginCalls& plugin, OpenFxEffect& effect) {
    PropertySet in = AtTimeZero(), out;
    out.Declare(kOfxImageEffectPropRegionOfDefinition, {0.0, 0.0, double{kWidth}, double{kHeight}});
    const OfxStatus status =
        TRY(plugin.Action(kOfxImageEffectActionGetRegionOfDefinition, effect.Handle(), &in, &out, kOptionalStatuses));
    if (status == kOfxStatReplyDefault) return OfxRectI{0, 0, kWidth, kHeight};
    double sides[4];
    for (std::size_t i = 0; i < 4; ++i) {
        const double side = out.Get(kOfxImageEffectPropRegionOfDefinition, 0.0, i);
        if (std::isnan(side)) return plugin.Failed("answers a region of definition that is not a number");
        sides[i] = std::clamp(side, -kFarthest, kFarthest);
    }
    if (sides[0] > sides[2] || sides[1] > sides[3]) {
        return plugin.Failed("answers a region of definition whose left or lower side is beyond the other");
    }
    return OfxRectI{static_cast<int>(std::floor(sides[0])), static_cast<int>(std::floor(sides[1])),
                    static_cast<int>(std::ceil(sides[2])), static_cast<int>(std::ceil(sides[3]))};
}

Result<Done> Prefer(PluginCalls& plugin, OpenFxEffect& effect, const std::string& depth) {
    PropertySet out;
    for (const auto& clip : effect.clips) {
        out.Declare(kOfxImageClipPropComponentsPrefix + clip->name, {std::string(kOfxImageComponentRGBA)});
        out.Declare(kOfxImageClipPropDepthPrefix + clip->name, {depth});
        out.Declare(kOfxImageClipPropPARPrefix + clip->name, {1.0});
    }
    out.Declare(kOfxImageEffectPropFrameRate, {25.0});
    out.Declare(kOfxImageClipPropFieldOrder, {std::string(kOfxImageFieldNone)});
    out.Declare(kOfxImageEffectPropPreMultiplication, {std::string(kOfxImageUnPreMultiplied)});
    out.Declare(kOfxImageClipPropContinuousSamples, {0});
    out.Declare(kOfxImageEffectFrameVarying, {0});
    TRY(plugin.Action(kOfxImageEffectActionGetClipPreferences, effect.Handle(), nullptr, &out, kOptionalStatuses));
    return Done{};
}

Result<Done> Render(PluginCalls& plugin, OpenFxEffect& effect, const OfxRectI& window) {
    PropertySet sequence = AtTimeZero();
    sequence.Declare(kOfxImageEffectPropFrameRange, {0.0, 0.0});
    sequence.Declare(kOfxImageEffectPropFrameStep, {1.0});
    sequence.Declare(kOfxPropIsInteractive, {0});
    PropertySet in = AtTimeZero();
    in.Declare(kOfxImageEffectPropFieldToRender, {std::string(kOfxImageFieldNone)});
    in.Declare(kOfxImageEffectPropRenderWindow, {window.x1, window.y1, window.x2, window.y2});
    for (PropertySet* set : {&sequence, &in}) {
        set->Declare(kOfxImageEffectPropSequentialRenderStatus, {0});
        set->Declare(kOfxImageEffectPropInteractiveRenderStatus, {0});
        set->Declare(kOfxImageEffectPropOpenGLEnabled, {0});
    }
    TRY(plugin.Action(kOfxImageEffectActionBeginSequenceRender, effect.Handle(), &sequence, nullptr,
                      kOptionalStatuses));
    TRY(plugin.Action(kOfxImageEffectActionRender, effect.Handle(), &in, nullptr, {kOfxStatOK}));
    TRY(plugin.Action(kOfxImageEffectActionEndSequenceRender, effect.Handle(), &sequence, nullptr, kOptionalStatuses));
    return Done{};
}

/// The name of the clip that the result is a copy of; empty where a frame has to be drawn.
Result<std::string> Identity(PluginCalls& plugin, OpenFxEffect& effect, const OfxRectI& window) {
    PropertySet in = AtTimeZero(), out;
    in.Declare(kOfxImageEffectPropFieldToRender, {std::string(kOfxImageFieldNone)});
    in.Declare(kOfxImageEffectPropRenderWindow, {window.x1, window.y1, window.x2, window.y2});
    out.Declare(kOfxPropName, {std::string()});
    out.Declare(kOfxPropTime, {0.0});
    const OfxStatus status =
        TRY(plugin.Action(kOfxImageEffectActionIsIdentity, effect.Handle(), &in, &out, kOptionalStatuses));
    return status == kOfxStatOK ? out.Get(kOfxPropName, std::string()) : std::string();
}

Result<std::string> DrawWith(PluginCalls& plugin, Instance& instance, const std::string& depth) {
    TRY(Prefer(plugin, instance.effect, depth));
    const OfxRectI region = TRY(RegionOf(plugin, instance.effect));
    const int width = region.x2 - region.x1, height = region.y2 - region.y1;
    const std::string size =
        fmt::format("a frame of {} x {} pixels with {} bits a channel", width, height, PixelBytes(depth) * 2);
    if (width == 0 || height == 0) return std::string("asks for an empty frame");
    const std::string same = TRY(Identity(plugin, instance.effect, region));
    if (!same.empty()) return fmt::format("passes its clip '{}' on as it is", same);
    instance.output->region = {double(region.x1), double(region.y1), double(region.x2), double(region.y2)};
    instance.output->image = MakeImage(region, depth, false);
    TRY(Render(plugin, instance.effect, region));
    if (IsOverrun(*instance.output->image)) return plugin.Failed(fmt::format("writes beyond the memory of {}", size));
    if (IsUntouched(*instance.output->image))
        return plugin.Failed(fmt::format("writes no pixel of {} and reports success", size));
    if (instance.source->image->taken != 0 || instance.output->image->taken != 0) {
        return plugin.Failed("does not release its images after a frame, so that a host runs out of memory");
    }
    return "draws " + size;
}

}  // namespace

Result<std::string> DrawFrame(PluginCalls& plugin, const OpenFxEffect& effect, const OpenFxEffect& described,
                              const std::string& context) {
    if (const std::string reason = WhyNoFrame(effect, described); !reason.empty()) {
        return fmt::format("was not asked for a frame, because {}", reason);
    }
    const std::string depth = DepthOf(effect);
    Instance instance;
    FillInstance(instance, described, context, depth);
    TRY(plugin.Action(kOfxActionCreateInstance, instance.effect.Handle(), nullptr, nullptr, kOptionalStatuses));
    auto drawn = DrawWith(plugin, instance, depth);
    if (!drawn) return drawn;
    TRY(plugin.Action(kOfxActionDestroyInstance, instance.effect.Handle(), nullptr, nullptr, kOptionalStatuses));
    return drawn;
}

}  // namespace umbrant::host
