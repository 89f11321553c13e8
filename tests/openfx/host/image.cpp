// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Guarded memory, and the count of images that a plug-in holds.

#include "tests/openfx/host/image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tests/openfx/host/host.h"

namespace umbrant::ofx {

namespace {

constexpr std::byte kGuard{0xa7};
constexpr std::size_t kLeastMargin = 256;

}  // namespace

std::string DepthName(Depth depth) {
    return depth == Depth::kByte ? "OfxBitDepthByte" : "OfxBitDepthFloat";
}

Picture::Picture(const OfxRectI& area, Depth kind)
    : bounds(area),
      depth(kind),
      channels(4 * static_cast<std::size_t>(WidthOf(area)) * static_cast<std::size_t>(HeightOf(area))) {}

float* Picture::At(int x, int y) {
    const std::size_t row = static_cast<std::size_t>(y - bounds.y1) * static_cast<std::size_t>(WidthOf(bounds));
    return &channels[4 * (row + static_cast<std::size_t>(x - bounds.x1))];
}

GuardedImage::GuardedImage(const Layout& layout)
    : layout_(layout),
      row_(static_cast<std::size_t>(WidthOf(layout.bounds)) * (layout.depth == Depth::kByte ? 4 : 16) +
           static_cast<std::size_t>(layout.gap)),
      // As large as the image, so that a plug-in that walks in the wrong direction stays inside.
      margin_(kLeastMargin + row_ * static_cast<std::size_t>(HeightOf(layout.bounds))),
      memory_(2 * margin_ + row_ * static_cast<std::size_t>(HeightOf(layout.bounds)), kGuard) {
    for (int y = layout_.bounds.y1; y < layout_.bounds.y2; ++y) {
        for (int x = layout_.bounds.x1; x < layout_.bounds.x2; ++x) Pattern(x, y, &memory_[Offset(x, y)]);
    }
}

std::size_t GuardedImage::Offset(int x, int y) const {
    const int line = layout_.negativeRows ? layout_.bounds.y2 - 1 - y : y - layout_.bounds.y1;
    return margin_ + static_cast<std::size_t>(line) * row_ +
           static_cast<std::size_t>(x - layout_.bounds.x1) * PixelBytes();
}

/// For floats every channel is a NaN with the position in it.
void GuardedImage::Pattern(int x, int y, std::byte* pixel) const {
    const std::uint32_t mixed =
        (static_cast<std::uint32_t>(x) * 2654435761U) ^ (static_cast<std::uint32_t>(y) * 40503U);
    for (std::size_t i = 0; i < PixelBytes() / 4; ++i) {
        const std::uint32_t word =
            layout_.depth == Depth::kByte ? mixed | 0x00a50000U : 0x7fc00000U | (mixed & 0xffffU);
        std::memcpy(pixel + 4 * i, &word, 4);
    }
}

void* GuardedImage::Data() {
    return &memory_[Offset(layout_.bounds.x1, layout_.bounds.y1)];
}

int GuardedImage::RowBytes() const {
    return layout_.negativeRows ? -static_cast<int>(row_) : static_cast<int>(row_);
}

void GuardedImage::Write(const Picture& picture) {
    for (int y = layout_.bounds.y1; y < layout_.bounds.y2; ++y) {
        for (int x = layout_.bounds.x1; x < layout_.bounds.x2; ++x) {
            std::byte* pixel = &memory_[Offset(x, y)];
            if (layout_.depth == Depth::kFloat) {
                std::memcpy(pixel, picture.At(x, y), 16);
                continue;
            }
            for (int c = 0; c < 4; ++c) pixel[c] = static_cast<std::byte>(static_cast<int>(picture.At(x, y)[c]));
        }
    }
}

Picture GuardedImage::Read() const {
    Picture picture(layout_.bounds, layout_.depth);
    for (int y = layout_.bounds.y1; y < layout_.bounds.y2; ++y) {
        for (int x = layout_.bounds.x1; x < layout_.bounds.x2; ++x) {
            const std::byte* pixel = &memory_[Offset(x, y)];
            if (layout_.depth == Depth::kFloat) {
                std::memcpy(picture.At(x, y), pixel, 16);
                continue;
            }
            for (int c = 0; c < 4; ++c) picture.At(x, y)[c] = static_cast<float>(pixel[c]);
        }
    }
    return picture;
}

bool GuardedImage::Written(int x, int y) const {
    std::byte pattern[16];
    Pattern(x, y, pattern);
    return std::memcmp(pattern, &memory_[Offset(x, y)], PixelBytes()) != 0;
}

bool GuardedImage::GuardsIntact() const {
    const auto intact = [&](std::size_t begin, std::size_t end) {
        return std::all_of(memory_.begin() + static_cast<std::ptrdiff_t>(begin),
                           memory_.begin() + static_cast<std::ptrdiff_t>(end),
                           [](std::byte byte) { return byte == kGuard; });
    };
    const std::size_t pixels = row_ - static_cast<std::size_t>(layout_.gap);
    for (std::size_t row = margin_; row + margin_ < memory_.size(); row += row_) {
        if (!intact(row + pixels, row + row_)) return false;
    }
    return intact(0, margin_) && intact(memory_.size() - margin_, memory_.size());
}

ImageSet::ImageSet(Host& host, FrameJob& owner, const Clip& of)
    : PropertySet(host, {"the image of clip " + of.Name(), {"image"}}), job(owner), clip(of) {}

FrameJob::FrameJob(double time, double scaleX, double scaleY, double pixelAspect)
    : time_(time), scaleX_(scaleX), scaleY_(scaleY), pixelAspect_(pixelAspect) {}

FrameJob::~FrameJob() = default;

OfxStatus FrameJob::Fetch(Clip& clip, double time, OfxPropertySetHandle* set) {
    Host& host = clip.TheHost();
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.clip == &clip; });
    if (time != time_) {
        host.record.Violation("clipGetImage asked clip " + clip.Name() + " for another time than the frame's");
        return kOfxStatFailed;
    }
    if (found == entries_.end() || (found->image == nullptr && !found->nullData)) return kOfxStatFailed;
    auto image = std::make_unique<ImageSet>(host, *this, clip);
    const Layout layout = found->image != nullptr ? found->image->TheLayout() : Layout{};
    const OfxRectI& area = layout.bounds;
    const std::vector<PropertyValue> bounds = {area.x1, area.y1, area.x2, area.y2};
    image->Put("OfxPropType", {"OfxTypeImage"});
    image->Put("OfxImagePropData", {found->image != nullptr ? found->image->Data() : static_cast<void*>(nullptr)});
    image->Put("OfxImagePropBounds", bounds);
    image->Put("OfxImagePropRegionOfDefinition", bounds);
    image->Put("OfxImagePropRowBytes", {found->image != nullptr ? found->image->RowBytes() : 0});
    image->Put("OfxImageEffectPropPixelDepth", {DepthName(layout.depth)});
    image->Put("OfxImageEffectPropComponents", {"OfxImageComponentRGBA"});
    image->Put("OfxImageEffectPropPreMultiplication", {found->premultiplication});
    image->Put("OfxImageEffectPropRenderScale", {scaleX_, scaleY_});
    image->Put("OfxImagePropPixelAspectRatio", {pixelAspect_});
    image->Put("OfxImagePropField", {"OfxFieldNone"});
    image->Put("OfxImagePropUniqueIdentifier", {clip.Name() + " at " + std::to_string(time)});
    *set = image->As<OfxPropertySetHandle>();
    const std::lock_guard lock(mutex_);
    held_.push_back(std::move(image));
    return kOfxStatOK;
}

void FrameJob::Release(const ImageSet& set) {
    const std::lock_guard lock(mutex_);
    std::erase_if(held_, [&](const auto& held) { return held.get() == &set; });
}

std::vector<std::string> FrameJob::Held() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> names;
    for (const auto& set : held_) names.push_back(set->clip.Name());
    return names;
}

}  // namespace umbrant::ofx
