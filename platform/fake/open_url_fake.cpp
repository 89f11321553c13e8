// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Opens nothing and writes the address to the call log: "OpenUrl https://example.com".

#include <string>

#include "platform/fake/call_log.h"
#include "platform/open_url.h"

namespace umbrant::effect {

void OpenUrl(const char* url) {
    fake::LogCall(std::string("OpenUrl ") + url);
}

}  // namespace umbrant::effect
