// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// EXR by OpenEXR's core: flat images of one part, as nearly all frames are. Inside host/image only.

#include "host/image/codec.h"

namespace umbrant::host {

/// Whether the file is such an image, without attributes that only the image library supports.
bool ReadsExr(int descriptor);
OpenedImage OpenExr(const ImageFile& file);

}  // namespace umbrant::host
