// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The plug-in as hosts find it: the three functions that it exports and the entry point with one line per action.
// Nothing is thrown across it.

#include <exception>
#include <new>
#include <string_view>

#include <umbrant/error.h>

#include "openfx/abi/actions.h"
#include "openfx/actions.h"
#include "openfx/describe.h"
#include "openfx/host/messages.h"
#include "openfx/host/refusal.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

OfxImageEffectHandle EffectOf(const void* handle) {
    return static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
}

OfxStatus Unload() {
    Drawer::Release();
    return kOfxStatOK;
}

/// A failure here turns off render scales for ever in one host, so an instance that cannot be found is no failure
/// either.
OfxStatus Region(const void* handle, const Properties& in, const Properties& out) {
    try {
        return GetRegionOfDefinition(Instance::Of(handle), in, out);
    } catch (...) {
        return kOfxStatReplyDefault;
    }
}

OfxStatus OnInstance(std::string_view action, const void* handle, const Properties& in, const Properties& out) {
    if (action == kOfxImageEffectActionRender) return Render(Instance::Of(handle), in);
    if (action == kOfxImageEffectActionIsIdentity) return IsIdentity(Instance::Of(handle), in, out);
    if (action == kOfxImageEffectActionGetRegionOfDefinition) return Region(handle, in, out);
    if (action == kOfxImageEffectActionGetRegionsOfInterest) return GetRegionsOfInterest(Instance::Of(handle), in, out);
    if (action == kOfxImageEffectActionGetClipPreferences) return GetClipPreferences(Instance::Of(handle), out);
    if (action == kOfxActionInstanceChanged) return InstanceChanged(Instance::Of(handle), in);
    return kOfxStatReplyDefault;
}

/// A descriptor, or an instance's beginning and end; all other actions are OnInstance's.
OfxStatus OnEffect(std::string_view action, const void* handle, const Properties& in, const Properties& out) {
    OfxStatus (*call)(OfxImageEffectHandle) = nullptr;
    if (action == kOfxActionDescribe) call = Describe;
    if (action == kOfxImageEffectActionDescribeInContext) call = DescribeInContext;
    if (action == kOfxActionCreateInstance) call = CreateInstance;
    if (action == kOfxActionDestroyInstance) call = DestroyInstance;
    if (!call) return OnInstance(action, handle, in, out);
    return handle ? call(EffectOf(handle)) : kOfxStatFailed;
}

OfxStatus Dispatch(std::string_view action, const void* handle, const Properties& in, const Properties& out) {
    if (action == kOfxActionLoad) return FetchSuites();
    if (action == kOfxActionUnload) return Unload();
    // A host that has not sent the first action, or had too little for it.
    if (!TheSuites().property && FetchSuites() != kOfxStatOK) return kOfxStatErrMissingHostFeature;
    return OnEffect(action, handle, in, out);
}

/// One status and, with a sentence, one message.
OfxStatus Fail(std::string_view action, const void* handle, OfxStatus status, const char* sentence) noexcept {
    if (!*sentence || !TheSuites().property) return status;
    if (action != kOfxImageEffectActionRender) {
        ShowMessage(EffectOf(handle), kOfxMessageError, sentence);
        return status;
    }
    bool isShown = false;
    try {
        isShown = Instance::Of(handle).showsFailure.exchange(true);
    } catch (...) {
        // Without the instance nothing clears the message either.
    }
    // A message that does not stay at the instance is shown for the first of several failing frames.
    if (!isShown || TheSuites().persistentMessage) ShowFailure(EffectOf(handle), sentence);
    return status;
}

/// The library reports a lack of memory, its own and the effect's, by these words.
OfxStatus StatusOf(const Error& problem) {
    const std::string_view sentence = problem.what();
    const bool isMemory = sentence.find("not enough memory") != std::string_view::npos ||
                          sentence.find("PF_Err_OUT_OF_MEMORY") != std::string_view::npos;
    return isMemory ? kOfxStatErrMemory : kOfxStatFailed;
}

/// The status as the standard lists it for the action: Failed where it lists no other reason.
OfxStatus Listed(std::string_view action, OfxStatus status) {
    const bool isChange = action == kOfxActionInstanceChanged || action == kOfxActionDestroyInstance;
    if (status == kOfxStatErrMemory && isChange) return kOfxStatFailed;
    const bool isDescription =
        action == kOfxActionLoad || action == kOfxActionDescribe || action == kOfxImageEffectActionDescribeInContext;
    return status == kOfxStatErrMissingHostFeature && !isDescription ? kOfxStatFailed : status;
}

OfxStatus MainEntry(std::string_view action, const void* handle, OfxPropertySetHandle in,
                    OfxPropertySetHandle out) noexcept {
    try {
        return Dispatch(action, handle, Properties(in), Properties(out));
    } catch (const Refusal& problem) {
        return Fail(action, handle, problem.Status(), problem.what());
    } catch (const Error& problem) {
        return Fail(action, handle, StatusOf(problem), problem.what());
    } catch (const std::bad_alloc&) {
        return Fail(action, handle, kOfxStatErrMemory, "not enough memory for the shadow of this image");
    } catch (const std::exception& problem) {
        return Fail(action, handle, kOfxStatFailed, problem.what());
    } catch (...) {
        return Fail(action, handle, kOfxStatFailed, "the shadow failed for an unknown reason");
    }
}

OfxStatus EntryPoint(const char* action, const void* handle, OfxPropertySetHandle in, OfxPropertySetHandle out) {
    return action ? Listed(action, MainEntry(action, handle, in, out)) : kOfxStatReplyDefault;
}

void SetHost(OfxHost* host) {
    KeepHost(host);
}

OfxPlugin thePlugin = {kOfxImageEffectPluginApi,
                       kOfxImageEffectPluginApiVersion,
                       kPluginIdentifier,
                       kPluginMajor,
                       kPluginMinor,
                       SetHost,
                       EntryPoint};

}  // namespace

}  // namespace umbrant::openfx

extern "C" {

__attribute__((visibility("default"))) int OfxGetNumberOfPlugins() {
    return 1;
}

__attribute__((visibility("default"))) OfxPlugin* OfxGetPlugin(int index) {
    return index == 0 ? &umbrant::openfx::thePlugin : nullptr;
}

__attribute__((visibility("default"))) OfxStatus OfxSetHost(const OfxHost* host) {
    umbrant::openfx::KeepHost(host);
    return kOfxStatOK;
}

}  // extern "C"
