// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A small filter that inverts, in 8 bits. UMBRANT_TEST_PATIENT names what is wrong with it, as
// "OfxActionDescribe:throws"; nothing without it.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "openfx/abi/actions.h"
#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_effect_suite.h"
#include "openfx/abi/image_names.h"
#include "openfx/abi/message_suite.h"
#include "openfx/abi/parameter_names.h"
#include "openfx/abi/parameter_properties.h"
#include "openfx/abi/parameter_suite.h"
#include "openfx/abi/property_suite.h"

namespace {

const OfxHost* host = nullptr;
const OfxPropertySuiteV1* properties = nullptr;
const OfxImageEffectSuiteV1* effects = nullptr;
const OfxParameterSuiteV1* parameters = nullptr;
const OfxMessageSuiteV2* messages = nullptr;

/// What is wrong at this place; empty for nothing.
std::string WrongAt(std::string_view place) {
    const char* const asked = std::getenv("UMBRANT_TEST_PATIENT");
    const std::string_view text = asked ? asked : "";
    const std::size_t colon = text.find(':');
    return text.substr(0, colon) == place ? std::string(text.substr(colon + 1)) : std::string();
}

/// Does it, where it is something that every place can do.
void Suffer(std::string_view place) {
    const std::string wrong = WrongAt(place);
    if (wrong == "throws") throw std::runtime_error("no coffee");
    if (wrong == "throws-number") throw 516;
    if (wrong == "crashes") {
        // A sanitizer would end the process in its own way.
        std::signal(SIGSEGV, SIG_DFL);
        std::raise(SIGSEGV);
    }
    if (wrong == "exits") std::_Exit(3);
    while (wrong == "hangs") pause();
}

const struct Constructed {
    Constructed() { Suffer("constructor"); }
} constructed;

void Put(OfxPropertySetHandle set, const char* name, const char* value, int index = 0) {
    properties->propSetString(set, name, index, value);
}

OfxStatus Describe(OfxImageEffectHandle effect) {
    OfxPropertySetHandle set = nullptr;
    effects->getPropertySet(effect, &set);
    Put(set, kOfxPropLabel, "Patient");
    Put(set, kOfxImageEffectPropSupportedContexts,
        WrongAt("context") == "generator" ? kOfxImageEffectContextGenerator : kOfxImageEffectContextFilter);
    if (WrongAt("context") == "none") properties->propReset(set, kOfxImageEffectPropSupportedContexts);
    Put(set, kOfxImageEffectPropSupportedPixelDepths, kOfxBitDepthByte);
    return kOfxStatOK;
}

OfxStatus DescribeInContext(OfxImageEffectHandle effect) {
    for (const char* name : {kOfxImageEffectSimpleSourceClipName, kOfxImageEffectOutputClipName}) {
        OfxPropertySetHandle clip = nullptr;
        if (WrongAt("context") == "generator" && name == std::string_view(kOfxImageEffectSimpleSourceClipName))
            continue;
        effects->clipDefine(effect, name, &clip);
        Put(clip, kOfxImageEffectPropSupportedComponents, kOfxImageComponentRGBA);
    }
    OfxParamSetHandle set = nullptr;
    effects->getParamSet(effect, &set);
    OfxPropertySetHandle parameter = nullptr;
    parameters->paramDefine(set, kOfxParamTypeInteger, "white", &parameter);
    properties->propSetInt(parameter, kOfxParamPropDefault, 0, 255);
    return kOfxStatOK;
}

struct Image {
    OfxPropertySetHandle set = nullptr;
    unsigned char* data = nullptr;
    int bounds[4] = {};
    int rowBytes = 0;
};

Image Take(OfxImageEffectHandle effect, const char* clipName) {
    OfxImageClipHandle clip = nullptr;
    effects->clipGetHandle(effect, clipName, &clip, nullptr);
    Image image;
    effects->clipGetImage(clip, 0, nullptr, &image.set);
    void* data = nullptr;
    properties->propGetPointer(image.set, kOfxImagePropData, 0, &data);
    image.data = static_cast<unsigned char*>(data);
    properties->propGetIntN(image.set, kOfxImagePropBounds, 4, image.bounds);
    properties->propGetInt(image.set, kOfxImagePropRowBytes, 0, &image.rowBytes);
    return image;
}

int White(OfxImageEffectHandle effect) {
    OfxParamSetHandle set = nullptr;
    OfxParamHandle parameter = nullptr;
    int white = 0;
    effects->getParamSet(effect, &set);
    parameters->paramGetHandle(set, "white", &parameter, nullptr);
    parameters->paramGetValueAtTime(parameter, 0.0, &white);
    return white;
}

OfxStatus Render(OfxImageEffectHandle effect) {
    const std::string wrong = WrongAt("pixels");
    if (wrong == "none") return kOfxStatOK;
    if (wrong == "message") {
        messages->message(effect, kOfxMessageError, nullptr, "%s is %d", "the licence", 7);
        return kOfxStatFailed;
    }
    const int white = White(effect);
    const Image from = Take(effect, kOfxImageEffectSimpleSourceClipName);
    const Image to = Take(effect, kOfxImageEffectOutputClipName);
    const int height = to.bounds[3] - to.bounds[1];
    for (int i = 0; i < to.rowBytes * height; ++i) to.data[i] = static_cast<unsigned char>(white - from.data[i]);
    if (wrong == "beyond") to.data[to.rowBytes * height] = 1;
    effects->clipReleaseImage(from.set);
    if (wrong != "kept") effects->clipReleaseImage(to.set);
    return kOfxStatOK;
}

OfxStatus MainEntry(const char* name, const void* handle, OfxPropertySetHandle, OfxPropertySetHandle out) {
    const std::string_view action = name;
    Suffer(action);
    if (WrongAt(action) == "fails") return kOfxStatFailed;
    auto* const effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
    if (action == kOfxActionLoad) {
        const auto fetch = [](const char* suite, int version) { return host->fetchSuite(host->host, suite, version); };
        properties = static_cast<const OfxPropertySuiteV1*>(fetch(kOfxPropertySuite, 1));
        effects = static_cast<const OfxImageEffectSuiteV1*>(fetch(kOfxImageEffectSuite, 1));
        parameters = static_cast<const OfxParameterSuiteV1*>(fetch(kOfxParameterSuite, 1));
        messages = static_cast<const OfxMessageSuiteV2*>(fetch(kOfxMessageSuite, 2));
        return properties && effects && parameters && messages ? kOfxStatOK : kOfxStatErrMissingHostFeature;
    }
    if (action == kOfxActionDescribe) return Describe(effect);
    if (action == kOfxImageEffectActionDescribeInContext) return DescribeInContext(effect);
    if (action == kOfxImageEffectActionRender) return Render(effect);
    if (action == kOfxImageEffectActionIsIdentity && !WrongAt("identity").empty()) {
        Put(out, kOfxPropName, kOfxImageEffectSimpleSourceClipName);
        return kOfxStatOK;
    }
    return kOfxStatReplyDefault;
}

void SetHost(OfxHost* given) {
    Suffer("setHost");
    host = given;
}

OfxPlugin plugin = {
    kOfxImageEffectPluginApi, kOfxImageEffectPluginApiVersion, "com.example.patient", 1, 2, SetHost, MainEntry};

}  // namespace

extern "C" [[gnu::visibility("default")]] int OfxGetNumberOfPlugins() {
    Suffer("count");
    return WrongAt("count") == "zero" ? 0 : 1;
}

extern "C" [[gnu::visibility("default")]] OfxPlugin* OfxGetPlugin(int) {
    return WrongAt("record") == "null" ? nullptr : &plugin;
}
