// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Converts layouts between the image library's types and ours.

#include <OpenImageIO/imageio.h>

#include "host/image/codec.h"

namespace umbrant::host {

ImageLayout LayoutFrom(const OIIO::ImageSpec& from);
OIIO::ImageSpec SpecOf(const ImageToWrite& image);

}  // namespace umbrant::host
