// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The types and numbers of the OpenFX interface, version 1, as this host declares them. Nothing of a plug-in includes
// this file, so that a mistake on one side shows as a difference between both.

#include <cstddef>

struct OfxPropertySetStruct;
struct OfxImageEffectStruct;
struct OfxImageClipStruct;
struct OfxImageMemoryStruct;
struct OfxParamStruct;
struct OfxParamSetStruct;
struct OfxMutexStruct;
struct OfxInteractStruct;
using OfxPropertySetHandle = OfxPropertySetStruct*;
using OfxImageEffectHandle = OfxImageEffectStruct*;
using OfxImageClipHandle = OfxImageClipStruct*;
using OfxImageMemoryHandle = OfxImageMemoryStruct*;
using OfxParamHandle = OfxParamStruct*;
using OfxParamSetHandle = OfxParamSetStruct*;
using OfxMutexHandle = OfxMutexStruct*;
using OfxInteractHandle = OfxInteractStruct*;

using OfxStatus = int;
using OfxTime = double;  ///< frames from the start of the effect
using OfxThreadFunctionV1 = void(unsigned int threadIndex, unsigned int threadMax, void* customArg);

struct OfxRangeI {
    int min, max;
};
struct OfxRangeD {
    double min, max;
};
struct OfxPointI {
    int x, y;
};
struct OfxPointD {
    double x, y;
};
/// x2 and y2 are exclusive; y points upwards.
struct OfxRectI {
    int x1, y1, x2, y2;
};
struct OfxRectD {
    double x1, y1, x2, y2;
};
struct OfxBytes {
    const unsigned char* data;
    size_t length;
};

struct OfxHost {
    OfxPropertySetHandle host;
    const void* (*fetchSuite)(OfxPropertySetHandle host, const char* name, int version);
};
struct OfxPlugin {
    const char* pluginApi;
    int apiVersion;
    const char* pluginIdentifier;
    unsigned int pluginVersionMajor;
    unsigned int pluginVersionMinor;
    void (*setHost)(OfxHost*);
    OfxStatus (*mainEntry)(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                           OfxPropertySetHandle outArgs);
};

enum : OfxStatus {
    kOfxStatOK = 0,
    kOfxStatFailed = 1,
    kOfxStatErrFatal = 2,
    kOfxStatErrUnknown = 3,
    kOfxStatErrMissingHostFeature = 4,
    kOfxStatErrUnsupported = 5,
    kOfxStatErrExists = 6,
    kOfxStatErrFormat = 7,
    kOfxStatErrMemory = 8,
    kOfxStatErrBadHandle = 9,
    kOfxStatErrBadIndex = 10,
    kOfxStatErrValue = 11,
    kOfxStatReplyYes = 12,
    kOfxStatReplyNo = 13,
    kOfxStatReplyDefault = 14,
    kOfxStatUnlicensed = 15,
    kOfxStatErrImageFormat = 1000,
};
