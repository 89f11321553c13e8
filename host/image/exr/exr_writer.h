// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// EXR by OpenEXR's core, its blocks compressed by all cores. Inside host/image only.

#include "host/image/codec.h"

namespace umbrant::host {

/// Writes an image without compression or with zip. What else there is, also among attributes, the image library
/// writes.
std::optional<std::string> EncodeExr(const ImageToWrite& image, EncodedFile& encoded);

}  // namespace umbrant::host
