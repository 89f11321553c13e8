// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Fetches images and reads what they say of themselves.

#include "openfx/images/clip_image.h"

#include <cstdlib>
#include <utility>

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"
#include "openfx/host/refusal.h"
#include "openfx/host/suites.h"

namespace umbrant::openfx {

namespace {

/// A property of the image, or of its clip where the image lacks it.
std::string TextOf(const Properties& image, const Properties& clip, const char* name) {
    if (auto text = image.String(name)) return *text;
    return clip.String(name).value_or("");
}

/// `property` is what `found` describes; nothing was found where the host does not report it.
[[noreturn]] void RefuseFormat(const char* what, const char* property, const std::string& found, const char* wanted) {
    if (found.empty()) {
        throw Refusal(kOfxStatFailed, std::string("the host does not report the ") + property + " of " + what);
    }
    throw Refusal(kOfxStatErrImageFormat, std::string(what) + " has the format '" + found +
                                              "', but the plug-in draws " + wanted + "; convert it before this effect");
}

}  // namespace

std::optional<ClipImage> ClipImage::Fetch(OfxImageClipHandle clip, OfxTime time, const char* what) {
    OfxPropertySetHandle handle = nullptr;
    const OfxStatus status = TheSuites().effect->clipGetImage(clip, time, nullptr, &handle);
    if (status == kOfxStatErrMemory) {
        throw Refusal(kOfxStatErrMemory, std::string("the host has not enough memory for ") + what);
    }
    if (status != kOfxStatOK || !handle) return std::nullopt;
    ClipImage image(handle);
    if (!image.Read(clip, what)) return std::nullopt;
    return image;
}

ClipImage::ClipImage(ClipImage&& other) noexcept
    : properties_(std::exchange(other.properties_, Properties())),
      bounds_(other.bounds_),
      format_(other.format_),
      bottom_(other.bottom_),
      rowBytes_(other.rowBytes_) {}

ClipImage::~ClipImage() {
    if (properties_.Handle()) TheSuites().effect->clipReleaseImage(properties_.Handle());
}

bool ClipImage::Read(OfxImageClipHandle clip, const char* what) {
    bottom_ = static_cast<std::byte*>(properties_.Pointer(kOfxImagePropData));
    if (!bottom_) return false;
    OfxPropertySetHandle clipSet = nullptr;
    if (TheSuites().effect->clipGetPropertySet(clip, &clipSet) != kOfxStatOK) clipSet = nullptr;
    const Properties clipProperties(clipSet);

    const std::string depth = TextOf(properties_, clipProperties, kOfxImageEffectPropPixelDepth);
    if (depth != kOfxBitDepthByte && depth != kOfxBitDepthFloat)
        RefuseFormat(what, "pixel depth", depth, "bytes and floats");
    format_ = depth == kOfxBitDepthByte ? PixelFormat::kRgba8 : PixelFormat::kRgbaFloat;
    const std::string components = TextOf(properties_, clipProperties, kOfxImageEffectPropComponents);
    if (components != kOfxImageComponentRGBA)
        RefuseFormat(what, "components", components, "red, green, blue and alpha");

    const auto bounds = properties_.Ints<4>(kOfxImagePropBounds);
    const auto rowBytes = properties_.Int(kOfxImagePropRowBytes);
    if (!bounds || !rowBytes) {
        throw Refusal(kOfxStatFailed,
                      std::string("the host does not report the ") + (bounds ? "row bytes" : "bounds") + " of " + what);
    }
    bounds_ = {(*bounds)[0], (*bounds)[1], (*bounds)[2], (*bounds)[3]};
    if (bounds_.x1 >= bounds_.x2 || bounds_.y1 >= bounds_.y2) return false;
    rowBytes_ = *rowBytes;
    const std::ptrdiff_t least = (std::ptrdiff_t{bounds_.x2} - bounds_.x1) * static_cast<int>(BytesPerPixel(format_));
    if (std::abs(rowBytes_) < least) {
        // A single row has no row beside it.
        rowBytes_ = least;
        if (bounds_.y2 - bounds_.y1 == 1) return true;
        throw Refusal(kOfxStatFailed, std::string("the host reports ") + std::to_string(*rowBytes) +
                                          " bytes a row for " + what + ", whose rows have " + std::to_string(least));
    }
    return true;
}

double ClipImage::PixelAspect(double otherwise) const {
    return properties_.Double(kOfxImagePropPixelAspectRatio).value_or(otherwise);
}

std::optional<std::string> ClipImage::AlphaText() const {
    return properties_.String(kOfxImageEffectPropPreMultiplication);
}

MutableImageView ClipImage::View(const OfxRectI& part) const {
    const int width = part.x2 - part.x1, height = part.y2 - part.y1;
    std::byte* const top = bottom_ + (std::ptrdiff_t{part.y2} - 1 - bounds_.y1) * rowBytes_ +
                           (std::ptrdiff_t{part.x1} - bounds_.x1) * static_cast<int>(BytesPerPixel(format_));
    return {top, width, height, format_, -rowBytes_};
}

}  // namespace umbrant::openfx
