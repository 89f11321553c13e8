// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// On macOS the command "open" hands an address to the default browser and returns at once.

#include "platform/open_url.h"

#include <cstdlib>
#include <string>

namespace umbrant::effect {

void OpenUrl(const char* url) {
    const std::string command = std::string("open ") + url;
    // A page that does not open is no error of the effect's. The result must be read all the same: it is declared so.
    [[maybe_unused]] const int result = std::system(command.c_str());
}

}  // namespace umbrant::effect
