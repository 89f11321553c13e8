// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The compressions that can be chosen by name, for who offers them.

#include <string>
#include <vector>

namespace umbrant::host {

/// Those of all formats, each once. Which of them a file can have depends on its extension; see CheckCompression.
std::vector<std::string> CompressionNames();

}  // namespace umbrant::host
