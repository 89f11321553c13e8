// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Layouts in the image library's words and in ours.

#include <OpenImageIO/imageio.h>

#include "host/image/codec.h"

ImageLayout LayoutFrom(const OIIO::ImageSpec& layout);
OIIO::ImageSpec SpecOf(const ImageToWrite& image);
