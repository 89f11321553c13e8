// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What only the plug-in can say about its parameters. What those of the effect do is described by the library.

namespace umbrant::openfx::hints {

inline constexpr char kColor[] = "It is in the colour space of the image. Values above 1 are used in float images.";
inline constexpr char kTextureBlendMode[] = "The texture is the image of the clip Texture.";
inline constexpr char kAlpha[] =
    "How the colours of the image are stored. Automatic uses what the host reports. Choose Premultiplied or Straight "
    "if edges have a dark or bright rim.";
inline constexpr char kPresetFile[] = "A preset of Umbrant 2: a file that ends in .json.";
inline constexpr char kLoadPreset[] =
    "Sets the parameters to the values of the preset file. Parameters that it does not contain do not change.";
inline constexpr char kDrawnBy[] = "The renderer that draws the shadow, and why it was chosen.";
inline constexpr char kOriginIsRelative[] = "Whether Origin still has its default in parts of the project's size.";

}  // namespace umbrant::openfx::hints
