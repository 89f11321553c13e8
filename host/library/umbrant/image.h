// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Images in memory. Pixels are red, green, blue and straight alpha (colours are not multiplied by it), either bytes
// from 0 to 255 or floats from 0 to 1; colours may be outside of 0..1. Colour spaces are not converted.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace umbrant {

enum class PixelFormat {
    kRgba8,      ///< four bytes per pixel
    kRgbaFloat,  ///< four floats per pixel
};

/// 4 or 16.
constexpr std::size_t BytesPerPixel(PixelFormat format) {
    return format == PixelFormat::kRgba8 ? 4 : 16;
}

/// A rectangle in pixels of the layer, whose top-left corner is (0, 0); right and bottom are exclusive.
struct Rectangle {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    friend constexpr bool operator==(const Rectangle& a, const Rectangle& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
    friend constexpr bool operator!=(const Rectangle& a, const Rectangle& b) { return !(a == b); }
};

/// Read-only pixels of the caller. The memory must not change during the call that the view is passed to. No alignment
/// is required.
struct ImageView {
    const void* pixels = nullptr;  ///< the first pixel of the top row; null only if there are no pixels
    int width = 0;
    int height = 0;
    PixelFormat format = PixelFormat::kRgba8;
    /// Bytes from a row to the row below; negative if the top row is last in memory. 0: rows without gaps.
    std::ptrdiff_t stride = 0;

    constexpr ImageView() = default;
    constexpr ImageView(const void* data, int columns, int rows, PixelFormat kind, std::ptrdiff_t bytes = 0)
        : pixels(data), width(columns), height(rows), format(kind), stride(bytes) {}
    constexpr ImageView(const std::uint8_t* data, int columns, int rows, std::ptrdiff_t bytes = 0)
        : ImageView(data, columns, rows, PixelFormat::kRgba8, bytes) {}
    constexpr ImageView(const float* data, int columns, int rows, std::ptrdiff_t bytes = 0)
        : ImageView(data, columns, rows, PixelFormat::kRgbaFloat, bytes) {}

    /// Returns `stride`, or the bytes of a row if it is 0.
    constexpr std::ptrdiff_t RowBytes() const {
        return stride != 0 ? stride : static_cast<std::ptrdiff_t>(width) * static_cast<int>(BytesPerPixel(format));
    }
    const std::byte* Row(int y) const { return static_cast<const std::byte*>(pixels) + y * RowBytes(); }
};

/// Writable pixels of the caller; otherwise as ImageView.
struct MutableImageView {
    void* pixels = nullptr;
    int width = 0;
    int height = 0;
    PixelFormat format = PixelFormat::kRgba8;
    std::ptrdiff_t stride = 0;

    constexpr MutableImageView() = default;
    constexpr MutableImageView(void* data, int columns, int rows, PixelFormat kind, std::ptrdiff_t bytes = 0)
        : pixels(data), width(columns), height(rows), format(kind), stride(bytes) {}
    constexpr MutableImageView(std::uint8_t* data, int columns, int rows, std::ptrdiff_t bytes = 0)
        : MutableImageView(data, columns, rows, PixelFormat::kRgba8, bytes) {}
    constexpr MutableImageView(float* data, int columns, int rows, std::ptrdiff_t bytes = 0)
        : MutableImageView(data, columns, rows, PixelFormat::kRgbaFloat, bytes) {}

    constexpr operator ImageView() const { return {pixels, width, height, format, stride}; }
    constexpr std::ptrdiff_t RowBytes() const { return ImageView(*this).RowBytes(); }
    std::byte* Row(int y) const { return static_cast<std::byte*>(pixels) + y * RowBytes(); }
};

/// An image that owns its pixels, in rows without gaps, and has a rectangle in pixels of the layer. Move-only.
class Image {
 public:
    Image() = default;
    /// The pixels are not initialised. Width and height of `place` must be at least 0. May throw std::bad_alloc.
    Image(const Rectangle& place, PixelFormat format)
        : place_(place), format_(format), pixels_(new float[PixelCount() * BytesPerPixel(format) / sizeof(float)]) {}
    Image(Image&& other) noexcept
        : place_(std::exchange(other.place_, {})), format_(other.format_), pixels_(std::move(other.pixels_)) {}
    Image& operator=(Image&& other) noexcept {
        place_ = std::exchange(other.place_, {});
        format_ = other.format_;
        pixels_ = std::move(other.pixels_);
        return *this;
    }

    int Width() const { return place_.Width(); }
    int Height() const { return place_.Height(); }
    /// The rectangle in pixels of the layer: left and top are negative where the image grew to the left or upwards.
    const Rectangle& Place() const { return place_; }
    PixelFormat Format() const { return format_; }
    std::size_t PixelCount() const { return static_cast<std::size_t>(Width()) * static_cast<std::size_t>(Height()); }

    /// The pixels as floats; valid for PixelFormat::kRgbaFloat.
    float* Floats() { return pixels_.get(); }
    const float* Floats() const { return pixels_.get(); }
    /// The pixels as bytes: the channels of PixelFormat::kRgba8, or the memory of the floats.
    std::uint8_t* Bytes() { return reinterpret_cast<std::uint8_t*>(pixels_.get()); }
    const std::uint8_t* Bytes() const { return reinterpret_cast<const std::uint8_t*>(pixels_.get()); }

    ImageView View() const { return {static_cast<const void*>(pixels_.get()), Width(), Height(), format_}; }
    MutableImageView View() { return {static_cast<void*>(pixels_.get()), Width(), Height(), format_}; }

 private:
    Rectangle place_;
    PixelFormat format_ = PixelFormat::kRgba8;
    std::unique_ptr<float[]> pixels_;
};

}  // namespace umbrant
