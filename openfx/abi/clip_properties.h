// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names of the properties of clips and images.

inline constexpr char kOfxImagePropUniqueIdentifier[] = "OfxImagePropUniqueIdentifier";
inline constexpr char kOfxImageClipPropContinuousSamples[] = "OfxImageClipPropContinuousSamples";
inline constexpr char kOfxImageClipPropUnmappedPixelDepth[] = "OfxImageClipPropUnmappedPixelDepth";
inline constexpr char kOfxImageClipPropUnmappedComponents[] = "OfxImageClipPropUnmappedComponents";
inline constexpr char kOfxImageClipPropOptional[] = "OfxImageClipPropOptional";
inline constexpr char kOfxImageClipPropIsMask[] = "OfxImageClipPropIsMask";
inline constexpr char kOfxImagePropPixelAspectRatio[] = "OfxImagePropPixelAspectRatio";
inline constexpr char kOfxImageClipPropConnected[] = "OfxImageClipPropConnected";
inline constexpr char kOfxImageClipPropFieldOrder[] = "OfxImageClipPropFieldOrder";
inline constexpr char kOfxImagePropData[] = "OfxImagePropData";
inline constexpr char kOfxImagePropBounds[] = "OfxImagePropBounds";
inline constexpr char kOfxImagePropRegionOfDefinition[] = "OfxImagePropRegionOfDefinition";
inline constexpr char kOfxImagePropRowBytes[] = "OfxImagePropRowBytes";
inline constexpr char kOfxImagePropField[] = "OfxImagePropField";
inline constexpr char kOfxImageClipPropFieldExtraction[] = "OfxImageClipPropFieldExtraction";

// Beginnings of names that end with the name of a clip.
inline constexpr char kOfxImageClipPropRoIPrefix[] = "OfxImageClipPropRoI_";
inline constexpr char kOfxImageClipPropFrameRangePrefix[] = "OfxImageClipPropFrameRange_";
inline constexpr char kOfxImageClipPropComponentsPrefix[] = "OfxImageClipPropComponents_";
inline constexpr char kOfxImageClipPropDepthPrefix[] = "OfxImageClipPropDepth_";
inline constexpr char kOfxImageClipPropPARPrefix[] = "OfxImageClipPropPAR_";
