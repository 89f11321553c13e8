// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Values of the properties of parameters.

// Types of parameters.
inline constexpr char kOfxParamTypeInteger[] = "OfxParamTypeInteger";
inline constexpr char kOfxParamTypeDouble[] = "OfxParamTypeDouble";
inline constexpr char kOfxParamTypeBoolean[] = "OfxParamTypeBoolean";
inline constexpr char kOfxParamTypeChoice[] = "OfxParamTypeChoice";
inline constexpr char kOfxParamTypeStrChoice[] = "OfxParamTypeStrChoice";
inline constexpr char kOfxParamTypeRGBA[] = "OfxParamTypeRGBA";
inline constexpr char kOfxParamTypeRGB[] = "OfxParamTypeRGB";
inline constexpr char kOfxParamTypeDouble2D[] = "OfxParamTypeDouble2D";
inline constexpr char kOfxParamTypeInteger2D[] = "OfxParamTypeInteger2D";
inline constexpr char kOfxParamTypeDouble3D[] = "OfxParamTypeDouble3D";
inline constexpr char kOfxParamTypeInteger3D[] = "OfxParamTypeInteger3D";
inline constexpr char kOfxParamTypeString[] = "OfxParamTypeString";
inline constexpr char kOfxParamTypeCustom[] = "OfxParamTypeCustom";
inline constexpr char kOfxParamTypeBytes[] = "OfxParamTypeBytes";
inline constexpr char kOfxParamTypeGroup[] = "OfxParamTypeGroup";
inline constexpr char kOfxParamTypePage[] = "OfxParamTypePage";
inline constexpr char kOfxParamTypePushButton[] = "OfxParamTypePushButton";

// Meanings of a Double.
inline constexpr char kOfxParamDoubleTypePlain[] = "OfxParamDoubleTypePlain";
inline constexpr char kOfxParamDoubleTypeScale[] = "OfxParamDoubleTypeScale";
inline constexpr char kOfxParamDoubleTypeAngle[] = "OfxParamDoubleTypeAngle";
inline constexpr char kOfxParamDoubleTypeTime[] = "OfxParamDoubleTypeTime";
inline constexpr char kOfxParamDoubleTypeAbsoluteTime[] = "OfxParamDoubleTypeAbsoluteTime";
inline constexpr char kOfxParamDoubleTypeX[] = "OfxParamDoubleTypeX";
inline constexpr char kOfxParamDoubleTypeY[] = "OfxParamDoubleTypeY";
inline constexpr char kOfxParamDoubleTypeXAbsolute[] = "OfxParamDoubleTypeXAbsolute";
inline constexpr char kOfxParamDoubleTypeYAbsolute[] = "OfxParamDoubleTypeYAbsolute";
inline constexpr char kOfxParamDoubleTypeXY[] = "OfxParamDoubleTypeXY";
inline constexpr char kOfxParamDoubleTypeXYAbsolute[] = "OfxParamDoubleTypeXYAbsolute";

// Coordinate systems of a default.
inline constexpr char kOfxParamCoordinatesCanonical[] = "OfxParamCoordinatesCanonical";
inline constexpr char kOfxParamCoordinatesNormalised[] = "OfxParamCoordinatesNormalised";

// Modes of a String.
inline constexpr char kOfxParamStringIsSingleLine[] = "OfxParamStringIsSingleLine";
inline constexpr char kOfxParamStringIsMultiLine[] = "OfxParamStringIsMultiLine";
inline constexpr char kOfxParamStringIsFilePath[] = "OfxParamStringIsFilePath";
inline constexpr char kOfxParamStringIsDirectoryPath[] = "OfxParamStringIsDirectoryPath";
inline constexpr char kOfxParamStringIsLabel[] = "OfxParamStringIsLabel";
inline constexpr char kOfxParamStringIsRichTextFormat[] = "OfxParamStringIsRichTextFormat";

// Gaps on a page.
inline constexpr char kOfxParamPageSkipRow[] = "OfxParamPageSkipRow";
inline constexpr char kOfxParamPageSkipColumn[] = "OfxParamPageSkipColumn";

// What a change invalidates.
inline constexpr char kOfxParamInvalidateValueChange[] = "OfxParamInvalidateValueChange";
inline constexpr char kOfxParamInvalidateValueChangeToEnd[] = "OfxParamInvalidateValueChangeToEnd";
inline constexpr char kOfxParamInvalidateAll[] = "OfxParamInvalidateAll";
