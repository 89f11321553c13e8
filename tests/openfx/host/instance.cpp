// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The life of an instance: its creation, its values, its clips, its questions.

#include "tests/openfx/host/instance.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace umbrant::ofx {

namespace {

constexpr int kDeepestRecursion = 8;

OfxRectD Canonical(const OfxRectI& bounds, const Inputs& inputs) {
    const double x = inputs.pixelAspect / inputs.scaleX, y = 1 / inputs.scaleY;
    return {bounds.x1 * x, bounds.y1 * y, bounds.x2 * x, bounds.y2 * y};
}

}  // namespace

Instance::Instance(PlugIn& plugIn, EffectObject& context)
    : plugIn_(plugIn),
      host_(plugIn.TheHost()),
      effect_(std::make_unique<EffectObject>(host_, EffectKind::kInstance, "the instance")) {
    PropertySet& properties = effect_->Properties();
    const HostOptions& options = host_.Options();
    properties.Put("OfxImageEffectPropContext", {context.Properties().String("OfxImageEffectPropContext")});
    for (const char* name : {"OfxImageEffectPropProjectSize", "OfxImageEffectPropProjectExtent"}) {
        properties.Put(name, {options.projectWidth, options.projectHeight});
    }
    properties.Put("OfxImageEffectPropProjectOffset", {0.0, 0.0});
    properties.Put("OfxImageEffectPropPixelAspectRatio", {1.0});
    properties.Put("OfxImageEffectInstancePropEffectDuration", {100.0});
    properties.Put("OfxImageEffectPropFrameRate", {24.0});
    properties.Put("OfxPropIsInteractive", {options.background ? 0 : 1});
    effect_->Params().Instantiate(context.Params());
    effect_->Params().changed = [this](Param& param) {
        if (created_) Change(param.Name(), "OfxChangePluginEdited");
    };
    for (const auto& from : context.Clips()) {
        Clip& clip = effect_->AddClip(from->Name());
        clip.Properties().CopyFrom(from->Properties());
        ConnectClip(clip, nullptr);
    }
    ++plugIn_.instances;
}

std::unique_ptr<Instance> Instance::Create(PlugIn& plugIn, const std::string& context, OfxStatus& status) {
    EffectObject* descriptor = plugIn.Context(context);
    if (descriptor == nullptr) throw std::logic_error("create an instance in a context that is not described");
    std::unique_ptr<Instance> instance(new Instance(plugIn, *descriptor));
    status = plugIn.Call("OfxActionCreateInstance", instance->effect_.get(), nullptr, nullptr);
    instance->created_ = Succeeded(status);
    if (!instance->created_) return nullptr;
    return instance;
}

Instance::~Instance() {
    if (created_) plugIn_.Call("OfxActionDestroyInstance", effect_.get(), nullptr, nullptr);
    if (host_.record.OpenCounts().contains("image memory")) {
        host_.record.Violation("OfxActionDestroyInstance: image memory is not given back");
    }
    --plugIn_.instances;
}

void Instance::Set(const std::string& name, ParamValue value) {
    Param* param = FindParam(name);
    if (param == nullptr) throw std::out_of_range("no parameter " + name);
    for (std::size_t i = 0; i < value.size(); ++i) {
        // Tests write numbers; an integer's or a choice's value is an int.
        if (param->Type().value == "int" && TypeOf(value[i]) == "double") {
            value[i] = static_cast<int>(std::lround(std::get<double>(value[i])));
        }
    }
    param->RemoveKeys();
    param->Set(std::move(value));
    Change(name);
}

void Instance::SetChoice(const std::string& name, const std::string& option) {
    Param* param = FindParam(name);
    if (param == nullptr) throw std::out_of_range("no parameter " + name);
    const auto items = param->Properties().Strings("OfxParamPropChoiceOption");
    const auto found = std::find(items.begin(), items.end(), option);
    if (found == items.end()) throw std::out_of_range("no option " + option + " of " + name);
    Set(name, ParamValue{static_cast<int>(found - items.begin())});
}

OfxStatus Instance::Change(const std::string& name, const std::string& reason, bool clip) {
    if (recursion_ >= kDeepestRecursion) {
        host_.record.Violation("OfxActionInstanceChanged sets " + name + " again and again");
        return kOfxStatFailed;
    }
    ++recursion_;
    PropertySet bounds(host_, {"the arguments of OfxActionBeginInstanceChanged", {"inArgs"}});
    bounds.Put("OfxPropChangeReason", {reason});
    PropertySet in(host_, {"the arguments of OfxActionInstanceChanged", {"inArgs"}});
    PutArguments(in, 0);
    in.Put("OfxPropType", {clip ? "OfxTypeClip" : "OfxTypeParameter"});
    in.Put("OfxPropName", {name});
    in.Put("OfxPropChangeReason", {reason});
    plugIn_.Call("OfxActionBeginInstanceChanged", effect_.get(), &bounds, nullptr);
    const OfxStatus status = plugIn_.Call("OfxActionInstanceChanged", effect_.get(), &in, nullptr);
    plugIn_.Call("OfxActionEndInstanceChanged", effect_.get(), &bounds, nullptr);
    --recursion_;
    return status;
}

void Instance::PutArguments(PropertySet& set, double time) const {
    set.Put("OfxPropTime", {time});
    set.Put("OfxImageEffectPropRenderScale", {inputs_.scaleX, inputs_.scaleY});
    set.Put("OfxImageEffectPropThumbnailRender", {"false"});
}

void Instance::ConnectClip(Clip& clip, const Picture* picture) {
    PropertySet& set = clip.Properties();
    const bool output = clip.Name() == "Output";
    const bool connected = output || picture != nullptr;
    clip.connected = connected;
    const std::string depth = connected ? DepthName(inputs_.source.depth) : "OfxBitDepthNone";
    const std::string components = connected ? "OfxImageComponentRGBA" : "OfxImageComponentNone";
    set.Put("OfxImageClipPropConnected", {connected ? 1 : 0});
    set.Put("OfxImageEffectPropPixelDepth", {depth});
    set.Put("OfxImageClipPropUnmappedPixelDepth", {depth});
    set.Put("OfxImageEffectPropComponents", {components});
    set.Put("OfxImageClipPropUnmappedComponents", {components});
    set.Put("OfxImageEffectPropPreMultiplication", {inputs_.premultiplication});
    set.Put("OfxImageEffectPropPixelOrder", {inputs_.pixelOrder});
    set.Put("OfxImagePropPixelAspectRatio", {inputs_.pixelAspect});
    set.Put("OfxImageEffectPropFrameRate", {24.0});
    set.Put("OfxImageEffectPropFrameRange", {0.0, 99.0});
    set.Put("OfxImageEffectPropUnmappedFrameRange", {0.0, 99.0});
    set.Put("OfxImageEffectPropUnmappedFrameRate", {24.0});
    set.Put("OfxImageClipPropFieldOrder", {"OfxFieldNone"});
    if (picture == nullptr) return;
    clip.region = Canonical(picture->bounds, inputs_);
    if (clip.Name() == "Source" && inputs_.sourceRegion) clip.region = *inputs_.sourceRegion;
}

OfxStatus Instance::Connect(Inputs inputs) {
    inputs_ = std::move(inputs);
    for (const auto& clip : effect_->Clips()) {
        const Picture* picture = clip->Name() == "Source" ? &inputs_.source : nullptr;
        if (clip->Name() == "Texture" && inputs_.texture) picture = &*inputs_.texture;
        ConnectClip(*clip, picture);
        if (picture != nullptr) Change(clip->Name(), "OfxChangeUserEdited", true);
    }
    return ClipPreferences();
}

OfxStatus Instance::ClipPreferences() {
    PropertySet out(host_, {"the results of OfxImageEffectActionGetClipPreferences", {"outArgs"}, Access::kWritable});
    for (const auto& clip : effect_->Clips()) {
        PropertySet& set = clip->Properties();
        const std::string& name = clip->Name();
        out.Put("OfxImageClipPropComponents_" + name, {set.String("OfxImageEffectPropComponents")});
        out.Put("OfxImageClipPropDepth_" + name, {set.String("OfxImageEffectPropPixelDepth")});
        out.Put("OfxImageClipPropPAR_" + name, {inputs_.pixelAspect});
    }
    out.Put("OfxImageEffectPropFrameRate", {24.0});
    out.Put("OfxImageClipPropFieldOrder", {"OfxFieldNone"});
    out.Put("OfxImageEffectPropPreMultiplication", {inputs_.premultiplication});
    out.Put("OfxImageClipPropContinuousSamples", {0});
    out.Put("OfxImageEffectFrameVarying", {0});
    const OfxStatus status = plugIn_.Call("OfxImageEffectActionGetClipPreferences", effect_.get(), nullptr, &out);
    premultiplication_ = inputs_.premultiplication;
    if (status == kOfxStatOK && out.Has("OfxImageEffectPropPreMultiplication")) {
        premultiplication_ = out.String("OfxImageEffectPropPreMultiplication");
    }
    // The output's property follows the answer.
    if (Clip* output = effect_->FindClip("Output")) {
        output->Properties().Put("OfxImageEffectPropPreMultiplication", {premultiplication_});
    }
    return status;
}

}  // namespace umbrant::ofx
