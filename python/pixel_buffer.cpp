// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Arrays of Python as the library's images: which are accepted, and how values are copied whatever the strides.

#include "python/pixel_buffer.h"

#include <umbrant/error.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "python/errors.h"

namespace umbrant::python {

namespace py = pybind11;

namespace {

constexpr int kAxes = 3;
constexpr int kChannels = 4;
/// More than the library accepts: a larger array is refused by its size and is never copied.
constexpr int kLargestSide = 30000;
constexpr char kWanted[] = "an array of height x width x 4 values of uint8 or float32";

/// "int16", as numpy names the type of an array's values; "" for other arrays.
std::string NumpyType(const py::object& array) {
    return py::hasattr(array, "dtype") ? std::string(py::str(array.attr("dtype"))) : "";
}

[[noreturn]] void RefuseType(const py::object& array, const std::string& what, const std::string& format) {
    const std::string type = NumpyType(array);
    Refuse(what + " has values of the type " + (type.empty() ? "'" + format + "'" : type) +
           "; they must be uint8 (0 to 255) or float32 (0 to 1), in the byte order of this machine");
}

std::string ShapeText(const Py_buffer& buffer) {
    std::string text;
    for (int axis = 0; axis < buffer.ndim; ++axis) {
        if (axis > 0) text += ", ";
        text += std::to_string(buffer.shape[axis]);
    }
    return "(" + text + (buffer.ndim == 1 ? ",)" : ")");
}

/// Calls visit(offset in the array, offset in plain rows) for each value, in bytes.
template <typename Value, typename Visit>
void ForEachValue(const Py_buffer& buffer, const Visit& visit) {
    std::ptrdiff_t plain = 0;
    for (Py_ssize_t y = 0; y < buffer.shape[0]; ++y) {
        for (Py_ssize_t x = 0; x < buffer.shape[1]; ++x) {
            for (Py_ssize_t channel = 0; channel < kChannels; ++channel) {
                visit(y * buffer.strides[0] + x * buffer.strides[1] + channel * buffer.strides[2], plain);
                plain += sizeof(Value);
            }
        }
    }
}

template <typename Value>
void CopyOut(const Py_buffer& buffer, std::byte* to) {
    const auto* from = static_cast<const std::byte*>(buffer.buf);
    ForEachValue<Value>(buffer, [&](std::ptrdiff_t array, std::ptrdiff_t plain) {
        std::memcpy(to + plain, from + array, sizeof(Value));
    });
}

template <typename Value>
void CopyIn(const std::byte* from, const Py_buffer& buffer) {
    auto* to = static_cast<std::byte*>(buffer.buf);
    ForEachValue<Value>(buffer, [&](std::ptrdiff_t array, std::ptrdiff_t plain) {
        std::memcpy(to + array, from + plain, sizeof(Value));
    });
}

}  // namespace

PixelBuffer::PixelBuffer(const py::object& array, const std::string& what) : what_(what) {
    if (!PyObject_CheckBuffer(array.ptr())) {
        RefuseKind(what + " is of the type '" + Py_TYPE(array.ptr())->tp_name + "'; it must be " + kWanted +
                   ", such as numpy.ndarray");
    }
    if (PyObject_GetBuffer(array.ptr(), &buffer_, PyBUF_STRIDES | PyBUF_FORMAT) != 0) {
        // numpy refuses the types that the protocol has no name for.
        PyErr_Clear();
        RefuseType(array, what, "unknown");
    }
    try {
        if (buffer_.ndim != kAxes || buffer_.shape[2] != kChannels) {
            Refuse(what + " has the shape " + ShapeText(buffer_) +
                   "; it must be (height, width, 4): red, green, blue " + "and alpha");
        }
        std::string format = buffer_.format ? buffer_.format : "B";
        if (!format.empty() && (format[0] == '@' || format[0] == '=')) format.erase(0, 1);
        if (format != "B" && format != "f") RefuseType(array, what, format);
        format_ = format == "B" ? PixelFormat::kRgba8 : PixelFormat::kRgbaFloat;
        CheckExtent();
    } catch (...) {
        PyBuffer_Release(&buffer_);
        throw;
    }
}

PixelBuffer::~PixelBuffer() {
    PyBuffer_Release(&buffer_);
}

int PixelBuffer::Side(int axis) const {
    return static_cast<int>(std::min<Py_ssize_t>(buffer_.shape[axis], std::numeric_limits<int>::max()));
}

void PixelBuffer::CheckExtent() const {
    std::ptrdiff_t extent = 0;
    for (int axis = 0; axis < kAxes; ++axis) {
        const std::ptrdiff_t steps = std::max<std::ptrdiff_t>(buffer_.shape[axis] - 1, 0);
        std::ptrdiff_t length = 0;
        if (__builtin_mul_overflow(steps, Stride(axis), &length) || length == std::numeric_limits<ptrdiff_t>::min() ||
            __builtin_add_overflow(extent, length < 0 ? -length : length, &extent)) {
            Refuse(what_ + " has a stride of " + std::to_string(Stride(axis)) + " bytes along axis " +
                   std::to_string(axis) + "; " + std::to_string(buffer_.shape[axis]) +
                   " steps of this size do not fit into memory");
        }
    }
}

bool PixelBuffer::HasPlainRows() const {
    const auto pixel = static_cast<std::ptrdiff_t>(BytesPerPixel(format_));
    const std::ptrdiff_t row = Side(1) * pixel;
    const bool plainPixels = Stride(2) == pixel / kChannels && (Side(1) <= 1 || Stride(1) == pixel);
    return plainPixels && (Side(0) <= 1 || Stride(0) >= row || Stride(0) <= -row);
}

MutableImageView PixelBuffer::View() const {
    return {buffer_.buf, Side(1), Side(0), format_, Side(0) <= 1 ? 0 : Stride(0)};
}

Image PixelBuffer::Copy() const {
    Image image({0, 0, Side(1), Side(0)}, format_);
    auto* to = reinterpret_cast<std::byte*>(image.Bytes());
    format_ == PixelFormat::kRgba8 ? CopyOut<std::uint8_t>(buffer_, to) : CopyOut<float>(buffer_, to);
    return image;
}

void PixelBuffer::Assign(const Image& image) const {
    const auto* from = reinterpret_cast<const std::byte*>(image.Bytes());
    format_ == PixelFormat::kRgba8 ? CopyIn<std::uint8_t>(from, buffer_) : CopyIn<float>(from, buffer_);
}

void PixelBuffer::RequireWritable() const {
    if (buffer_.readonly) Refuse(what_ + " is read-only; it must be an array that can be written to");
    for (int axis = 0; axis < kAxes && buffer_.len > 0; ++axis) {
        if (buffer_.shape[axis] > 1 && Stride(axis) == 0) {
            Refuse(what_ + " has a stride of 0 bytes along axis " + std::to_string(axis) +
                   ", so its pixels share memory; each must have its own");
        }
    }
}

ImageView ReadPixels::View() {
    const ImageView view = buffer_.View();
    if (buffer_.HasPlainRows() || view.width > kLargestSide || view.height > kLargestSide) return view;
    copy_ = buffer_.Copy();
    return std::as_const(copy_).View();
}

}  // namespace umbrant::python
