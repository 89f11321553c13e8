// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/channels/channel_pixels.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

#include "host/compositing/row_pool.h"

namespace umbrant::host {

namespace {

/// Puts one row of the file's channels into a world's row. A colour channel that the file lacks is 0, or full in a file
/// of alpha only; a missing alpha is opaque.
template <typename Pixel, typename Channel>
void FillRow(const Channel* from, int channelCount, const Channels& channels, Channel full, Pixel* to, int width) {
    const Channel missing = channels.red < 0 ? full : Channel{0};
    for (int x = 0; x < width; ++x, from += channelCount) {
        to[x].alpha = channels.alpha < 0 ? full : from[channels.alpha];
        to[x].red = channels.red < 0 ? missing : from[channels.red];
        to[x].green = channels.green < 0 ? missing : from[channels.green];
        to[x].blue = channels.blue < 0 ? missing : from[channels.blue];
    }
}

void Unpremultiply(PF_PixelFloat* row, int width) {
    for (int x = 0; x < width; ++x) {
        PF_PixelFloat& pixel = row[x];
        if (!(pixel.alpha > 0.0f)) continue;
        pixel.red /= pixel.alpha;
        pixel.green /= pixel.alpha;
        pixel.blue /= pixel.alpha;
    }
}

void Unpremultiply(PF_Pixel* row, int width) {
    for (int x = 0; x < width; ++x) {
        PF_Pixel& pixel = row[x];
        if (pixel.alpha == 0) continue;
        const auto divide = [&pixel](A_u_char channel) {
            return static_cast<A_u_char>(std::min(255, (channel * 255 + pixel.alpha / 2) / pixel.alpha));
        };
        pixel.red = divide(pixel.red);
        pixel.green = divide(pixel.green);
        pixel.blue = divide(pixel.blue);
    }
}

/// The same channels, counted from `begin`.
Channels Within(Channels channels, int begin) {
    for (int* channel : {&channels.red, &channels.green, &channels.blue, &channels.alpha}) {
        if (*channel >= 0) *channel -= begin;
    }
    return channels;
}

/// Reads all pixels of some of the file's channels, `Channel` being what they are converted to.
template <typename Pixel, typename Channel>
std::optional<std::string> ReadAs(ImageReader& input, Channels channels, Channel full, World& world) {
    const ImageLayout& layout = input.Layout();
    const auto [begin, end] = RangeOf(channels);
    const int count = end - begin;
    const std::size_t rowValues = static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(count);
    // Zeroed by the system page by page, as they are written: a small file that claims to be large costs nothing.
    const std::unique_ptr<Channel, decltype(&std::free)> values(
        static_cast<Channel*>(std::calloc(rowValues * static_cast<std::size_t>(layout.height), sizeof(Channel))),
        &std::free);
    if (!values) throw std::bad_alloc();
    if (auto problem = input.Read(begin, end, sizeof(Channel) == 1, values.get())) return problem;

    channels = Within(channels, begin);
    const bool hasBoth = channels.alpha >= 0 && channels.red >= 0;
    const bool straight = !hasBoth || layout.isStraight;
    const auto convert = [&](int first, int last) {
        for (int y = first; y < last; ++y) {
            auto* row = static_cast<Pixel*>(static_cast<void*>(world.Row(y)));
            FillRow(values.get() + rowValues * static_cast<std::size_t>(y), count, channels, full, row, layout.width);
            if (!straight) Unpremultiply(row, layout.width);
        }
    };
    if (input.IsSpread()) {
        ForEachRowRange(layout.height, convert);
    } else {
        convert(0, layout.height);
    }
    return std::nullopt;
}

}  // namespace

std::pair<int, int> RangeOf(const Channels& channels) {
    int begin = std::numeric_limits<int>::max();
    int end = 0;
    for (const int channel : {channels.red, channels.green, channels.blue, channels.alpha}) {
        if (channel < 0) continue;
        begin = std::min(begin, channel);
        end = std::max(end, channel + 1);
    }
    return {begin, end};
}

std::optional<std::string> ReadPixels(ImageReader& input, const Channels& channels, World& world) {
    if (world.PixelDepth() == Depth::k8) return ReadAs<PF_Pixel, A_u_char>(input, channels, 255, world);
    return ReadAs<PF_PixelFloat, float>(input, channels, 1.0f, world);
}

}  // namespace umbrant::host
