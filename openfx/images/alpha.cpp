// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// States of alpha and their texts.

#include "openfx/images/alpha.h"

#include "openfx/abi/image_names.h"

namespace umbrant::openfx {

AlphaState AlphaStateOf(AlphaChoice choice, const std::optional<std::string>& reported) {
    if (choice == AlphaChoice::kPremultiplied) return AlphaState::kPremultiplied;
    if (choice == AlphaChoice::kStraight || !reported) return AlphaState::kStraight;
    if (*reported == kOfxImagePreMultiplied) return AlphaState::kPremultiplied;
    if (*reported == kOfxImageOpaque) return AlphaState::kOpaque;
    return AlphaState::kStraight;
}

const char* OutputStateText(AlphaState source) {
    return source == AlphaState::kStraight ? kOfxImageUnPreMultiplied : kOfxImagePreMultiplied;
}

}  // namespace umbrant::openfx
