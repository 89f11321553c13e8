// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Values of the properties of effects, clips and images.

// Types of objects.
inline constexpr char kOfxTypeImageEffectHost[] = "OfxTypeImageEffectHost";
inline constexpr char kOfxTypeImageEffect[] = "OfxTypeImageEffect";
inline constexpr char kOfxTypeImageEffectInstance[] = "OfxTypeImageEffectInstance";
inline constexpr char kOfxTypeClip[] = "OfxTypeClip";
inline constexpr char kOfxTypeImage[] = "OfxTypeImage";
inline constexpr char kOfxTypeParameter[] = "OfxTypeParameter";
inline constexpr char kOfxTypeParameterInstance[] = "OfxTypeParameterInstance";

// Contexts.
inline constexpr char kOfxImageEffectContextGenerator[] = "OfxImageEffectContextGenerator";
inline constexpr char kOfxImageEffectContextFilter[] = "OfxImageEffectContextFilter";
inline constexpr char kOfxImageEffectContextTransition[] = "OfxImageEffectContextTransition";
inline constexpr char kOfxImageEffectContextPaint[] = "OfxImageEffectContextPaint";
inline constexpr char kOfxImageEffectContextGeneral[] = "OfxImageEffectContextGeneral";
inline constexpr char kOfxImageEffectContextRetimer[] = "OfxImageEffectContextRetimer";

// Thread safety.
inline constexpr char kOfxImageEffectRenderUnsafe[] = "OfxImageEffectRenderUnsafe";
inline constexpr char kOfxImageEffectRenderInstanceSafe[] = "OfxImageEffectRenderInstanceSafe";
inline constexpr char kOfxImageEffectRenderFullySafe[] = "OfxImageEffectRenderFullySafe";

// Pixel depths.
inline constexpr char kOfxBitDepthNone[] = "OfxBitDepthNone";
inline constexpr char kOfxBitDepthByte[] = "OfxBitDepthByte";
inline constexpr char kOfxBitDepthShort[] = "OfxBitDepthShort";
inline constexpr char kOfxBitDepthHalf[] = "OfxBitDepthHalf";
inline constexpr char kOfxBitDepthFloat[] = "OfxBitDepthFloat";

// Components.
inline constexpr char kOfxImageComponentNone[] = "OfxImageComponentNone";
inline constexpr char kOfxImageComponentRGBA[] = "OfxImageComponentRGBA";
inline constexpr char kOfxImageComponentRGB[] = "OfxImageComponentRGB";
inline constexpr char kOfxImageComponentAlpha[] = "OfxImageComponentAlpha";

// Premultiplication.
inline constexpr char kOfxImageOpaque[] = "OfxImageOpaque";
inline constexpr char kOfxImagePreMultiplied[] = "OfxImageAlphaPremultiplied";
inline constexpr char kOfxImageUnPreMultiplied[] = "OfxImageAlphaUnPremultiplied";

// Fields.
inline constexpr char kOfxImageFieldNone[] = "OfxFieldNone";
inline constexpr char kOfxImageFieldLower[] = "OfxFieldLower";
inline constexpr char kOfxImageFieldUpper[] = "OfxFieldUpper";
inline constexpr char kOfxImageFieldBoth[] = "OfxFieldBoth";
inline constexpr char kOfxImageFieldSingle[] = "OfxFieldSingle";
inline constexpr char kOfxImageFieldDoubled[] = "OfxFieldDoubled";

// Names of clips.
inline constexpr char kOfxImageEffectOutputClipName[] = "Output";
inline constexpr char kOfxImageEffectSimpleSourceClipName[] = "Source";
inline constexpr char kOfxImageEffectTransitionSourceFromClipName[] = "SourceFrom";
inline constexpr char kOfxImageEffectTransitionSourceToClipName[] = "SourceTo";

// Native origins of hosts.
inline constexpr char kOfxHostNativeOriginBottomLeft[] = "kOfxImageEffectHostPropNativeOriginBottomLeft";
inline constexpr char kOfxHostNativeOriginTopLeft[] = "kOfxImageEffectHostPropNativeOriginTopLeft";
inline constexpr char kOfxHostNativeOriginCenter[] = "kOfxImageEffectHostPropNativeOriginCenter";

// Reasons of a change.
inline constexpr char kOfxChangeUserEdited[] = "OfxChangeUserEdited";
inline constexpr char kOfxChangePluginEdited[] = "OfxChangePluginEdited";
inline constexpr char kOfxChangeTime[] = "OfxChangeTime";
