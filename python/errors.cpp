// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Failures as Python's exceptions. The classes are looked up at the time: each interpreter has its own.

#include "python/errors.h"

#include <pybind11/pybind11.h>
#include <umbrant/error.h>

#include <exception>
#include <string_view>

namespace umbrant::python {

namespace py = pybind11;

namespace {

struct WrongKind {
    std::string sentence;
};

/// A sentence may have bytes of a file's name that are not UTF-8.
py::object Text(std::string_view sentence) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeUTF8(sentence.data(), static_cast<Py_ssize_t>(sentence.size()), "surrogateescape"));
}

void Raise(const py::object& type, std::string_view sentence) {
    PyErr_SetObject(type.ptr(), Text(sentence).ptr());
}

void Translate(std::exception_ptr thrown) {
    try {
        std::rethrow_exception(thrown);
    } catch (const Error& error) {
        const py::object classes = py::module_::import("umbrant._errors").attr("BY_CODE");
        Raise(classes[py::int_(static_cast<int>(error.Code()))], error.what());
    } catch (const WrongKind& error) {
        Raise(py::module_::import("umbrant._errors").attr("ArgumentTypeError"), error.sentence);
    }
}

}  // namespace

void RefuseKind(const std::string& sentence) {
    throw WrongKind{sentence};
}

void Refuse(const std::string& sentence) {
    throw Error(ErrorCode::kUsage, sentence);
}

void TranslateErrors() {
    py::register_local_exception_translator(Translate);
}

}  // namespace umbrant::python
