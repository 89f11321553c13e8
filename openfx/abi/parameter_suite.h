// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Parameters. Values are variadic: int for integers, Booleans and choices, double for numbers, points and colours (2, 3
// or 4 of them), const char* for strings; pointers to those to get a value. Values and handles belong to an instance.

#include "openfx/abi/core.h"

inline constexpr char kOfxParameterSuite[] = "OfxParameterSuite";

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
