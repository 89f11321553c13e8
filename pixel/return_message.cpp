// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "pixel/return_message.h"

#include <algorithm>

namespace umbrant::effect {

void WriteReturnMessage(const std::string& message, PF_OutData* out_data) {
    constexpr size_t kMaxCharacters = 255;
    if (!out_data) return;
    std::copy_n(message.begin(), std::min(message.size(), kMaxCharacters), out_data->return_msg);
}

}  // namespace umbrant::effect
