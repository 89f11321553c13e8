// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How a module announces its effect when the host scans it. The module's exported PluginDataEntryFunction receives the
// opaque pointer and the callback, and calls back once per effect.

#include "hostapi/basic_types.h"
#include "hostapi/errors.h"
#include "hostapi/suites/basic_suite.h"

/// The host's own; handed back to the callback unread.
struct PF_PluginData;
typedef PF_PluginData* PF_PluginDataPtr;

/// Registers one effect: displayed name, match name, category, name of the exported command entry, kind, host interface
/// version. Strings are NUL-terminated and copied. The result is the registration's own result. [main]
typedef A_Err (*PF_PluginDataCB)(PF_PluginDataPtr inPtr, const A_u_char* inNamePtr, const A_u_char* inMatchNamePtr,
                                 const A_u_char* inCategoryPtr, const A_u_char* inEntryPointNamePtr, A_long inkind,
                                 A_long inApiVersionMajor, A_long inApiVersionMinor, A_long inReservedInfo);

/// The same with a support address as tenth argument. Belongs to a registration entry of another name, which this
/// module does not export. [main]
typedef A_Err (*PF_PluginDataCB2)(PF_PluginDataPtr inPtr, const A_u_char* inNamePtr, const A_u_char* inMatchNamePtr,
                                  const A_u_char* inCategoryPtr, const A_u_char* inEntryPointNamePtr, A_long inkind,
                                  A_long inApiVersionMajor, A_long inApiVersionMinor, A_long inReservedInfo,
                                  const A_u_char* inSupportURLPtr);
