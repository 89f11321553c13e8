// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a host and a plug-in are to each other: the records of both, handles, and plain numbers. Order and size are
// the ABI. Every record and function pointer is plain C; no exception may cross.

#include <climits>

#include "openfx/abi/status.h"

// Only the host knows what these point to.
using OfxPropertySetHandle = struct OfxPropertySetStruct*;
using OfxImageEffectHandle = struct OfxImageEffectStruct*;
using OfxImageClipHandle = struct OfxImageClipStruct*;
using OfxImageMemoryHandle = struct OfxImageMemoryStruct*;
using OfxParamHandle = struct OfxParamStruct*;
using OfxParamSetHandle = struct OfxParamSetStruct*;
using OfxMutexHandle = struct OfxMutex*;

using OfxTime = double;  ///< frames from the start of the effect; fractions between frames

/// What a host gives a plug-in.
struct OfxHost {
    OfxPropertySetHandle host;
    /// Returns a suite by name and version, or null.
    const void* (*fetchSuite)(OfxPropertySetHandle, const char*, int);
};

/// The main entry point: action, handle of the object, arguments, answers.
using OfxPluginEntryPoint = OfxStatus(const char*, const void*, OfxPropertySetHandle, OfxPropertySetHandle);

/// What a plug-in gives a host. Lives as long as the binary is loaded.
struct OfxPlugin {
    const char* pluginApi;
    int apiVersion;
    const char* pluginIdentifier;  ///< a reverse domain; projects are saved with it
    unsigned int pluginVersionMajor;
    unsigned int pluginVersionMinor;
    void (*setHost)(OfxHost*);
    OfxPluginEntryPoint* mainEntry;
};

inline constexpr char kOfxImageEffectPluginApi[] = "OfxImageEffectPluginAPI";
inline constexpr int kOfxImageEffectPluginApiVersion = 1;

/// The sides of a rectangle without bounds.
inline constexpr int kOfxFlagInfiniteMin = INT_MIN;
inline constexpr int kOfxFlagInfiniteMax = INT_MAX;

struct OfxRangeD {
    double min;
    double max;
};

struct OfxPointI {
    int x;
    int y;
};

struct OfxPointD {
    double x;
    double y;
};

/// In pixels, y upwards; x2 and y2 are exclusive.
struct OfxRectI {
    int x1;
    int y1;
    int x2;
    int y2;
};

/// In canonical coordinates (full size, square pixels), y upwards.
struct OfxRectD {
    double x1;
    double y1;
    double x2;
    double y2;
};
