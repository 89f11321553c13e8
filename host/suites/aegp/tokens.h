// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The opaque references that the application suites hand out for a layer, an effect and its streams. A reference is
// good while it is in the table; what it points to means nothing to an effect. Every thread.

#include "host/suites/services.h"
#include "hostapi/aegp_types.h"

namespace umbrant::host {

enum class TokenKind { kLayer, kEffect, kStream };

/// What a reference refers to.
struct Token {
    void* shape = nullptr;  ///< first, so that a reference looks like a pointer to a pointer
    TokenKind kind = TokenKind::kLayer;
    Services* services = nullptr;
    int index = 0;  ///< the parameter of a stream
};

/// A new counted reference. The layer's is made once per session and never disposed of by the effect.
Token* NewToken(TokenKind kind, Services* services, int index);
/// The token behind a reference; null, with a report that names the call, when it is not a live one of that kind.
Token* FindToken(const void* reference, TokenKind kind, const char* call);
/// Ends a reference. False, with a report, when it is not a live one of that kind.
bool DisposeToken(const void* reference, TokenKind kind, const char* call);
/// The session's layer.
Token* LayerToken(Services* services);
/// Forgets everything that a session still has.
void DropTokens(const Services* services);

}  // namespace umbrant::host
