// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Writing PNG. Inside host/image only.

#include "host/image/codec.h"

namespace umbrant::host {

/// Puts the file's bytes into `encoded`; the same arguments give the same bytes, however many threads work. Returns why
/// it could not.
std::optional<std::string> EncodePng(const ImageToWrite& image, EncodedFile& encoded);

}  // namespace umbrant::host
