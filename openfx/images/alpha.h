// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the colours of images relate to their alpha.

#include <optional>
#include <string>

namespace umbrant::openfx {

enum class AlphaState {
    kStraight,
    kPremultiplied,
    kOpaque,  ///< alpha is 1 everywhere, whatever is stored
};

/// The items of the parameter "alpha", in their order.
enum class AlphaChoice { kAutomatic, kPremultiplied, kStraight };

/// The state of an image or clip that reports this property; straight where it reports none or another one.
AlphaState AlphaStateOf(AlphaChoice choice, const std::optional<std::string>& reported);

/// The standard's text for the output of a source in this state. The shadow of an opaque image is not opaque.
const char* OutputStateText(AlphaState source);

}  // namespace umbrant::openfx
