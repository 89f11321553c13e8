// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The attributes of an EXR header in the form that all codecs share. They match the image library's translation
// exactly, so that a file has the same metadata whichever of the two reads or writes it. For host/image only.

#include <OpenEXR/openexr.h>

#include "host/image/image_layout.h"

namespace umbrant::host {

/// Adds the attributes of a file's only part to the layout. False where there is one that only the image library
/// knows.
bool TakeExrAttributes(exr_const_context_t file, ImageLayout& layout);

/// Whether PutExrAttributes can write all attributes of the layout.
bool CanPutExrAttributes(const ImageLayout& layout);

/// Writes the layout's attributes into the header of a file's only part, which has the required ones already.
exr_result_t PutExrAttributes(const ImageLayout& layout, exr_context_t file);

}  // namespace umbrant::host
