// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// umbrant.Picture. Its pixels are reached by the buffer protocol; numpy makes its arrays from that, without a copy.

#include "python/picture.h"

#include <umbrant/image.h>

#include <string>

#include "python/records.h"

namespace umbrant::python {

namespace py = pybind11;

namespace {

constexpr char kDoc[] =
    R"(An image that the effect drew: its pixels and its rectangle in pixels of the layer.

The pixels are red, green, blue and straight alpha, of the layer's type: uint8 from 0 to 255, or float32 from 0 to 1
(colours may be outside). Pictures have the buffer protocol, so that numpy.asarray(picture) and memoryview(picture)
work as well. They cannot be created or pickled; pickle `array` and `place`.)";

constexpr char kArrayDoc[] =
    R"(The pixels as a numpy.ndarray of height x width x 4 values, uint8 or float32.

It shares the picture's memory, which lives as long as any of its arrays, and can be written to.)";

bool IsFloat(const Image& image) {
    return image.Format() == PixelFormat::kRgbaFloat;
}

py::buffer_info BufferOf(Image& image) {
    const auto pixel = static_cast<py::ssize_t>(BytesPerPixel(image.Format()));
    return {image.Bytes(),
            pixel / 4,
            IsFloat(image) ? "f" : "B",
            3,
            {static_cast<py::ssize_t>(image.Height()), static_cast<py::ssize_t>(image.Width()), py::ssize_t{4}},
            {pixel * image.Width(), pixel, pixel / 4}};
}

py::object ArrayOf(const py::object& picture) {
    return py::module_::import("numpy").attr("asarray")(py::memoryview(picture));
}

std::string Text(const Image& image) {
    return "<umbrant.Picture of " + std::to_string(image.Width()) + " x " + std::to_string(image.Height()) +
           " pixels, " + (IsFloat(image) ? "float32" : "uint8") + ", at (" + std::to_string(image.Place().left) + ", " +
           std::to_string(image.Place().top) + ")>";
}

}  // namespace

void AddPicture(py::module_& module) {
    py::class_<Image>(module, "Picture", py::buffer_protocol(), kDoc)
        .def_buffer(BufferOf)
        .def_property_readonly("array", ArrayOf, kArrayDoc)
        .def_property_readonly(
            "place", [](const Image& image) { return RectangleOf(image.Place()); },
            "The rectangle that the pixels cover, in pixels of the layer, as a umbrant.Rectangle.\n\n"
            "Left and top are negative where the picture grew beyond the layer's top-left corner (0, 0).")
        .def_property_readonly("width", &Image::Width, "The width in pixels.")
        .def_property_readonly("height", &Image::Height, "The height in pixels.")
        .def("__repr__", Text)
        .attr("__module__") = "umbrant";
}

}  // namespace umbrant::python
