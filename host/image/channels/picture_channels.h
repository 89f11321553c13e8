// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which of a file's parts and channels make an image of red, green, blue and alpha. Inside host/image only.

#include <string>

#include "host/image/codec.h"
#include "host/image/picture.h"

namespace umbrant::host {

/// Places among the channels of a file; -1 for a channel that it lacks.
struct Channels {
    int red = -1;
    int green = -1;
    int blue = -1;
    int alpha = -1;
};

/// Channels, and what of the file was left out; empty when that is nothing or was asked for.
struct ChannelChoice {
    Channels channels;
    std::string note;
};

/// Chooses the channels of a layer, "diffuse" of "diffuse.R" or the name of a single channel. Without a name: red,
/// green and blue, else the luminance, else the first layer of an EXR that has colours, else the first three channels;
/// one is grey, two are red and green. The alpha is the layer's own, else the image's. Fails with `ErrorKind::kUsage`
/// and the layers that there are.
Result<ChannelChoice> ChooseChannels(const ImageLayout& layout, const std::string& layer, const std::string& fileName);

/// Moves to the part of that number, counted from 0, or of that name; empty for the first. Returns what was left out,
/// as above. Fails with `ErrorKind::kUsage` and the parts that there are.
Result<std::string> ChoosePart(ImageReader& input, const std::string& part, const std::string& fileName);

}  // namespace umbrant::host
