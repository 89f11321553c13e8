// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suites apart from those of properties, effects and parameters: messages, memory, threads. This host shows
// nothing, has no overlays, and draws in memory.

#include "host/doctor/openfx/host_suites.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>

#include "host/doctor/openfx/effect.h"
#include "host/doctor/openfx/property_set.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/abi/memory_suite.h"
#include "openfx/abi/message_suite.h"
#include "openfx/abi/multi_thread_suite.h"
#include "openfx/abi/parameter_properties.h"

namespace umbrant::host {

namespace {

std::mutex messageMutex;
std::string lastMessage;

void KeepMessage(const char* format, va_list values) {
    if (!format) return;
    std::array<char, 1024> text{};
    std::vsnprintf(text.data(), text.size(), format, values);
    const std::lock_guard lock(messageMutex);
    lastMessage = text.data();
    while (!lastMessage.empty() && (lastMessage.back() == '\n' || lastMessage.back() == '.')) lastMessage.pop_back();
}

OfxStatus Say(void*, const char*, const char*, const char* format, ...) {
    va_list values;
    va_start(values, format);
    KeepMessage(format, values);
    va_end(values);
    return kOfxStatOK;
}

OfxStatus ClearMessage(void*) {
    return kOfxStatOK;
}

OfxStatus Allocate(void*, std::size_t bytes, void** memory) {
    if (!memory) return kOfxStatErrBadHandle;
    *memory = std::malloc(bytes ? bytes : 1);
    return *memory ? kOfxStatOK : kOfxStatErrMemory;
}

OfxStatus Free(void* memory) {
    std::free(memory);
    return kOfxStatOK;
}

/// Runs them one after the other on the caller's thread; the suite reports one processor.
OfxStatus RunThreads(OfxThreadFunctionV1* function, unsigned int count, void* argument) {
    if (!function) return kOfxStatFailed;
    for (unsigned int i = 0; i < count; ++i) function(i, count, argument);
    return kOfxStatOK;
}

OfxStatus CountProcessors(unsigned int* count) {
    if (!count) return kOfxStatFailed;
    *count = 1;
    return kOfxStatOK;
}

OfxStatus ThreadIndex(unsigned int* index) {
    if (!index) return kOfxStatFailed;
    *index = 0;
    return kOfxStatOK;
}

int IsSpawned() {
    return 0;
}

std::recursive_mutex* MutexOf(OfxMutexHandle handle) {
    return reinterpret_cast<std::recursive_mutex*>(handle);
}

OfxStatus MutexCreate(OfxMutexHandle* handle, int locks) {
    if (!handle) return kOfxStatErrBadHandle;
    auto* const mutex = new (std::nothrow) std::recursive_mutex;
    if (!mutex) return kOfxStatErrMemory;
    for (int i = 0; i < locks; ++i) mutex->lock();
    *handle = reinterpret_cast<OfxMutexHandle>(mutex);
    return kOfxStatOK;
}

OfxStatus MutexDestroy(OfxMutexHandle handle) {
    if (!handle) return kOfxStatErrBadHandle;
    delete MutexOf(handle);
    return kOfxStatOK;
}

OfxStatus MutexLock(OfxMutexHandle handle) {
    if (!handle) return kOfxStatErrBadHandle;
    MutexOf(handle)->lock();
    return kOfxStatOK;
}

OfxStatus MutexUnlock(OfxMutexHandle handle) {
    if (!handle) return kOfxStatErrBadHandle;
    MutexOf(handle)->unlock();
    return kOfxStatOK;
}

OfxStatus MutexTry(OfxMutexHandle handle) {
    if (!handle) return kOfxStatErrBadHandle;
    return MutexOf(handle)->try_lock() ? kOfxStatOK : kOfxStatFailed;
}

const void* FetchSuite(OfxPropertySetHandle, const char* name, int version) {
    static const OfxMessageSuiteV1 message1 = {Say};
    static const OfxMessageSuiteV2 message2 = {Say, Say, ClearMessage};
    static const OfxMemorySuiteV1 memory = {Allocate, Free};
    static const OfxMultiThreadSuiteV1 threads = {RunThreads,   CountProcessors, ThreadIndex, IsSpawned, MutexCreate,
                                                  MutexDestroy, MutexLock,       MutexUnlock, MutexTry};
    if (!name) return nullptr;
    const std::string_view suite = name;
    if (suite == kOfxMessageSuite && version == 2) return &message2;
    if (version != 1) return nullptr;
    if (suite == kOfxPropertySuite) return &PropertySuite();
    if (suite == kOfxImageEffectSuite) return &ImageEffectSuite();
    if (suite == kOfxParameterSuite) return &ParameterSuite();
    if (suite == kOfxMessageSuite) return &message1;
    if (suite == kOfxMemorySuite) return &memory;
    if (suite == kOfxMultiThreadSuite) return &threads;
    return nullptr;
}

PropertySet& HostProperties() {
    static PropertySet properties;
    const auto text = [](const char* value) { return PropertySet::Values{std::string(value)}; };
    properties.Declare(kOfxPropType, text(kOfxTypeImageEffectHost));
    properties.Declare(kOfxPropAPIVersion, {1, 4});
    properties.Declare(kOfxPropName, text("com.example.umbrant.doctor"));
    properties.Declare(kOfxPropLabel, text("umbrant doctor"));
    properties.Declare(kOfxPropVersion, {1, 0, 0});
    properties.Declare(kOfxPropVersionLabel, text("1.0"));
    properties.Declare(kOfxImageEffectHostPropIsBackground, {1});
    properties.Declare(kOfxImageEffectPropSupportsOverlays, {0});
    properties.Declare(kOfxImageEffectPropSupportsMultiResolution, {1});
    properties.Declare(kOfxImageEffectPropSupportsTiles, {0});
    properties.Declare(kOfxImageEffectPropTemporalClipAccess, {0});
    properties.Declare(kOfxImageEffectPropSupportsMultipleClipDepths, {0});
    properties.Declare(kOfxImageEffectPropSupportsMultipleClipPARs, {0});
    properties.Declare(kOfxImageEffectPropSetableFrameRate, {0});
    properties.Declare(kOfxImageEffectPropSetableFielding, {0});
    properties.Declare(kOfxImageEffectInstancePropSequentialRender, {0});
    properties.Declare(kOfxImageEffectPropOpenGLRenderSupported, text("false"));
    properties.Declare(kOfxImageEffectPropSupportedComponents, text(kOfxImageComponentRGBA));
    properties.Declare(kOfxImageEffectPropSupportedContexts,
                       {std::string(kOfxImageEffectContextFilter), std::string(kOfxImageEffectContextGeneral)});
    properties.Declare(kOfxImageEffectPropSupportedPixelDepths,
                       {std::string(kOfxBitDepthByte), std::string(kOfxBitDepthFloat)});
    for (const char* animated : {kOfxParamHostPropSupportsCustomAnimation, kOfxParamHostPropSupportsStringAnimation,
                                 kOfxParamHostPropSupportsBooleanAnimation, kOfxParamHostPropSupportsChoiceAnimation,
                                 kOfxParamHostPropSupportsCustomInteract, kOfxParamHostPropMaxPages}) {
        properties.Declare(animated, {0});
    }
    properties.Declare(kOfxParamHostPropMaxParameters, {-1});
    properties.Declare(kOfxParamHostPropPageRowColumnCount, {0, 0});
    return properties;
}

}  // namespace

OfxHost& DoctorHost() {
    static OfxHost host = {HostProperties().Handle(), FetchSuite};
    return host;
}

std::string TakeMessage() {
    const std::lock_guard lock(messageMutex);
    return std::exchange(lastMessage, {});
}

}  // namespace umbrant::host
