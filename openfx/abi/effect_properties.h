// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names of the properties of hosts, effects and actions.

// Of every kind of object.
inline constexpr char kOfxPropAPIVersion[] = "OfxPropAPIVersion";
inline constexpr char kOfxPropTime[] = "OfxPropTime";
inline constexpr char kOfxPropIsInteractive[] = "OfxPropIsInteractive";
inline constexpr char kOfxPluginPropFilePath[] = "OfxPluginPropFilePath";
inline constexpr char kOfxPropInstanceData[] = "OfxPropInstanceData";
inline constexpr char kOfxPropType[] = "OfxPropType";
inline constexpr char kOfxPropName[] = "OfxPropName";
inline constexpr char kOfxPropVersion[] = "OfxPropVersion";
inline constexpr char kOfxPropVersionLabel[] = "OfxPropVersionLabel";
inline constexpr char kOfxPropPluginDescription[] = "OfxPropPluginDescription";
inline constexpr char kOfxPropLabel[] = "OfxPropLabel";
inline constexpr char kOfxPropIcon[] = "OfxPropIcon";
inline constexpr char kOfxPropShortLabel[] = "OfxPropShortLabel";
inline constexpr char kOfxPropLongLabel[] = "OfxPropLongLabel";
inline constexpr char kOfxPropChangeReason[] = "OfxPropChangeReason";
inline constexpr char kOfxPropEffectInstance[] = "OfxPropEffectInstance";
inline constexpr char kOfxPropHostOSHandle[] = "OfxPropHostOSHandle";

// Of hosts, effect descriptors, effect instances and the arguments of actions.
inline constexpr char kOfxImageEffectPropSupportedContexts[] = "OfxImageEffectPropSupportedContexts";
inline constexpr char kOfxImageEffectPropPluginHandle[] = "OfxImageEffectPropPluginHandle";
inline constexpr char kOfxImageEffectHostPropIsBackground[] = "OfxImageEffectHostPropIsBackground";
inline constexpr char kOfxImageEffectPluginPropSingleInstance[] = "OfxImageEffectPluginPropSingleInstance";
inline constexpr char kOfxImageEffectPluginRenderThreadSafety[] = "OfxImageEffectPluginRenderThreadSafety";
inline constexpr char kOfxImageEffectPluginPropHostFrameThreading[] = "OfxImageEffectPluginPropHostFrameThreading";
inline constexpr char kOfxImageEffectPropSupportsMultipleClipDepths[] = "OfxImageEffectPropMultipleClipDepths";
inline constexpr char kOfxImageEffectPropSupportsMultipleClipPARs[] = "OfxImageEffectPropSupportsMultipleClipPARs";
inline constexpr char kOfxImageEffectPropClipPreferencesSlaveParam[] = "OfxImageEffectPropClipPreferencesSlaveParam";
inline constexpr char kOfxImageEffectPropSetableFrameRate[] = "OfxImageEffectPropSetableFrameRate";
inline constexpr char kOfxImageEffectPropSetableFielding[] = "OfxImageEffectPropSetableFielding";
inline constexpr char kOfxImageEffectInstancePropSequentialRender[] = "OfxImageEffectInstancePropSequentialRender";
inline constexpr char kOfxImageEffectPropSequentialRenderStatus[] = "OfxImageEffectPropSequentialRenderStatus";
inline constexpr char kOfxImageEffectHostPropNativeOrigin[] = "OfxImageEffectHostPropNativeOrigin";
inline constexpr char kOfxImageEffectPropInteractiveRenderStatus[] = "OfxImageEffectPropInteractiveRenderStatus";
inline constexpr char kOfxImageEffectPluginPropGrouping[] = "OfxImageEffectPluginPropGrouping";
inline constexpr char kOfxImageEffectPluginPropObsolete[] = "OfxImageEffectPluginPropObsolete";
inline constexpr char kOfxImageEffectPropSupportsOverlays[] = "OfxImageEffectPropSupportsOverlays";
inline constexpr char kOfxImageEffectPluginPropOverlayInteractV1[] = "OfxImageEffectPluginPropOverlayInteractV1";
inline constexpr char kOfxImageEffectPluginPropOverlayInteractV2[] = "OfxImageEffectPluginPropOverlayInteractV2";
inline constexpr char kOfxImageEffectPropSupportsMultiResolution[] = "OfxImageEffectPropSupportsMultiResolution";
inline constexpr char kOfxImageEffectPropSupportsTiles[] = "OfxImageEffectPropSupportsTiles";
inline constexpr char kOfxImageEffectPropTemporalClipAccess[] = "OfxImageEffectPropTemporalClipAccess";
inline constexpr char kOfxImageEffectPropContext[] = "OfxImageEffectPropContext";
inline constexpr char kOfxImageEffectPropPixelDepth[] = "OfxImageEffectPropPixelDepth";
inline constexpr char kOfxImageEffectPropComponents[] = "OfxImageEffectPropComponents";
inline constexpr char kOfxImageEffectPropPreMultiplication[] = "OfxImageEffectPropPreMultiplication";
inline constexpr char kOfxImageEffectPropSupportedPixelDepths[] = "OfxImageEffectPropSupportedPixelDepths";
inline constexpr char kOfxImageEffectPropSupportedComponents[] = "OfxImageEffectPropSupportedComponents";
inline constexpr char kOfxImageEffectPropFrameRate[] = "OfxImageEffectPropFrameRate";
inline constexpr char kOfxImageEffectPropUnmappedFrameRate[] = "OfxImageEffectPropUnmappedFrameRate";
inline constexpr char kOfxImageEffectPropFrameStep[] = "OfxImageEffectPropFrameStep";
inline constexpr char kOfxImageEffectPropFrameRange[] = "OfxImageEffectPropFrameRange";
inline constexpr char kOfxImageEffectPropUnmappedFrameRange[] = "OfxImageEffectPropUnmappedFrameRange";
inline constexpr char kOfxImageEffectFrameVarying[] = "OfxImageEffectFrameVarying";
inline constexpr char kOfxImageEffectPropRenderScale[] = "OfxImageEffectPropRenderScale";
inline constexpr char kOfxImageEffectPropRenderQualityDraft[] = "OfxImageEffectPropRenderQualityDraft";
inline constexpr char kOfxImageEffectPropNoSpatialAwareness[] = "OfxImageEffectPropNoSpatialAwareness";
inline constexpr char kOfxImageEffectPropThumbnailRender[] = "OfxImageEffectPropThumbnailRender";
inline constexpr char kOfxImageEffectPropProjectExtent[] = "OfxImageEffectPropProjectExtent";
inline constexpr char kOfxImageEffectPropProjectSize[] = "OfxImageEffectPropProjectSize";
inline constexpr char kOfxImageEffectPropProjectOffset[] = "OfxImageEffectPropProjectOffset";
inline constexpr char kOfxImageEffectPropProjectPixelAspectRatio[] = "OfxImageEffectPropPixelAspectRatio";
inline constexpr char kOfxImageEffectInstancePropEffectDuration[] = "OfxImageEffectInstancePropEffectDuration";
inline constexpr char kOfxImageEffectPluginPropFieldRenderTwiceAlways[] =
    "OfxImageEffectPluginPropFieldRenderTwiceAlways";
inline constexpr char kOfxImageEffectPropFieldToRender[] = "OfxImageEffectPropFieldToRender";
inline constexpr char kOfxImageEffectPropRegionOfDefinition[] = "OfxImageEffectPropRegionOfDefinition";
inline constexpr char kOfxImageEffectPropRegionOfInterest[] = "OfxImageEffectPropRegionOfInterest";
inline constexpr char kOfxImageEffectPropRenderWindow[] = "OfxImageEffectPropRenderWindow";
inline constexpr char kOfxImageEffectPropBehaviourWhenUnlicensed[] = "OfxImageEffectPropBehaviourWhenUnlicensed";

// Where an effect renders.
inline constexpr char kOfxImageEffectPropOpenGLRenderSupported[] = "OfxImageEffectPropOpenGLRenderSupported";
inline constexpr char kOfxImageEffectPropOpenGLEnabled[] = "OfxImageEffectPropOpenGLEnabled";
inline constexpr char kOfxImageEffectPropCPURenderSupported[] = "OfxImageEffectPropCPURenderSupported";
