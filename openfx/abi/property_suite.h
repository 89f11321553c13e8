// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Reads and writes properties. Functions answer OK, ErrBadHandle, ErrUnknown (no such property: usual on older hosts),
// ErrBadIndex or ErrValue; on failure an out argument keeps its value. Arguments: set, name, index or count, value.
// Strings that are set are copied; strings that are returned belong to the host and may change with the next call.

#include "openfx/abi/core.h"

inline constexpr char kOfxPropertySuite[] = "OfxPropertySuite";

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
