// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Loads the plug-in and calls its actions.

#include "tests/openfx_plugin/small_host.h"

#include <dlfcn.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "openfx/abi/actions.h"
#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/abi/parameter_names.h"
#include "openfx/abi/parameter_properties.h"
#include "tests/openfx_plugin/small_suites.h"

namespace umbrant::openfx {

namespace {

const void* FetchSuite(OfxPropertySetHandle, const char* name, int version) {
    const std::string suite = name;
    if (suite == kOfxPropertySuite && version == 1) return &SmallPropertySuite();
    if (suite == kOfxImageEffectSuite && version == 1) return &SmallEffectSuite();
    if (suite == kOfxParameterSuite && version == 1) return &SmallParameterSuite();
    if (suite == kOfxMessageSuite && version == 1) return &SmallMessageSuite();
    if (suite == kOfxMessageSuite && version == 2 && SmallHost::The().hasPersistentMessages)
        return &SmallMessageSuite();
    return nullptr;
}

}  // namespace

SmallHost& SmallHost::The() {
    static SmallHost& host = *new SmallHost;
    return host;
}

SmallHost::SmallHost() : host_{reinterpret_cast<OfxPropertySetHandle>(&set), FetchSuite} {
    set.Put<std::string>(kOfxPropName, {"org.umbrant.small-host"});
    set.Put(kOfxImageEffectPropSupportsMultiResolution, {1});
    set.Put(kOfxParamHostPropSupportsChoiceAnimation, {1});
    set.Put(kOfxParamHostPropMaxPages, {1});
}

std::string SmallHost::Load(const std::string& binary) {
    if (plugin) return {};
    void* const library = dlopen(binary.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return dlerror();
    const auto get = reinterpret_cast<OfxPlugin* (*)(int)>(dlsym(library, "OfxGetPlugin"));
    plugin = get ? get(0) : nullptr;
    if (!plugin) return binary + " has no plug-in";
    plugin->setHost(&host_);
    if (Call(kOfxActionLoad, nullptr) != kOfxStatOK) return "the plug-in cannot be loaded";
    if (Call(kOfxActionDescribe, &described) != kOfxStatOK) return "the plug-in cannot be described";
    SmallSet in;
    in.Put<std::string>(kOfxImageEffectPropContext, {kOfxImageEffectContextFilter});
    if (Call(kOfxImageEffectActionDescribeInContext, &described, &in) != kOfxStatOK)
        return "the plug-in cannot be described in a context";
    return {};
}

OfxStatus SmallHost::Call(const char* action, SmallEffect* effect, SmallSet* in, SmallSet* out) const {
    return plugin->mainEntry(action, effect, reinterpret_cast<OfxPropertySetHandle>(in),
                             reinterpret_cast<OfxPropertySetHandle>(out));
}

std::unique_ptr<SmallEffect> SmallHost::Create(OfxStatus& status) const {
    auto instance = std::make_unique<SmallEffect>(described);
    for (auto& [name, parameter] : instance->parameters) {
        const auto standard = parameter.set.values.find(kOfxParamPropDefault);
        if (standard != parameter.set.values.end()) parameter.value = standard->second;
        if (parameter.value.empty() && parameter.type == kOfxParamTypeRGB) parameter.value = {0.0, 0.0, 0.0};
    }
    status = Call(kOfxActionCreateInstance, instance.get());
    return instance;
}

OfxStatus SmallHost::Render(SmallEffect& instance, const OfxRectI& window, double scale) const {
    SmallSet in;
    in.Put(kOfxPropTime, {0.0});
    in.Put(kOfxImageEffectPropRenderWindow, {window.x1, window.y1, window.x2, window.y2});
    in.Put(kOfxImageEffectPropRenderScale, {scale, scale});
    return Call(kOfxImageEffectActionRender, &instance, &in);
}

void Describe(SmallImage& image) {
    image.set.Put<void*>(kOfxImagePropData, {image.bottom});
    image.set.Put(kOfxImagePropBounds, {image.bounds.x1, image.bounds.y1, image.bounds.x2, image.bounds.y2});
    image.set.Put(kOfxImagePropRowBytes, {image.rowBytes});
    image.set.Put<std::string>(kOfxImageEffectPropPixelDepth, {image.isFloat ? kOfxBitDepthFloat : kOfxBitDepthByte});
    image.set.Put<std::string>(kOfxImageEffectPropComponents, {kOfxImageComponentRGBA});
    image.set.Put<std::string>(kOfxImageEffectPropPreMultiplication, {image.alpha});
}

}  // namespace umbrant::openfx
