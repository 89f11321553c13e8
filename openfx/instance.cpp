// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Finds the handles once and reads values with them.

#include "openfx/instance.h"

#include <cmath>

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/host/refusal.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

Clip FindClip(OfxImageEffectHandle effect, const char* name) {
    Clip clip;
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().effect->clipGetHandle(effect, name, &clip.handle, &set) != kOfxStatOK || !clip.handle) return {};
    if (!set && TheSuites().effect->clipGetPropertySet(clip.handle, &set) != kOfxStatOK) set = nullptr;
    clip.properties = Properties(set);
    return clip;
}

Clip NeedClip(OfxImageEffectHandle effect, const char* name) {
    Clip clip = FindClip(effect, name);
    if (!clip.handle) throw Refusal(kOfxStatFailed, std::string("the host has no clip '") + name + "' for this effect");
    return clip;
}

/// The value at the time; hosts whose parameter cannot vary may have it without a time only.
template <typename... Out>
bool GetValue(OfxParamHandle parameter, OfxTime time, Out*... out) {
    const OfxParameterSuiteV1& suite = *TheSuites().parameter;
    return suite.paramGetValueAtTime(parameter, time, out...) == kOfxStatOK ||
           suite.paramGetValue(parameter, out...) == kOfxStatOK;
}

}  // namespace

bool Clip::MayHaveImage() const {
    return handle && properties.Int(kOfxImageClipPropConnected).value_or(1) != 0;
}

std::optional<OfxRectD> Clip::Region(OfxTime time) const {
    OfxRectD region{};
    if (!handle || TheSuites().effect->clipGetRegionOfDefinition(handle, time, &region) != kOfxStatOK)
        return std::nullopt;
    return region;
}

double Clip::PixelAspect() const {
    const double aspect = properties.Double(kOfxImagePropPixelAspectRatio).value_or(1);
    return aspect > 0 && std::isfinite(aspect) ? aspect : 1;
}

Instance::Instance(OfxImageEffectHandle handle) : handle_(handle) {
    OfxPropertySetHandle set = nullptr;
    if (TheSuites().effect->getPropertySet(handle, &set) != kOfxStatOK || !set)
        throw Refusal(kOfxStatFailed, "the host has no properties for this effect");
    properties_ = Properties(set);
    FindClips();
    FindParameters();
    drawer_ = Drawer::Shared();
}

Instance& Instance::Of(const void* handle) {
    const auto effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    OfxPropertySetHandle set = nullptr;
    void* instance = nullptr;
    if (effect && TheSuites().effect->getPropertySet(effect, &set) == kOfxStatOK)
        instance = Properties(set).Pointer(kOfxPropInstanceData);
    if (!instance) throw Refusal(kOfxStatFailed, "");
    return *static_cast<Instance*>(instance);
}

void Instance::FindClips() {
    source_ = NeedClip(handle_, kOfxImageEffectSimpleSourceClipName);
    output_ = NeedClip(handle_, kOfxImageEffectOutputClipName);
    texture_ = FindClip(handle_, kTextureClipName);
}

void Instance::FindParameters() {
    const auto table = ParameterTable();
    parameters_.resize(table.size());
    if (TheSuites().effect->getParamSet(handle_, &parameterSet_) != kOfxStatOK || !parameterSet_)
        throw Refusal(kOfxStatFailed, "the host has no parameters for this effect");
    for (std::size_t i = 0; i < table.size(); ++i) {
        OfxParamHandle parameter = nullptr;
        if (TheSuites().parameter->paramGetHandle(parameterSet_, table[i].name, &parameter, nullptr) == kOfxStatOK)
            parameters_[i] = parameter;
    }
}

HostNumbers Instance::Numbers(std::size_t place, OfxTime time) const {
    const ParameterRow& row = ParameterTable()[place];
    const OfxParamHandle parameter = parameters_[place];
    HostNumbers numbers = row.standard;
    if (!parameter) return numbers;
    int whole = 0;
    bool isThere = false;
    switch (row.kind) {
        case ParameterKind::kChoice:
        case ParameterKind::kInteger:
        case ParameterKind::kSwitch:
            isThere = GetValue(parameter, time, &whole);
            numbers[0] = whole;
            break;
        case ParameterKind::kColor:
            isThere = GetValue(parameter, time, &numbers[0], &numbers[1], &numbers[2]);
            break;
        case ParameterKind::kPoint:
            isThere = GetValue(parameter, time, &numbers[0], &numbers[1]);
            break;
        default:
            isThere = GetValue(parameter, time, &numbers[0]);
            break;
    }
    if (!isThere)
        throw Refusal(kOfxStatFailed, std::string("the host does not return the value of '") + row.name + "'");
    return numbers;
}

AlphaChoice Instance::Alpha(OfxTime time) const {
    const double item = Number(kAlphaName, time);
    return item == 1 ? AlphaChoice::kPremultiplied : item == 2 ? AlphaChoice::kStraight : AlphaChoice::kAutomatic;
}

Values Instance::ValuesAt(OfxTime time, const LayerPlace& layer) const {
    const auto table = ParameterTable();
    Values values = drawer_->Defaults();
    for (std::size_t i = 0; i < table.size(); ++i) {
        // A point's default is a part of the project, so that a missing one is left to the effect.
        if (!IsEffectValue(table[i]) || !parameters_[i]) continue;
        const HostNumbers numbers = Numbers(i, time);
        if (IsDefault(table[i], numbers, layer)) continue;
        std::visit([&](const auto& value) { values.Set(drawer_->RowOf(i), value); },
                   EffectValueOf(table[i], numbers, layer));
    }
    return values;
}

bool Instance::IsAborted() const {
    const auto abort = TheSuites().effect->abort;
    return abort && abort(handle_) != 0;
}

}  // namespace umbrant::openfx
