// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Marks the symbols that the library exports. Everything else in the archive is hidden, so its names cannot clash with
// those of the program.

#define UMBRANT_API __attribute__((visibility("default")))
