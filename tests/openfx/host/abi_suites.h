// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The suites of the standard, as structures of C functions in their order.

#include <cstddef>

#include "tests/openfx/host/abi.h"

struct OfxPropertySuiteV1 {
    OfxStatus (*propSetPointer)(OfxPropertySetHandle, const char*, int, void*);
    OfxStatus (*propSetString)(OfxPropertySetHandle, const char*, int, const char*);
    OfxStatus (*propSetDouble)(OfxPropertySetHandle, const char*, int, double);
    OfxStatus (*propSetInt)(OfxPropertySetHandle, const char*, int, int);
    OfxStatus (*propSetPointerN)(OfxPropertySetHandle, const char*, int, void* const*);
    OfxStatus (*propSetStringN)(OfxPropertySetHandle, const char*, int, const char* const*);
    OfxStatus (*propSetDoubleN)(OfxPropertySetHandle, const char*, int, const double*);
    OfxStatus (*propSetIntN)(OfxPropertySetHandle, const char*, int, const int*);
    OfxStatus (*propGetPointer)(OfxPropertySetHandle, const char*, int, void**);
    OfxStatus (*propGetString)(OfxPropertySetHandle, const char*, int, char**);
    OfxStatus (*propGetDouble)(OfxPropertySetHandle, const char*, int, double*);
    OfxStatus (*propGetInt)(OfxPropertySetHandle, const char*, int, int*);
    OfxStatus (*propGetPointerN)(OfxPropertySetHandle, const char*, int, void**);
    OfxStatus (*propGetStringN)(OfxPropertySetHandle, const char*, int, char**);
    OfxStatus (*propGetDoubleN)(OfxPropertySetHandle, const char*, int, double*);
    OfxStatus (*propGetIntN)(OfxPropertySetHandle, const char*, int, int*);
    OfxStatus (*propReset)(OfxPropertySetHandle, const char*);
    OfxStatus (*propGetDimension)(OfxPropertySetHandle, const char*, int*);
};

struct OfxImageEffectSuiteV1 {
    OfxStatus (*getPropertySet)(OfxImageEffectHandle, OfxPropertySetHandle*);
    OfxStatus (*getParamSet)(OfxImageEffectHandle, OfxParamSetHandle*);
    OfxStatus (*clipDefine)(OfxImageEffectHandle, const char*, OfxPropertySetHandle*);
    OfxStatus (*clipGetHandle)(OfxImageEffectHandle, const char*, OfxImageClipHandle*, OfxPropertySetHandle*);
    OfxStatus (*clipGetPropertySet)(OfxImageClipHandle, OfxPropertySetHandle*);
    OfxStatus (*clipGetImage)(OfxImageClipHandle, OfxTime, const OfxRectD*, OfxPropertySetHandle*);
    OfxStatus (*clipReleaseImage)(OfxPropertySetHandle);
    OfxStatus (*clipGetRegionOfDefinition)(OfxImageClipHandle, OfxTime, OfxRectD*);
    int (*abort)(OfxImageEffectHandle);
    OfxStatus (*imageMemoryAlloc)(OfxImageEffectHandle, size_t, OfxImageMemoryHandle*);
    OfxStatus (*imageMemoryFree)(OfxImageMemoryHandle);
    OfxStatus (*imageMemoryLock)(OfxImageMemoryHandle, void**);
    OfxStatus (*imageMemoryUnlock)(OfxImageMemoryHandle);
};

struct OfxParameterSuiteV1 {
    OfxStatus (*paramDefine)(OfxParamSetHandle, const char*, const char*, OfxPropertySetHandle*);
    OfxStatus (*paramGetHandle)(OfxParamSetHandle, const char*, OfxParamHandle*, OfxPropertySetHandle*);
    OfxStatus (*paramSetGetPropertySet)(OfxParamSetHandle, OfxPropertySetHandle*);
    OfxStatus (*paramGetPropertySet)(OfxParamHandle, OfxPropertySetHandle*);
    OfxStatus (*paramGetValue)(OfxParamHandle, ...);
    OfxStatus (*paramGetValueAtTime)(OfxParamHandle, OfxTime, ...);
    OfxStatus (*paramGetDerivative)(OfxParamHandle, OfxTime, ...);
    OfxStatus (*paramGetIntegral)(OfxParamHandle, OfxTime, OfxTime, ...);
    OfxStatus (*paramSetValue)(OfxParamHandle, ...);
    OfxStatus (*paramSetValueAtTime)(OfxParamHandle, OfxTime, ...);
    OfxStatus (*paramGetNumKeys)(OfxParamHandle, unsigned int*);
    OfxStatus (*paramGetKeyTime)(OfxParamHandle, unsigned int, OfxTime*);
    OfxStatus (*paramGetKeyIndex)(OfxParamHandle, OfxTime, int, int*);
    OfxStatus (*paramDeleteKey)(OfxParamHandle, OfxTime);
    OfxStatus (*paramDeleteAllKeys)(OfxParamHandle);
    OfxStatus (*paramCopy)(OfxParamHandle, OfxParamHandle, OfxTime, const OfxRangeD*);
    OfxStatus (*paramEditBegin)(OfxParamSetHandle, const char*);
    OfxStatus (*paramEditEnd)(OfxParamSetHandle);
};

struct OfxMemorySuiteV1 {
    OfxStatus (*memoryAlloc)(void*, size_t, void**);
    OfxStatus (*memoryFree)(void*);
};

struct OfxMultiThreadSuiteV1 {
    OfxStatus (*multiThread)(OfxThreadFunctionV1, unsigned int, void*);
    OfxStatus (*multiThreadNumCPUs)(unsigned int*);
    OfxStatus (*multiThreadIndex)(unsigned int*);
    int (*multiThreadIsSpawnedThread)();
    OfxStatus (*mutexCreate)(OfxMutexHandle*, int);
    OfxStatus (*mutexDestroy)(const OfxMutexHandle);
    OfxStatus (*mutexLock)(const OfxMutexHandle);
    OfxStatus (*mutexUnLock)(const OfxMutexHandle);
    OfxStatus (*mutexTryLock)(const OfxMutexHandle);
};

struct OfxMessageSuiteV1 {
    OfxStatus (*message)(void*, const char*, const char*, const char*, ...);
};

struct OfxMessageSuiteV2 {
    OfxStatus (*message)(void*, const char*, const char*, const char*, ...);
    OfxStatus (*setPersistentMessage)(void*, const char*, const char*, const char*, ...);
    OfxStatus (*clearPersistentMessage)(void*);
};

struct OfxInteractSuiteV1 {
    OfxStatus (*interactSwapBuffers)(OfxInteractHandle);
    OfxStatus (*interactRedraw)(OfxInteractHandle);
    OfxStatus (*interactGetPropertySet)(OfxInteractHandle, OfxPropertySetHandle*);
};

struct OfxProgressSuiteV1 {
    OfxStatus (*progressStart)(void*, const char*);
    OfxStatus (*progressUpdate)(void*, double);
    OfxStatus (*progressEnd)(void*);
};

struct OfxProgressSuiteV2 {
    OfxStatus (*progressStart)(void*, const char*, const char*);
    OfxStatus (*progressUpdate)(void*, double);
    OfxStatus (*progressEnd)(void*);
};

struct OfxTimeLineSuiteV1 {
    OfxStatus (*getTime)(void*, double*);
    OfxStatus (*gotoTime)(void*, double);
    OfxStatus (*getTimeBounds)(void*, double*, double*);
};
