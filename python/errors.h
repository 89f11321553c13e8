// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Failures of this folder and of the library as the exceptions of umbrant/_errors.py.

#include <string>

namespace umbrant::python {

/// An argument of a type that cannot be used; a UsageError and a TypeError in Python.
[[noreturn]] void RefuseKind(const std::string& sentence);

/// An argument of a value that cannot be used: throws Error with ErrorCode::kUsage.
[[noreturn]] void Refuse(const std::string& sentence);

/// Lets every umbrant::Error that reaches Python arrive as an exception of umbrant/_errors.py.
void TranslateErrors();

}  // namespace umbrant::python
