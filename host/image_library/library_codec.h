// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The one entry of the shared object.

#include "host/image/codec.h"

namespace umbrant::host {

/// What host/image looks for in it. The codec lives as long as the process.
extern "C" __attribute__((visibility("default"))) const Codec* UmbrantLibraryCodec();

}  // namespace umbrant::host
