// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a program that links the library may name. Everything else in the archive is hidden, so that no name of the
// library's own meets one of the program's.

#define UMBRANT_API __attribute__((visibility("default")))
