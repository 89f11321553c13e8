// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// CGL's declarations for systems that have no CGL. Values and meanings are CGL's.

#include <cstdint>

struct _CGLContextObject;
struct _CGLPixelFormatObject;
typedef _CGLContextObject* CGLContextObj;
typedef _CGLPixelFormatObject* CGLPixelFormatObj;

typedef int32_t CGLPixelFormatAttribute;
inline constexpr CGLPixelFormatAttribute kCGLPFAOpenGLProfile = 99;
inline constexpr CGLPixelFormatAttribute kCGLOGLPVersion_3_2_Core = 0x3200;

typedef int32_t CGLError;
inline constexpr CGLError kCGLNoError = 0;
inline constexpr CGLError kCGLBadAttribute = 10000;
inline constexpr CGLError kCGLBadProperty = 10001;
inline constexpr CGLError kCGLBadPixelFormat = 10002;
inline constexpr CGLError kCGLBadRendererInfo = 10003;
inline constexpr CGLError kCGLBadContext = 10004;
inline constexpr CGLError kCGLBadDrawable = 10005;
inline constexpr CGLError kCGLBadDisplay = 10006;
inline constexpr CGLError kCGLBadState = 10007;
inline constexpr CGLError kCGLBadValue = 10008;
inline constexpr CGLError kCGLBadMatch = 10009;
inline constexpr CGLError kCGLBadEnumeration = 10010;
inline constexpr CGLError kCGLBadOffScreen = 10011;
inline constexpr CGLError kCGLBadFullScreen = 10012;
inline constexpr CGLError kCGLBadWindow = 10013;
inline constexpr CGLError kCGLBadAddress = 10014;
inline constexpr CGLError kCGLBadCodeModule = 10015;
inline constexpr CGLError kCGLBadAlloc = 10016;
inline constexpr CGLError kCGLBadConnection = 10017;

extern "C" {
/// Chooses a pixel format for a zero-terminated attribute list; only the 3.2 core profile may be asked for, and its
/// contexts are 3.3 core. `*npix` counts virtual screens; `*pix` is null and `*npix` 0 on failure. The format is shared
/// and needs no freeing. Prints one line to standard error when UMBRANT_GL is neither "software" nor "hardware".
CGLError CGLChoosePixelFormat(const CGLPixelFormatAttribute* attribs, CGLPixelFormatObj* pix, int32_t* npix);
/// Makes a context with a retain count of 1; `share` may be null. `*ctx` is null on failure.
CGLError CGLCreateContext(CGLPixelFormatObj pix, CGLContextObj share, CGLContextObj* ctx);
/// Adds one to the retain count; null stays null.
CGLContextObj CGLRetainContext(CGLContextObj ctx);
/// Takes one from the retain count; the last release destroys the context.
void CGLReleaseContext(CGLContextObj ctx);
/// Releases the context; when it was current on the calling thread and this was the last reference, none is current
/// afterwards.
CGLError CGLDestroyContext(CGLContextObj ctx);
/// Makes the context current on the calling thread; null clears. Fails with kCGLBadState while another thread has it.
CGLError CGLSetCurrentContext(CGLContextObj ctx);
/// The calling thread's current context, or null.
CGLContextObj CGLGetCurrentContext(void);
/// A sentence for an error value; a static string.
const char* CGLErrorString(CGLError error);
}
