// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where the plug-in's module is.

#include <string>

namespace umbrant::openfx {

/// The environment variable UMBRANT_MODULE, else `umbrant2.so` beside the plug-in's binary. Another module than the
/// bundle's may be of another version, so nothing else is searched. Throws Refusal where the bundle has none.
std::string ModuleFile();

}  // namespace umbrant::openfx
