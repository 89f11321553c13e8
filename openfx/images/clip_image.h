// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An image of a clip for the time of one action.

#include <optional>
#include <string>

#include <umbrant/image.h>

#include "openfx/host/properties.h"
#include "openfx/images/alpha.h"
#include "openfx/images/pixels.h"

namespace umbrant::openfx {

/// Returns the image to the host when it ends. Move-only.
class ClipImage {
 public:
    /// None where the clip has no image at this time, or one without pixels. Throws Refusal: ErrImageFormat for depths
    /// and components other than RGBA bytes and floats, Failed for rows that overlap or properties that are missing,
    /// ErrMemory where the host is out of memory. `what` names the image in sentences.
    static std::optional<ClipImage> Fetch(OfxImageClipHandle clip, OfxTime time, const char* what);

    ClipImage(ClipImage&& other) noexcept;
    ClipImage& operator=(ClipImage&&) = delete;
    ~ClipImage();

    const OfxRectI& Bounds() const { return bounds_; }
    PixelFormat Format() const { return format_; }
    double PixelAspect(double otherwise) const;
    /// "OfxImageOpaque" and its like, as the image reports it.
    std::optional<std::string> AlphaText() const;
    /// The pixels of a part of the bounds, from its top row down: hosts have the bottom row first, so a step downwards
    /// is back by the bytes of a row.
    MutableImageView View(const OfxRectI& part) const;
    MutableImageView View() const { return View(bounds_); }

 private:
    explicit ClipImage(OfxPropertySetHandle image) : properties_(image) {}
    /// Whether there are pixels.
    bool Read(OfxImageClipHandle clip, const char* what);

    Properties properties_;
    OfxRectI bounds_{};
    PixelFormat format_ = PixelFormat::kRgba8;
    std::byte* bottom_ = nullptr;
    std::ptrdiff_t rowBytes_ = 0;
};

}  // namespace umbrant::openfx
