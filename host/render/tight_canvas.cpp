// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/tight_canvas.h"

#include <algorithm>
#include <limits>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/rectangles.h"
#include "host/compositing/resample.h"

namespace umbrant::host {

namespace {

template <typename Pixel, typename IsVisible>
PF_LRect BoundsWhere(const World& world, IsVisible isVisible) {
    PF_LRect bounds{world.Width(), world.Height(), 0, 0};
    for (int y = 0; y < world.Height(); ++y) {
        const auto* row = static_cast<const Pixel*>(static_cast<const void*>(world.Row(y)));
        int left = 0;
        while (left < world.Width() && !isVisible(row[left])) ++left;
        if (left == world.Width()) continue;
        int right = world.Width();
        while (!isVisible(row[right - 1])) --right;
        bounds = {std::min<A_long>(bounds.left, left), std::min<A_long>(bounds.top, y),
                  std::max<A_long>(bounds.right, right), y + 1};
    }
    return IsEmpty(bounds) ? PF_LRect{} : bounds;
}

}  // namespace

float LeastAlpha(FileDepth depth) {
    // Integers are rounded to the nearest, halves too, whose smallest is 2^-24.
    switch (depth) {
        case FileDepth::k8:
            return 0.5f / 255.0f;
        case FileDepth::k16:
            return 0.5f / 65535.0f;
        case FileDepth::kHalf:
            return 0x1p-25f;
        case FileDepth::kFloat:
        case FileDepth::kAuto:
            break;
    }
    return std::numeric_limits<float>::denorm_min();
}

PF_LRect VisibleRect(const Drawn& image, float leastAlpha) {
    const World& world = image.pixels;
    const PF_LRect bounds =
        world.PixelDepth() == Depth::k32
            ? BoundsWhere<PF_PixelFloat>(world, [&](const PF_PixelFloat& p) { return !(p.alpha < leastAlpha); })
            : BoundsWhere<PF_Pixel>(world, [](const PF_Pixel& p) { return p.alpha != 0; });
    if (IsEmpty(bounds)) return {};
    return {bounds.left + image.rect.left, bounds.top + image.rect.top, bounds.right + image.rect.left,
            bounds.bottom + image.rect.top};
}

Result<Done> CutTo(const PF_LRect& rectangle, Drawn& image) {
    if (Same(rectangle, image.rect)) return Done{};
    const int width = WidthOf(rectangle);
    const int height = HeightOf(rectangle);
    World cut =
        CutToFrame(image.pixels, image.rect.left - rectangle.left, image.rect.top - rectangle.top, width, height);
    if (cut.IsNull()) return NotEnoughMemory("the image", width, height, image.pixels.PixelDepth());
    image = {std::move(cut), rectangle};
    return Done{};
}

void VisibleUnion::Add(const PF_LRect& visible) {
    if (IsEmpty(visible)) return;
    const std::lock_guard lock(mutex_);
    if (IsEmpty(all_)) {
        all_ = visible;
        return;
    }
    all_ = {std::min(all_.left, visible.left), std::min(all_.top, visible.top), std::max(all_.right, visible.right),
            std::max(all_.bottom, visible.bottom)};
}

PF_LRect VisibleUnion::Rectangle() const {
    const std::lock_guard lock(mutex_);
    return IsEmpty(all_) ? kNothingVisible : all_;
}

bool VisibleUnion::IsNothing() const {
    const std::lock_guard lock(mutex_);
    return IsEmpty(all_);
}

}  // namespace umbrant::host
