// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Opening a web page in the user's browser. One file per platform answers; the build chooses it.

namespace umbrant::effect {

/// Hands an address to the desktop, which opens it in the default browser. Returns after a moment at most, whether or
/// not a browser opens: where the desktop has no opener nothing happens and nothing is printed. On macOS a shell reads
/// the address, unquoted, so it must hold nothing that a shell acts on; the build checks its own. [main]
void OpenUrl(const char* url);

}  // namespace umbrant::effect
