// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Arrays of Python as the library's images. Any object with the buffer protocol is an array: numpy.ndarray, memoryview.

#include <pybind11/pybind11.h>
#include <umbrant/image.h>

#include <string>

namespace umbrant::python {

/// An array's memory, which cannot move or be freed while this exists. Created and destroyed with the interpreter's
/// lock; everything else works without it.
class PixelBuffer {
 public:
    /// `what` begins the sentences: "the layer". Throws Error with ErrorCode::kUsage, or a Python error, for an object
    /// that is not an array of height x width x 4 values of uint8 or float32.
    PixelBuffer(const pybind11::object& array, const std::string& what);
    ~PixelBuffer();
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;

    /// Whether pixels follow each other in each row, as an ImageView has them.
    bool HasPlainRows() const;
    /// The array's own memory, whose rows must be plain.
    MutableImageView View() const;
    /// A copy of the pixels with plain rows. May throw std::bad_alloc.
    Image Copy() const;
    /// Writes an image of the same size and format to the array.
    void Assign(const Image& image) const;

    /// Throws Error with ErrorCode::kUsage unless the array can be written to, each pixel in memory of its own.
    void RequireWritable() const;

 private:
    int Side(int axis) const;
    std::ptrdiff_t Stride(int axis) const { return buffer_.strides[axis]; }
    void CheckExtent() const;

    Py_buffer buffer_{};
    std::string what_;
    PixelFormat format_ = PixelFormat::kRgba8;
};

/// The pixels of an array that is only read: its own memory, or a copy where its rows are not plain.
class ReadPixels {
 public:
    ReadPixels(const pybind11::object& array, const std::string& what) : buffer_(array, what) {}

    /// Copies where necessary. May be called without the interpreter's lock.
    ImageView View();

 private:
    PixelBuffer buffer_;
    Image copy_;
};

}  // namespace umbrant::python
