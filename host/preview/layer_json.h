// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An image as the page gets it.

#include <nlohmann/json.hpp>

#include "host/preview/layer_store.h"

namespace umbrant::host {

/// Its number, name, full size and bits of a channel.
inline nlohmann::ordered_json LayerJson(const PreviewLayer& layer) {
    return {{"id", layer.Number()},     {"name", layer.Name()}, {"width", layer.Width()},
            {"height", layer.Height()}, {"bits", layer.Bits()}, {"moving", layer.IsMoving()}};
}

}  // namespace umbrant::host
