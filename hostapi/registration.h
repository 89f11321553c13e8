// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How a module announces its effect when the host scans it.

#include "hostapi/basic_types.h"
#include "hostapi/errors.h"
#include "hostapi/suites/basic_suite.h"

struct PF_PluginData;
typedef PF_PluginData* PF_PluginDataPtr;
typedef A_Err (*PF_PluginDataCB)(PF_PluginDataPtr inPtr, const A_u_char* inNamePtr, const A_u_char* inMatchNamePtr,
                                 const A_u_char* inCategoryPtr, const A_u_char* inEntryPointNamePtr, A_long inkind,
                                 A_long inApiVersionMajor, A_long inApiVersionMinor, A_long inReservedInfo);
typedef A_Err (*PF_PluginDataCB2)(PF_PluginDataPtr inPtr, const A_u_char* inNamePtr, const A_u_char* inMatchNamePtr,
                                  const A_u_char* inCategoryPtr, const A_u_char* inEntryPointNamePtr, A_long inkind,
                                  A_long inApiVersionMajor, A_long inApiVersionMinor, A_long inReservedInfo,
                                  const A_u_char* inSupportURLPtr);
