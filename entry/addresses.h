// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The web pages behind the panel's three buttons. They are cache variables of the build (UMBRANT_PRODUCT_URL,
// UMBRANT_FREE_PLUGINS_URL, UMBRANT_SUPPORT_URL), which takes complete https addresses alone; for macOS, where a shell
// opens them, without the characters that a shell acts on.

namespace umbrant::effect {

extern const char kProductUrl[];
extern const char kFreePluginsUrl[];
extern const char kSupportUrl[];

}  // namespace umbrant::effect
