// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Conversions, row by row. Host rows have any alignment, so pixels are read and written as bytes.

#include "openfx/images/pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

namespace umbrant::openfx {

namespace {

template <typename Channel>
using Pixel = std::array<Channel, 4>;

template <typename Channel>
Pixel<Channel> Load(const std::byte* from) {
    Pixel<Channel> pixel;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

template <typename Channel>
void Store(const Pixel<Channel>& pixel, std::byte* to) {
    std::memcpy(to, &pixel, sizeof pixel);
}

Pixel<float> LoadFloats(const std::byte* from, PixelFormat format) {
    if (format == PixelFormat::kRgbaFloat) return Load<float>(from);
    const auto bytes = Load<std::uint8_t>(from);
    return {static_cast<float>(bytes[0]) / 255, static_cast<float>(bytes[1]) / 255, static_cast<float>(bytes[2]) / 255,
            static_cast<float>(bytes[3]) / 255};
}

void StoreFloats(const Pixel<float>& pixel, PixelFormat format, std::byte* to) {
    if (format == PixelFormat::kRgbaFloat) return Store(pixel, to);
    Pixel<std::uint8_t> bytes;
    for (std::size_t i = 0; i < 4; ++i) {
        // Written so that not-a-number becomes 0.
        const float value = pixel[i] > 0 ? std::min(pixel[i], 1.0f) : 0.0f;
        bytes[i] = static_cast<std::uint8_t>(value * 255 + 0.5f);
    }
    Store(bytes, to);
}

template <typename Channel>
void SwapRow(const std::byte* from, std::byte* to, int count) {
    for (int i = 0; i < count; ++i) {
        auto pixel = Load<Channel>(from + i * sizeof(Pixel<Channel>));
        std::swap(pixel[0], pixel[2]);
        Store(pixel, to + i * sizeof pixel);
    }
}

void CopyRow(const std::byte* from, PixelFormat format, bool swaps, std::byte* to, int count) {
    if (!swaps) {
        std::memcpy(to, from, static_cast<std::size_t>(count) * BytesPerPixel(format));
    } else if (format == PixelFormat::kRgba8) {
        SwapRow<std::uint8_t>(from, to, count);
    } else {
        SwapRow<float>(from, to, count);
    }
}

template <typename Channel>
void FillAlpha(std::byte* row, int count, Channel full) {
    for (int i = 0; i < count; ++i) std::memcpy(row + i * sizeof(Pixel<Channel>) + 3 * sizeof full, &full, sizeof full);
}

void MakeOpaque(std::byte* row, PixelFormat format, int count) {
    if (format == PixelFormat::kRgba8) {
        FillAlpha<std::uint8_t>(row, count, 255);
    } else {
        FillAlpha<float>(row, count, 1);
    }
}

void DivideRow(const std::byte* from, PixelFormat format, bool isBlueFirst, std::byte* to, int count) {
    const std::size_t size = BytesPerPixel(format);
    for (int i = 0; i < count; ++i) {
        Pixel<float> pixel = LoadFloats(from + static_cast<std::size_t>(i) * size, format);
        if (isBlueFirst) std::swap(pixel[0], pixel[2]);
        if (pixel[3] != 1) {
            // Colours beside an alpha of 0 are added to the result; see FromLibrary.
            for (std::size_t c = 0; c < 3; ++c) pixel[c] = pixel[3] == 0 ? 0 : pixel[c] / pixel[3];
        }
        Store(pixel, to + i * sizeof pixel);
    }
}

/// Pixels of the library's and, of the host's format, where they go and what they were drawn from.
struct Piece {
    const std::byte* from = nullptr;
    PixelFormat drawn = PixelFormat::kRgba8;
    const std::byte* source = nullptr;  ///< null where the source has none, or none whose light is added
    std::byte* to = nullptr;
    PixelFormat format = PixelFormat::kRgba8;
    int count = 0;
};

void MultiplyRow(const Piece& piece, bool isBlueFirst) {
    const std::size_t size = BytesPerPixel(piece.format), drawnSize = BytesPerPixel(piece.drawn);
    for (std::size_t i = 0; i < static_cast<std::size_t>(piece.count); ++i) {
        Pixel<float> pixel = LoadFloats(piece.from + i * drawnSize, piece.drawn);
        for (std::size_t c = 0; c < 3; ++c) pixel[c] *= pixel[3];
        if (isBlueFirst) std::swap(pixel[0], pixel[2]);
        if (piece.source) {
            const Pixel<float> given = LoadFloats(piece.source + i * size, piece.format);
            for (std::size_t c = 0; c < 3 && given[3] == 0; ++c) pixel[c] += given[c];
        }
        StoreFloats(pixel, piece.format, piece.to + i * size);
    }
}

std::byte* At(const MutableImageView& view, int x, int y) {
    return view.Row(y) + static_cast<std::size_t>(x) * BytesPerPixel(view.format);
}

const std::byte* At(const ImageView& view, int x, int y) {
    return view.Row(y) + static_cast<std::size_t>(x) * BytesPerPixel(view.format);
}

/// One row of the target, from its column `first` to `last`, out of the drawn image's row.
void WriteRow(const Image& drawn, const PixelForm& form, const ImageView& source, const MutableImageView& target, int y,
              int first, int last, int left, int top) {
    const int layerX = left + first, layerY = top + y;
    const ImageView pixels = drawn.View();
    const std::byte* const from = At(pixels, layerX - drawn.Place().left, layerY - drawn.Place().top);
    if (form.alpha == AlphaState::kStraight)
        return CopyRow(from, target.format, form.isBlueFirst, At(target, first, y), last - first);
    // The source covers a part of the columns; the row is written in up to three pieces.
    const bool hasLight = form.alpha == AlphaState::kPremultiplied && layerY >= 0 && layerY < source.height;
    const int begin = hasLight ? std::clamp(-left, first, last) : last;
    const int end = hasLight ? std::clamp(source.width - left, begin, last) : last;
    const auto write = [&](int x, int stop, const std::byte* light) {
        const std::size_t skipped = static_cast<std::size_t>(x - first) * BytesPerPixel(drawn.Format());
        MultiplyRow({from + skipped, drawn.Format(), light, At(target, x, y), target.format, stop - x},
                    form.isBlueFirst);
    };
    write(first, begin, nullptr);
    write(begin, end, begin < end ? At(source, left + begin, layerY) : nullptr);
    write(end, last, nullptr);
}

}  // namespace

Image ToLibrary(const ImageView& pixels, const PixelForm& form) {
    Image image({0, 0, pixels.width, pixels.height}, form.NeedsFloats() ? PixelFormat::kRgbaFloat : pixels.format);
    const MutableImageView to = image.View();
    for (int y = 0; y < pixels.height; ++y) {
        if (form.NeedsFloats()) {
            DivideRow(pixels.Row(y), pixels.format, form.isBlueFirst, to.Row(y), pixels.width);
            continue;
        }
        CopyRow(pixels.Row(y), pixels.format, form.isBlueFirst, to.Row(y), pixels.width);
        if (form.alpha == AlphaState::kOpaque) MakeOpaque(to.Row(y), pixels.format, pixels.width);
    }
    return image;
}

void FromLibrary(const Image& drawn, const PixelForm& form, const ImageView& source, const MutableImageView& target,
                 int left, int top) {
    const Rectangle& place = drawn.Place();
    const std::size_t size = BytesPerPixel(target.format);
    const int first = std::clamp(place.left - left, 0, target.width);
    const int last = std::clamp(place.right - left, first, target.width);
    for (int y = 0; y < target.height; ++y) {
        const bool isDrawn = top + y >= place.top && top + y < place.bottom && first < last;
        const int begin = isDrawn ? first : target.width;
        const int end = isDrawn ? last : target.width;
        std::memset(target.Row(y), 0, static_cast<std::size_t>(begin) * size);
        if (isDrawn) WriteRow(drawn, form, source, target, y, first, last, left, top);
        std::memset(At(target, end, y), 0, static_cast<std::size_t>(target.width - end) * size);
    }
}

void Clear(const MutableImageView& target) {
    for (int y = 0; y < target.height; ++y)
        std::memset(target.Row(y), 0, static_cast<std::size_t>(target.width) * BytesPerPixel(target.format));
}

}  // namespace umbrant::openfx
