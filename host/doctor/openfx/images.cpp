// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/images.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "openfx/abi/clip_properties.h"
#include "openfx/abi/effect_properties.h"
#include "openfx/abi/image_names.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kGuard = 4096;
constexpr std::byte kGuardByte{0xA5};
// As a float it is -3.7e19, and in 8 bits it is a colour that no source of ours has.
constexpr std::byte kUnwritten{0xDF};

/// 0 at the edge of the image to 1 in its middle: one channel of the source.
double Coverage(int x, int y, int width, int height) {
    const double across = std::abs(2.0 * x + 1 - width) / width;
    const double down = std::abs(2.0 * y + 1 - height) / height;
    return std::clamp(2.0 - 3.0 * std::max(across, down), 0.0, 1.0);
}

template <typename Channel>
void DrawSource(std::byte* pixels, int width, int height, double white) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto alpha = static_cast<Channel>(white * Coverage(x, y, width, height));
            const auto light = static_cast<Channel>(white * 0.75);
            const Channel pixel[4] = {light, light, light, alpha};
            std::memcpy(
                pixels + (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
                             sizeof(pixel),
                pixel, sizeof(pixel));
        }
    }
}

}  // namespace

int PixelBytes(const std::string& depth) {
    return depth == kOfxBitDepthByte ? 4 : depth == kOfxBitDepthShort ? 8 : depth == kOfxBitDepthFloat ? 16 : 0;
}

std::unique_ptr<OpenFxImage> MakeImage(const OfxRectI& bounds, const std::string& depth, bool isSource) {
    const int width = bounds.x2 - bounds.x1, height = bounds.y2 - bounds.y1;
    const int rowBytes = width * PixelBytes(depth);
    const std::size_t bytes = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
    auto image = std::make_unique<OpenFxImage>();
    image->memory.assign(bytes + 2 * kGuard, kGuardByte);
    std::byte* const pixels = image->memory.data() + kGuard;
    std::fill_n(pixels, bytes, kUnwritten);
    if (isSource && depth == kOfxBitDepthByte) DrawSource<unsigned char>(pixels, width, height, 255);
    if (isSource && depth == kOfxBitDepthShort) DrawSource<unsigned short>(pixels, width, height, 65535);
    if (isSource && depth == kOfxBitDepthFloat) DrawSource<float>(pixels, width, height, 1);
    PropertySet& properties = image->properties;
    properties.Declare(kOfxPropType, {std::string(kOfxTypeImage)});
    properties.Declare(kOfxImageEffectPropPixelDepth, {depth});
    properties.Declare(kOfxImageEffectPropComponents, {std::string(kOfxImageComponentRGBA)});
    properties.Declare(kOfxImageEffectPropPreMultiplication, {std::string(kOfxImageUnPreMultiplied)});
    properties.Declare(kOfxImageEffectPropRenderScale, {1.0, 1.0});
    properties.Declare(kOfxImagePropPixelAspectRatio, {1.0});
    properties.Declare(kOfxImagePropData, {static_cast<void*>(pixels)});
    properties.Declare(kOfxImagePropBounds, {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
    properties.Declare(kOfxImagePropRegionOfDefinition, {bounds.x1, bounds.y1, bounds.x2, bounds.y2});
    properties.Declare(kOfxImagePropRowBytes, {rowBytes});
    properties.Declare(kOfxImagePropField, {std::string(kOfxImageFieldNone)});
    properties.Declare(kOfxImagePropUniqueIdentifier, {std::string(isSource ? "source" : "output")});
    properties.Declare("UmbrantPropOwner", {static_cast<void*>(image.get())});
    return image;
}

bool IsOverrun(const OpenFxImage& image) {
    const auto isGuard = [](std::byte byte) { return byte == kGuardByte; };
    return !std::all_of(image.memory.begin(), image.memory.begin() + kGuard, isGuard) ||
           !std::all_of(image.memory.end() - kGuard, image.memory.end(), isGuard);
}

bool IsUntouched(const OpenFxImage& image) {
    return std::all_of(image.memory.begin() + kGuard, image.memory.end() - kGuard,
                       [](std::byte byte) { return byte == kUnwritten; });
}

}  // namespace umbrant::host
