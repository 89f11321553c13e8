// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pixels between the host's form and the library's, which is red, green, blue and straight alpha. Images that have this
// form already are not copied; these functions are for the others, and for results that a host's image has only a part
// of.

#include <umbrant/image.h>

#include "openfx/images/alpha.h"

namespace umbrant::openfx {

/// The form of a host's pixels.
struct PixelForm {
    AlphaState alpha = AlphaState::kStraight;
    bool isBlueFirst = false;

    bool IsLibrarys() const { return alpha == AlphaState::kStraight && !isBlueFirst; }
    /// Premultiplied images are drawn as floats, so that dividing and multiplying loses nothing.
    bool NeedsFloats() const { return alpha == AlphaState::kPremultiplied; }
};

/// A copy in the library's form, as floats where the form needs them. Premultiplied colours are divided by alpha; where
/// it is 0 they become 0. May throw std::bad_alloc.
Image ToLibrary(const ImageView& pixels, const PixelForm& form);

/// Writes the part of `drawn` that `target` covers, whose top left corner is at (left, top) in drawn's coordinates
/// (Image::Place); what drawn does not have becomes transparent black. Unless the form is straight, colours are
/// multiplied by alpha.
///
/// `source` is the host's image that was drawn from, with its top left corner at (0, 0). Where its alpha is 0 and the
/// form is premultiplied, its light is added: colours without alpha cannot pass through the library.
void FromLibrary(const Image& drawn, const PixelForm& form, const ImageView& source, const MutableImageView& target,
                 int left, int top);

/// Makes all pixels transparent black.
void Clear(const MutableImageView& target);

}  // namespace umbrant::openfx
