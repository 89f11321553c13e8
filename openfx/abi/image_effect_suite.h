// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Clips, images, abort and image memory. Every image of `clipGetImage` is released in the same action; a null region
// asks for the whole image.

#include <cstddef>

#include "openfx/abi/core.h"

inline constexpr char kOfxImageEffectSuite[] = "OfxImageEffectSuite";

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
