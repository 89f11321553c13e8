// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's records as those of umbrant/_records.py, which has their names and documentation.

#include "python/records.h"

#include <string>
#include <vector>

namespace umbrant::python {

namespace py = pybind11;

namespace {

py::object Record(const char* name) {
    return py::module_::import("umbrant._records").attr(name);
}

const char* KindName(ParameterKind kind) {
    switch (kind) {
        case ParameterKind::kGroup:
            return "group";
        case ParameterKind::kInteger:
            return "integer";
        case ParameterKind::kNumber:
            return "number";
        case ParameterKind::kAngle:
            return "angle";
        case ParameterKind::kCheckBox:
            return "check box";
        case ParameterKind::kPopup:
            return "popup";
        case ParameterKind::kColor:
            return "color";
        case ParameterKind::kPoint:
            return "point";
        case ParameterKind::kPoint3D:
            return "3D point";
        case ParameterKind::kLayer:
            return "layer";
        case ParameterKind::kButton:
            return "button";
        case ParameterKind::kOther:
            break;
    }
    return "other";
}

py::tuple Texts(const std::vector<std::string>& texts) {
    py::tuple all(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) all[i] = StrOf(texts[i]);
    return all;
}

py::tuple Numbers(const std::vector<double>& numbers) {
    py::tuple all(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) all[i] = py::float_(numbers[i]);
    return all;
}

}  // namespace

py::str StrOf(std::string_view text) {
    PyObject* made = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (!made) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}

py::object RectangleOf(const Rectangle& place) {
    return Record("Rectangle")(place.left, place.top, place.right, place.bottom);
}

py::object ParameterOf(const Parameter& parameter) {
    using py::literals::operator""_a;
    return Record("Parameter")(
        "index"_a = parameter.index, "path"_a = StrOf(parameter.path), "name"_a = StrOf(parameter.name),
        "kind"_a = KindName(parameter.kind), "has_value"_a = parameter.hasValue, "can_vary"_a = parameter.canVary,
        "is_hidden"_a = parameter.isHidden, "is_percent"_a = parameter.isPercent, "precision"_a = parameter.precision,
        "depth"_a = parameter.depth, "minimum"_a = parameter.minimum, "maximum"_a = parameter.maximum,
        "slider_minimum"_a = parameter.sliderMinimum, "slider_maximum"_a = parameter.sliderMaximum,
        "items"_a = Texts(parameter.items), "item_names"_a = Texts(parameter.itemNames),
        "default_text"_a = StrOf(parameter.defaultText), "default_numbers"_a = Numbers(parameter.defaultNumbers),
        "description"_a = StrOf(DescriptionOf(parameter.path)));
}

}  // namespace umbrant::python
