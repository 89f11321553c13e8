// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What each parameter does, for people: the one source of tool tips.

namespace umbrant::openfx::hints {

inline constexpr char kShadowType[] =
    "Normal draws a long shadow behind the image in one direction. Inner draws a shadow inside the image's own shape. "
    "Radial draws the shadow away from the point Origin.";
inline constexpr char kAngle[] =
    "Direction of a normal or inner shadow in degrees: 0 is up, 90 right, 180 down, 270 left. Any number of turns.";
inline constexpr char kOrigin[] =
    "The point from which a radial shadow extends. The default is the top left corner of the project.";
inline constexpr char kDistance[] = "Length of the shadow, in pixels of the full-size image. 0 leaves only the blur.";
inline constexpr char kSoftness[] = "Blur at the end of the shadow, in pixels of the full-size image.";
inline constexpr char kColor[] =
    "Colour of the shadow, in the colour space of the image. Values above 1 are used in float images.";
inline constexpr char kBlendMode[] = "How an inner shadow is combined with the colours of the image.";
inline constexpr char kOpacityStart[] = "Opacity of the shadow where it begins, in percent.";
inline constexpr char kOpacityEnd[] = "Opacity of the shadow at its end, in percent.";
inline constexpr char kOpacityMaster[] = "Opacity of the whole shadow, in percent. 0 draws no shadow.";
inline constexpr char kEaseMode[] = "Shape of the curve from the start of the shadow to its end.";
inline constexpr char kEase[] = "Strength of the curve, in percent. 0 is a straight line.";
inline constexpr char kEaseDistance[] = "How much the curve affects the distance of the copies, in percent.";
inline constexpr char kEaseSoftness[] = "How much the curve affects the blur, in percent.";
inline constexpr char kEaseOpacity[] = "How much the curve affects the opacity, in percent.";
inline constexpr char kTextureBlendMode[] =
    "How the image of the clip Texture is combined with the shadow. Without that clip it has no effect.";
inline constexpr char kTextureStrength[] = "Strength of the texture, in percent.";
inline constexpr char kSamples[] =
    "Number of blurred copies that form the shadow. More copies are smoother and take longer.";
inline constexpr char kResolution[] = "Precision of the blur. Higher settings are smoother and take longer.";
inline constexpr char kPrioritise[] = "Whether drawing saves time or memory.";
inline constexpr char kSourceOpacity[] = "Opacity of the image itself above its shadow, in percent.";
inline constexpr char kOffsetShadow[] = "Distance at which the shadow begins, in pixels of the full-size image.";
inline constexpr char kBufferExpansion[] =
    "Extra space around the result, in pixels of the full-size image, where the shadow is cut off too early.";
inline constexpr char kAlpha[] =
    "How the colours of the image are stored. Automatic uses what the host reports. Choose Premultiplied or Straight "
    "if edges have a dark or bright rim.";
inline constexpr char kPresetFile[] = "A preset of Umbrant 2: a file that ends in .json.";
inline constexpr char kLoadPreset[] =
    "Sets the parameters to the values of the preset file. Parameters that it does not contain do not change.";
inline constexpr char kDrawnBy[] = "The renderer that draws the shadow, and why it was chosen.";
inline constexpr char kOriginIsRelative[] = "Whether Origin still has its default in parts of the project's size.";

}  // namespace umbrant::openfx::hints
