// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Clips, images and image memory.

#include <cstdlib>
#include <new>

#include "host/doctor/openfx/effect.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"

namespace umbrant::host {

namespace {

OpenFxEffect* EffectOf(OfxImageEffectHandle handle) {
    return reinterpret_cast<OpenFxEffect*>(handle);
}
OpenFxClip* ClipOf(OfxImageClipHandle handle) {
    return reinterpret_cast<OpenFxClip*>(handle);
}

OfxStatus GetPropertySet(OfxImageEffectHandle effect, OfxPropertySetHandle* set) {
    if (!effect || !set) return kOfxStatErrBadHandle;
    *set = EffectOf(effect)->properties.Handle();
    return kOfxStatOK;
}

OfxStatus GetParamSet(OfxImageEffectHandle effect, OfxParamSetHandle* set) {
    if (!effect || !set) return kOfxStatErrBadHandle;
    *set = reinterpret_cast<OfxParamSetHandle>(&EffectOf(effect)->parameters);
    return kOfxStatOK;
}

OfxStatus ClipDefine(OfxImageEffectHandle effect, const char* name, OfxPropertySetHandle* set) {
    if (!effect || !name) return kOfxStatErrBadHandle;
    if (EffectOf(effect)->Find(name)) return kOfxStatErrExists;
    auto clip = std::make_unique<OpenFxClip>();
    clip->name = name;
    clip->properties.Declare(kOfxPropType, {std::string(kOfxTypeClip)});
    clip->properties.Declare(kOfxPropName, {clip->name});
    clip->properties.Declare(kOfxPropLabel, {clip->name});
    if (set) *set = clip->properties.Handle();
    EffectOf(effect)->clips.push_back(std::move(clip));
    return kOfxStatOK;
}

OfxStatus ClipGetHandle(OfxImageEffectHandle effect, const char* name, OfxImageClipHandle* handle,
                        OfxPropertySetHandle* set) {
    if (!effect || !name || !handle) return kOfxStatErrBadHandle;
    OpenFxClip* const clip = EffectOf(effect)->Find(name);
    if (!clip) return kOfxStatErrBadHandle;
    *handle = reinterpret_cast<OfxImageClipHandle>(clip);
    if (set) *set = clip->properties.Handle();
    return kOfxStatOK;
}

OfxStatus ClipGetPropertySet(OfxImageClipHandle clip, OfxPropertySetHandle* set) {
    if (!clip || !set) return kOfxStatErrBadHandle;
    *set = ClipOf(clip)->properties.Handle();
    return kOfxStatOK;
}

OfxStatus ClipGetImage(OfxImageClipHandle clip, OfxTime, const OfxRectD*, OfxPropertySetHandle* image) {
    if (!clip || !image) return kOfxStatErrBadHandle;
    if (!ClipOf(clip)->image) return kOfxStatFailed;
    ++ClipOf(clip)->image->taken;
    *image = ClipOf(clip)->image->properties.Handle();
    return kOfxStatOK;
}

OfxStatus ClipReleaseImage(OfxPropertySetHandle image) {
    if (!image) return kOfxStatErrBadHandle;
    // An image's properties know the image that they belong to.
    auto* const owner = static_cast<OpenFxImage*>(PropertySet::Of(image)->Get<void*>("UmbrantPropOwner", nullptr));
    if (!owner) return kOfxStatErrBadHandle;
    --owner->taken;
    return kOfxStatOK;
}

OfxStatus ClipGetRegion(OfxImageClipHandle clip, OfxTime, OfxRectD* region) {
    if (!clip || !region) return kOfxStatErrBadHandle;
    if (!ClipOf(clip)->image) return kOfxStatFailed;
    *region = ClipOf(clip)->region;
    return kOfxStatOK;
}

int Abort(OfxImageEffectHandle) {
    return 0;
}

OfxStatus ImageMemoryAlloc(OfxImageEffectHandle, std::size_t bytes, OfxImageMemoryHandle* handle) {
    if (!handle) return kOfxStatErrBadHandle;
    void* const memory = std::malloc(bytes ? bytes : 1);
    if (!memory) return kOfxStatErrMemory;
    *handle = static_cast<OfxImageMemoryHandle>(memory);
    return kOfxStatOK;
}

OfxStatus ImageMemoryFree(OfxImageMemoryHandle handle) {
    std::free(handle);
    return kOfxStatOK;
}

OfxStatus ImageMemoryLock(OfxImageMemoryHandle handle, void** memory) {
    if (!handle || !memory) return kOfxStatErrBadHandle;
    *memory = handle;
    return kOfxStatOK;
}

OfxStatus ImageMemoryUnlock(OfxImageMemoryHandle handle) {
    return handle ? kOfxStatOK : kOfxStatErrBadHandle;
}

}  // namespace

OpenFxClip* OpenFxEffect::Find(const std::string& clip) const {
    for (const auto& each : clips) {
        if (each->name == clip) return each.get();
    }
    return nullptr;
}

const OfxImageEffectSuiteV1& ImageEffectSuite() {
    static const OfxImageEffectSuiteV1 suite = {
        GetPropertySet,  GetParamSet,      ClipDefine,       ClipGetHandle, ClipGetPropertySet,
        ClipGetImage,    ClipReleaseImage, ClipGetRegion,    Abort,         ImageMemoryAlloc,
        ImageMemoryFree, ImageMemoryLock,  ImageMemoryUnlock};
    return suite;
}

}  // namespace umbrant::host
