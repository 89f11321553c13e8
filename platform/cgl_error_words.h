// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// CGL's words for its error values, for the platforms that answer CGL's calls themselves.

#include "platform/cgl_api.h"

namespace umbrant::effect {

/// One lower-case phrase, a static string; an unknown value has a phrase too.
inline const char* CglErrorWords(CGLError error) {
    switch (error) {
        case kCGLNoError:
            return "no error";
        case kCGLBadAttribute:
            return "invalid pixel format attribute";
        case kCGLBadProperty:
            return "invalid renderer property";
        case kCGLBadPixelFormat:
            return "invalid pixel format";
        case kCGLBadRendererInfo:
            return "invalid renderer info";
        case kCGLBadContext:
            return "invalid context";
        case kCGLBadDrawable:
            return "invalid drawable";
        case kCGLBadDisplay:
            return "invalid graphics device";
        case kCGLBadState:
            return "invalid context state";
        case kCGLBadValue:
            return "invalid numerical value";
        case kCGLBadMatch:
            return "invalid share context";
        case kCGLBadEnumeration:
            return "invalid enumerant";
        case kCGLBadOffScreen:
            return "invalid offscreen drawable";
        case kCGLBadFullScreen:
            return "invalid fullscreen drawable";
        case kCGLBadWindow:
            return "invalid window";
        case kCGLBadAddress:
            return "invalid memory address";
        case kCGLBadCodeModule:
            return "invalid code module";
        case kCGLBadAlloc:
            return "invalid memory allocation";
        case kCGLBadConnection:
            return "invalid CoreGraphics connection";
        default:
            return "unknown error";
    }
}

}  // namespace umbrant::effect
