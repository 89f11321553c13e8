// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names of the actions that a host asks of an effect.

inline constexpr char kOfxActionLoad[] = "OfxActionLoad";
inline constexpr char kOfxActionUnload[] = "OfxActionUnload";
inline constexpr char kOfxActionDescribe[] = "OfxActionDescribe";
inline constexpr char kOfxImageEffectActionDescribeInContext[] = "OfxImageEffectActionDescribeInContext";
inline constexpr char kOfxActionCreateInstance[] = "OfxActionCreateInstance";
inline constexpr char kOfxActionDestroyInstance[] = "OfxActionDestroyInstance";
inline constexpr char kOfxActionBeginInstanceChanged[] = "OfxActionBeginInstanceChanged";
inline constexpr char kOfxActionInstanceChanged[] = "OfxActionInstanceChanged";
inline constexpr char kOfxActionEndInstanceChanged[] = "OfxActionEndInstanceChanged";
inline constexpr char kOfxActionPurgeCaches[] = "OfxActionPurgeCaches";
inline constexpr char kOfxActionSyncPrivateData[] = "OfxActionSyncPrivateData";
inline constexpr char kOfxActionBeginInstanceEdit[] = "OfxActionBeginInstanceEdit";
inline constexpr char kOfxActionEndInstanceEdit[] = "OfxActionEndInstanceEdit";
inline constexpr char kOfxImageEffectActionGetRegionOfDefinition[] = "OfxImageEffectActionGetRegionOfDefinition";
inline constexpr char kOfxImageEffectActionGetRegionsOfInterest[] = "OfxImageEffectActionGetRegionsOfInterest";
inline constexpr char kOfxImageEffectActionGetFramesNeeded[] = "OfxImageEffectActionGetFramesNeeded";
inline constexpr char kOfxImageEffectActionIsIdentity[] = "OfxImageEffectActionIsIdentity";
inline constexpr char kOfxImageEffectActionRender[] = "OfxImageEffectActionRender";
inline constexpr char kOfxImageEffectActionBeginSequenceRender[] = "OfxImageEffectActionBeginSequenceRender";
inline constexpr char kOfxImageEffectActionEndSequenceRender[] = "OfxImageEffectActionEndSequenceRender";
inline constexpr char kOfxImageEffectActionGetClipPreferences[] = "OfxImageEffectActionGetClipPreferences";
inline constexpr char kOfxImageEffectActionGetTimeDomain[] = "OfxImageEffectActionGetTimeDomain";
