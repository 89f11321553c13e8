// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Images in memory for a frame, with guard bytes around the pixels.

#include <memory>
#include <string>

#include "host/doctor/openfx/effect.h"

namespace umbrant::host {

/// Bytes of an RGBA pixel of this depth: 4, 8 or 16; 0 for a depth that this host has not.
int PixelBytes(const std::string& depth);

/// An RGBA image with these bounds: a soft, light square on nothing, straight alpha, for `isSource`; else bytes that no
/// effect would leave.
std::unique_ptr<OpenFxImage> MakeImage(const OfxRectI& bounds, const std::string& depth, bool isSource);

/// Whether a byte outside of the pixels has changed.
bool IsOverrun(const OpenFxImage& image);
/// Whether no byte of the pixels has changed, for an image that is no source.
bool IsUntouched(const OpenFxImage& image);

}  // namespace umbrant::host
