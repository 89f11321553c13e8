// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The entry points of the small effect, and its errors with services.

#include <cstring>
#include <stdexcept>
#include <string>

#include "tests/openfx/planted/plugin.h"

namespace umbrant::ofx::planted {

Suites suites;

OfxPropertySetHandle PropertiesOf(OfxImageEffectHandle effect) {
    OfxPropertySetHandle set = nullptr;
    Need(suites.effect->getPropertySet(effect, &set));
    return set;
}

OfxParamHandle ParamOf(OfxImageEffectHandle effect, const char* name) {
    OfxParamSetHandle set = nullptr;
    Need(suites.effect->getParamSet(effect, &set));
    OfxParamHandle param = nullptr;
    const OfxStatus status = suites.param->paramGetHandle(set, name, &param, nullptr);
    if (!Has(Flaw::kTrustsHandles)) Need(status);
    return param;
}

OfxImageClipHandle ClipOf(OfxImageEffectHandle effect, const char* name) {
    OfxImageClipHandle clip = nullptr;
    Need(suites.effect->clipGetHandle(effect, name, &clip, nullptr));
    return clip;
}

namespace {

OfxPropertySetHandle keptArguments = nullptr;

template <typename Suite>
void Fetch(const Suite*& suite, const char* name, int version) {
    suite = static_cast<const Suite*>(suites.host->fetchSuite(suites.host->host, name, version));
}

OfxStatus Load() {
    Fetch(suites.property, "OfxPropertySuite", 1);
    Fetch(suites.effect, "OfxImageEffectSuite", 1);
    Fetch(suites.param, "OfxParameterSuite", 1);
    Fetch(suites.memory, "OfxMemorySuite", 1);
    Fetch(suites.thread, "OfxMultiThreadSuite", 1);
    Fetch(suites.message, "OfxMessageSuite", 2);
    Fetch(suites.progress, "OfxProgressSuite", 1);
    const bool complete = suites.property != nullptr && suites.effect != nullptr && suites.param != nullptr;
    const bool others = suites.memory != nullptr && suites.thread != nullptr && suites.message != nullptr;
    if (Has(Flaw::kNeedsSuites) && !others) return kOfxStatFailed;
    if (Has(Flaw::kIgnoresMissingSuites)) return kOfxStatOK;
    if (!complete) return kOfxStatErrMissingHostFeature;
    if (Has(Flaw::kAnswersFatal)) return kOfxStatErrFatal;
    return kOfxStatOK;
}

void Nested(unsigned int, unsigned int, void*) {
    suites.thread->multiThread([](unsigned int, unsigned int, void*) {}, 1, nullptr);
}

void MisuseServices(OfxImageEffectHandle effect) {
    void* block = nullptr;
    if (Has(Flaw::kLeaksMemory)) suites.memory->memoryAlloc(nullptr, 16, &block);
    if (Has(Flaw::kFreesTwice)) {
        suites.memory->memoryAlloc(nullptr, 16, &block);
        suites.memory->memoryFree(block);
        suites.memory->memoryFree(block);
    }
    OfxMutexHandle mutex = nullptr;
    if (Has(Flaw::kLeaksMutex)) suites.thread->mutexCreate(&mutex, 0);
    OfxImageMemoryHandle memory = nullptr;
    if (Has(Flaw::kLeaksImageMemory)) suites.effect->imageMemoryAlloc(effect, 16, &memory);
    OfxParamSetHandle params = nullptr;
    suites.effect->getParamSet(effect, &params);
    if (Has(Flaw::kOpenEdit)) suites.param->paramEditBegin(params, "Edit");
    if (Has(Flaw::kWrongMessage)) suites.message->message(effect, "Error", nullptr, "%s", "text");
    if (Has(Flaw::kNestedThreads)) suites.thread->multiThread(Nested, 1, nullptr);
    if (Has(Flaw::kWrongProgress)) {
        suites.progress->progressStart(effect, "Progress");
        suites.progress->progressUpdate(effect, 7);
        suites.progress->progressEnd(effect);
    }
}

OfxStatus Create(OfxImageEffectHandle effect) {
    MisuseServices(effect);
    if (Has(Flaw::kNullHandle)) suites.property->propSetInt(nullptr, "OfxPropInstanceData", 0, 0);
    if (Has(Flaw::kWrongHandle)) {
        suites.property->propSetInt(reinterpret_cast<OfxPropertySetHandle>(effect), "OfxPropInstanceData", 0, 0);
    }
    if (Has(Flaw::kDefinesLate)) {
        OfxParamSetHandle params = nullptr;
        suites.effect->getParamSet(effect, &params);
        suites.param->paramDefine(params, "OfxParamTypeDouble", "late", nullptr);
    }
    if (Has(Flaw::kKeepsText)) {
        char* name = nullptr;
        OfxPropertySetHandle clip = nullptr;
        Need(suites.effect->clipGetPropertySet(ClipOf(effect, "Source"), &clip));
        Need(suites.property->propGetString(clip, "OfxPropName", 0, &name));
        int connected = 0;
        suites.property->propGetInt(clip, "OfxImageClipPropConnected", 0, &connected);
        ClipOf(effect, name);
    }
    return kOfxStatOK;
}

OfxStatus Change(OfxImageEffectHandle effect, OfxPropertySetHandle in) {
    if (Has(Flaw::kKeepsArguments)) {
        char* reason = nullptr;
        if (keptArguments != nullptr) suites.property->propGetString(keptArguments, "OfxPropChangeReason", 0, &reason);
        keptArguments = in;
    }
    if (Has(Flaw::kEndlessChange)) suites.param->paramSetValue(ParamOf(effect, "gain"), 0.5);
    if (Has(Flaw::kNoSuchOption)) suites.param->paramSetValue(ParamOf(effect, "mode"), 7);
    return kOfxStatOK;
}

OfxStatus Dispatch(const std::string& action, const void* handle, OfxPropertySetHandle in, OfxPropertySetHandle out) {
    OfxImageEffectHandle effect = EffectOf(handle);
    if (action == "OfxActionLoad") return Load();
    if (action == "OfxActionUnload") return kOfxStatOK;
    if (action == "OfxActionDescribe") return Describe(effect);
    if (action == "OfxImageEffectActionDescribeInContext") return DescribeInContext(effect);
    if (action == "OfxActionCreateInstance") return Create(effect);
    if (action == "OfxActionDestroyInstance") return kOfxStatOK;
    if (action == "OfxActionInstanceChanged") return Change(effect, in);
    if (action == "OfxImageEffectActionGetRegionOfDefinition") return GetRegion(effect, in, out);
    if (action == "OfxImageEffectActionIsIdentity") return IsIdentity(effect, out);
    if (action == "OfxImageEffectActionRender") return Render(effect, in);
    return Has(Flaw::kAnswersUnknown) ? kOfxStatFailed : kOfxStatReplyDefault;
}

OfxStatus Main(const char* action, const void* handle, OfxPropertySetHandle in, OfxPropertySetHandle out) {
    if (Has(Flaw::kThrows) && std::string(action) == "OfxActionCreateInstance") throw std::runtime_error("planted");
    if (Has(Flaw::kThrowsInRender) && std::string(action) == "OfxImageEffectActionRender") throw 7;
    // Says that everything is in order, whatever it has.
    if (Has(Flaw::kIgnoresMissingSuites) && std::string(action) != "OfxActionLoad") return kOfxStatOK;
    try {
        return Dispatch(action, handle, in, out);
    } catch (const Refusal& refusal) {
        return refusal.status == kOfxStatErrMemory ? kOfxStatErrMemory : kOfxStatFailed;
    }
}

void SetHost(OfxHost* host) {
    suites.host = host;
    if (Has(Flaw::kCallsTooEarly)) host->fetchSuite(host->host, "OfxPropertySuite", 1);
}

}  // namespace

}  // namespace umbrant::ofx::planted

extern "C" [[gnu::visibility("default")]] int OfxGetNumberOfPlugins() {
    return 1;
}

extern "C" [[gnu::visibility("default")]] OfxPlugin* OfxGetPlugin(int index) {
    using namespace umbrant::ofx::planted;
    static OfxPlugin plugIn = {Has(Flaw::kWrongApi) ? "ImageEffect" : "OfxImageEffectPluginAPI",
                               1,
                               "org.umbrant.test.planted",
                               1,
                               0,
                               SetHost,
                               Main};
    return index == 0 ? &plugIn : nullptr;
}
