// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// OfxImageEffectSuite: effects, clips, images, image memory.

#include "tests/openfx/host/handed_over.h"
#include "tests/openfx/host/host.h"
#include "tests/openfx/host/image.h"
#include "tests/openfx/host/suites/begin.h"
#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

EffectObject* BeginEffect(const char* function, OfxImageEffectHandle handle, OfxStatus& status) {
    return Begin<EffectObject>(function, handle, "an effect", status);
}

OfxStatus GetPropertySet(OfxImageEffectHandle handle, OfxPropertySetHandle* set) {
    OfxStatus status = kOfxStatOK;
    EffectObject* effect = BeginEffect("getPropertySet", handle, status);
    if (effect != nullptr) *set = effect->Properties().As<OfxPropertySetHandle>();
    return status;
}

OfxStatus GetParamSet(OfxImageEffectHandle handle, OfxParamSetHandle* set) {
    OfxStatus status = kOfxStatOK;
    EffectObject* effect = BeginEffect("getParamSet", handle, status);
    if (effect == nullptr) return status;
    if (effect->Kind() == EffectKind::kDescriptor) {
        Host::Current()->record.Violation("getParamSet: parameters belong to OfxImageEffectActionDescribeInContext");
        return kOfxStatErrBadHandle;
    }
    *set = effect->Params().As<OfxParamSetHandle>();
    return status;
}

OfxStatus ClipDefine(OfxImageEffectHandle handle, const char* name, OfxPropertySetHandle* set) {
    OfxStatus status = kOfxStatOK;
    EffectObject* effect = BeginEffect("clipDefine", handle, status);
    if (effect == nullptr) return status;
    Record& record = Host::Current()->record;
    if (effect->Kind() != EffectKind::kContext) {
        record.Violation("clipDefine was called outside of OfxImageEffectActionDescribeInContext");
        return kOfxStatErrBadHandle;
    }
    if (name == nullptr || effect->FindClip(name) != nullptr) {
        record.Violation("clipDefine: the clip " + std::string(name == nullptr ? "(null)" : name) +
                         " is defined twice");
        return kOfxStatErrExists;
    }
    Clip& clip = effect->AddClip(name);
    if (set != nullptr) *set = clip.Properties().As<OfxPropertySetHandle>();
    return kOfxStatOK;
}

OfxStatus ClipGetHandle(OfxImageEffectHandle handle, const char* name, OfxImageClipHandle* clip,
                        OfxPropertySetHandle* set) {
    OfxStatus status = kOfxStatOK;
    EffectObject* effect = BeginEffect("clipGetHandle", handle, status);
    if (effect == nullptr) return status;
    Record& record = Host::Current()->record;
    if (effect->Kind() != EffectKind::kInstance) {
        record.Violation("clipGetHandle was called with a descriptor; only instances have clips");
        return kOfxStatErrBadHandle;
    }
    Clip* found = name == nullptr ? nullptr : effect->FindClip(name);
    if (found == nullptr) {
        // The definition may be what failed.
        if (record.HasFaults()) return kOfxStatErrBadHandle;
        record.Violation("clipGetHandle: the effect did not define a clip " + std::string(name == nullptr ? "" : name));
        return kOfxStatErrBadHandle;
    }
    *clip = found->As<OfxImageClipHandle>();
    if (set != nullptr) *set = found->Properties().As<OfxPropertySetHandle>();
    return kOfxStatOK;
}

OfxStatus ClipGetPropertySet(OfxImageClipHandle handle, OfxPropertySetHandle* set) {
    OfxStatus status = kOfxStatOK;
    Clip* clip = Begin<Clip>("clipGetPropertySet", handle, "a clip", status);
    if (clip != nullptr) *set = clip->Properties().As<OfxPropertySetHandle>();
    return status;
}

OfxStatus ClipGetImage(OfxImageClipHandle handle, OfxTime time, const OfxRectD*, OfxPropertySetHandle* set) {
    OfxStatus status = kOfxStatOK;
    Clip* clip = Begin<Clip>("clipGetImage", handle, "a clip", status);
    if (clip == nullptr) return status;
    FrameJob* job = clip->Effect().JobOfThisThread();
    // Outside of a render there are no images.
    return job == nullptr ? kOfxStatFailed : job->Fetch(*clip, time, set);
}

OfxStatus ClipReleaseImage(OfxPropertySetHandle handle) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("clipReleaseImage");
    auto* set = host.Find<ImageSet>(handle, "clipReleaseImage", "an image");
    if (set == nullptr) return kOfxStatErrBadHandle;
    // Also where the function is to fail: the plug-in did its part.
    set->job.Release(*set);
    return fault;
}

OfxStatus ClipGetRegionOfDefinition(OfxImageClipHandle handle, OfxTime, OfxRectD* region) {
    OfxStatus status = kOfxStatOK;
    Clip* clip = Begin<Clip>("clipGetRegionOfDefinition", handle, "a clip", status);
    if (clip == nullptr) return status;
    if (!clip->connected) return kOfxStatFailed;
    *region = clip->region;
    return kOfxStatOK;
}

int Abort(OfxImageEffectHandle handle) {
    OfxStatus status = kOfxStatOK;
    EffectObject* effect = BeginEffect("abort", handle, status);
    // An intended failure of this function is a wish to stop.
    if (effect == nullptr) return status == kOfxStatErrBadHandle ? 0 : 1;
    FrameJob* job = effect->JobOfThisThread();
    if (job == nullptr) {
        Host::Current()->record.Violation("abort was called outside of OfxImageEffectActionRender");
        return 0;
    }
    const int call = ++job->abortCalls;
    return job->abortAt != 0 && call >= job->abortAt ? 1 : 0;
}

OfxStatus ImageMemoryAlloc(OfxImageEffectHandle handle, size_t bytes, OfxImageMemoryHandle* memory) {
    Host& host = *Host::Current();
    if (const OfxStatus status = host.Enter("imageMemoryAlloc")) return status;
    if (handle != nullptr && host.Find<EffectObject>(handle, "imageMemoryAlloc", "an effect") == nullptr) {
        return kOfxStatErrBadHandle;
    }
    host.record.Open("image memory", 1);
    auto* made = new ImageMemory(host, bytes);
    HandedOver::Add(made);
    *memory = made->As<OfxImageMemoryHandle>();
    return kOfxStatOK;
}

OfxStatus ImageMemoryFree(OfxImageMemoryHandle handle) {
    Host& host = *Host::Current();
    const OfxStatus fault = host.Enter("imageMemoryFree");
    auto* memory = host.Find<ImageMemory>(handle, "imageMemoryFree", "image memory");
    if (memory == nullptr) return kOfxStatErrBadHandle;
    host.record.Open("image memory", -1);
    HandedOver::Remove(memory);
    delete memory;
    return fault;
}

OfxStatus ImageMemoryLock(OfxImageMemoryHandle handle, void** data) {
    OfxStatus status = kOfxStatOK;
    auto* memory = Begin<ImageMemory>("imageMemoryLock", handle, "image memory", status);
    if (memory == nullptr) return status;
    ++memory->locks;
    *data = memory->Data();
    return kOfxStatOK;
}

OfxStatus ImageMemoryUnlock(OfxImageMemoryHandle handle) {
    OfxStatus status = kOfxStatOK;
    auto* memory = Begin<ImageMemory>("imageMemoryUnlock", handle, "image memory", status);
    if (memory == nullptr) return status;
    if (memory->locks == 0) Host::Current()->record.Violation("imageMemoryUnlock: the memory is not locked");
    if (memory->locks > 0) --memory->locks;
    return kOfxStatOK;
}

}  // namespace

const OfxImageEffectSuiteV1& ImageEffectSuite() {
    static const OfxImageEffectSuiteV1 suite = {
        GetPropertySet,
        GetParamSet,
        ClipDefine,
        ClipGetHandle,
        ClipGetPropertySet,
        ClipGetImage,
        ClipReleaseImage,
        ClipGetRegionOfDefinition,
        Abort,
        ImageMemoryAlloc,
        ImageMemoryFree,
        ImageMemoryLock,
        ImageMemoryUnlock,
    };
    return suite;
}

}  // namespace umbrant::ofx
