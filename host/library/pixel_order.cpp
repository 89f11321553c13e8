// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/pixel_order.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "host/compositing/resample.h"
#include "hostapi/limits.h"

namespace umbrant::host {

using umbrant::ImageView;
using umbrant::MutableImageView;
using umbrant::PixelFormat;

namespace {

/// Four channels, wherever alpha is. Read and written as bytes, because no alignment is required.
template <typename Channel>
using Channels = std::array<Channel, 4>;

template <typename Channel>
void ToWorld(const std::byte* from, std::byte* to, int count) {
    for (int i = 0; i < count; ++i) {
        Channels<Channel> rgba;
        std::memcpy(&rgba, from + i * sizeof rgba, sizeof rgba);
        const Channels<Channel> argb{rgba[3], rgba[0], rgba[1], rgba[2]};
        std::memcpy(to + i * sizeof argb, &argb, sizeof argb);
    }
}

template <typename Channel>
void FromWorld(const std::byte* from, std::byte* to, int count) {
    for (int i = 0; i < count; ++i) {
        Channels<Channel> argb;
        std::memcpy(&argb, from + i * sizeof argb, sizeof argb);
        const Channels<Channel> rgba{argb[1], argb[2], argb[3], argb[0]};
        std::memcpy(to + i * sizeof rgba, &rgba, sizeof rgba);
    }
}

}  // namespace

Depth DepthOf(PixelFormat format) {
    return format == PixelFormat::kRgba8 ? Depth::k8 : Depth::k32;
}

Result<Done> CheckSize(int width, int height, const std::string& what) {
    if (width >= 0 && height >= 0 && width <= PF_MAX_WORLD_WIDTH && height <= PF_MAX_WORLD_HEIGHT) return Done{};
    return Failure{ErrorKind::kUsage, fmt::format("{} is {} x {} pixels; its sides must be from 0 to {}", what, width,
                                                  height, PF_MAX_WORLD_WIDTH)};
}

Result<Done> CheckView(const ImageView& view, const std::string& what) {
    const auto wrong = [&](const std::string& reason) {
        return Failure{ErrorKind::kUsage, fmt::format("{} {}", what, reason)};
    };
    if (view.format != PixelFormat::kRgba8 && view.format != PixelFormat::kRgbaFloat) {
        return wrong(
            fmt::format("has the pixel format {}; it must be kRgba8 or kRgbaFloat", static_cast<int>(view.format)));
    }
    TRY(CheckSize(view.width, view.height, what));
    if (view.width == 0 || view.height == 0) return Done{};
    if (!view.pixels) return wrong(fmt::format("is {} x {} pixels, but its pixels are null", view.width, view.height));
    const auto least = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(view.width) * BytesPerPixel(view.format));
    if (view.RowBytes() < least && view.RowBytes() > -least) {
        return wrong(
            fmt::format("has a stride of {} bytes; a row of {} pixels has {}", view.stride, view.width, least));
    }
    // No row's place may be beyond what a pointer can be moved by.
    const std::ptrdiff_t most = std::numeric_limits<std::ptrdiff_t>::max() / view.height - least;
    if (view.stride > most || view.stride < -most) {
        return wrong(fmt::format("has a stride of {} bytes; {} rows with this stride do not fit into memory",
                                 view.stride, view.height));
    }
    return Done{};
}

World WorldOf(const ImageView& view, Depth depth) {
    World world = World::CreateUnwritten(view.width, view.height, DepthOf(view.format));
    if (world.IsNull()) return world;
    for (int y = 0; y < view.height && view.width > 0; ++y) {
        const auto copy = view.format == PixelFormat::kRgba8 ? ToWorld<std::uint8_t> : ToWorld<float>;
        copy(view.Row(y), world.Row(y), view.width);
    }
    return depth == world.PixelDepth() ? std::move(world) : ConvertDepth(world, depth);
}

void CopyInto(const World& world, int x, int y, const MutableImageView& target) {
    const std::size_t bytes = BytesPerPixel(target.format);
    const auto copy = target.format == PixelFormat::kRgba8 ? FromWorld<std::uint8_t> : FromWorld<float>;
    const int left = std::clamp(x, 0, target.width);
    const int right = std::clamp(x + world.Width(), left, target.width);
    for (int row = 0; row < target.height && target.width > 0; ++row) {
        std::byte* to = target.Row(row);
        const bool reached = row >= y && row - y < world.Height() && left < right;
        if (!reached) {
            std::memset(to, 0, static_cast<std::size_t>(target.width) * bytes);
            continue;
        }
        std::memset(to, 0, static_cast<std::size_t>(left) * bytes);
        copy(world.Row(row - y) + static_cast<std::size_t>(left - x) * bytes,
             to + static_cast<std::size_t>(left) * bytes, right - left);
        std::memset(to + static_cast<std::size_t>(right) * bytes, 0,
                    static_cast<std::size_t>(target.width - right) * bytes);
    }
}

}  // namespace umbrant::host
