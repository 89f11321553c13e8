// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Reading PNG. Inside host/image only.

#include "host/image/codec.h"

namespace umbrant::host {

/// Whether the file is a PNG without data of another format in it: Exif and XMP are left to the image library.
bool ReadsPng(int descriptor);
OpenedImage OpenPng(const ImageFile& file);

}  // namespace umbrant::host
