// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The part of CGL that the module uses, for building the macOS bundle where Apple's headers are not at hand. Types,
// values and symbol names are the framework's. The enumerations are enumerations here too, as they are in Apple's
// headers: what compiles against these compiles on a Mac.

#include <cstdint>

extern "C" {

typedef struct _CGLContextObject* CGLContextObj;
typedef struct _CGLPixelFormatObject* CGLPixelFormatObj;

typedef enum _CGLPixelFormatAttribute {
    kCGLPFAOpenGLProfile = 99,
} CGLPixelFormatAttribute;

typedef enum _CGLOpenGLProfile {
    kCGLOGLPVersion_3_2_Core = 0x3200,
} CGLOpenGLProfile;

typedef enum _CGLError {
    kCGLNoError = 0,
    kCGLBadAttribute = 10000,
    kCGLBadProperty = 10001,
    kCGLBadPixelFormat = 10002,
    kCGLBadRendererInfo = 10003,
    kCGLBadContext = 10004,
    kCGLBadDrawable = 10005,
    kCGLBadDisplay = 10006,
    kCGLBadState = 10007,
    kCGLBadValue = 10008,
    kCGLBadMatch = 10009,
    kCGLBadEnumeration = 10010,
    kCGLBadOffScreen = 10011,
    kCGLBadFullScreen = 10012,
    kCGLBadWindow = 10013,
    kCGLBadAddress = 10014,
    kCGLBadCodeModule = 10015,
    kCGLBadAlloc = 10016,
    kCGLBadConnection = 10017,
} CGLError;

CGLError CGLChoosePixelFormat(const CGLPixelFormatAttribute* attribs, CGLPixelFormatObj* pix, int32_t* npix);
CGLError CGLCreateContext(CGLPixelFormatObj pix, CGLContextObj share, CGLContextObj* ctx);
CGLContextObj CGLRetainContext(CGLContextObj ctx);
void CGLReleaseContext(CGLContextObj ctx);
CGLError CGLDestroyContext(CGLContextObj ctx);
CGLError CGLSetCurrentContext(CGLContextObj ctx);
CGLContextObj CGLGetCurrentContext(void);
const char* CGLErrorString(CGLError error);
}
