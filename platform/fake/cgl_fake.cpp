// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "platform/fake/cgl_fake.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/cgl_error_words.h"
#include "platform/fake/call_log.h"
#include "platform/fork.h"

struct _CGLContextObject {
    int number;
    int references;
};
struct _CGLPixelFormatObject {
    int number;
};

namespace fake {

namespace {

std::mutex mutex;
// Never freed before the process ends, so that a stale pointer is an error that can be reported and not a crash.
std::vector<std::unique_ptr<_CGLContextObject>> contexts;
std::vector<std::unique_ptr<_CGLPixelFormatObject>> formats;
thread_local CGLContextObj current = nullptr;

std::string Name(CGLContextObj context) {
    return context ? "context " + std::to_string(context->number) : std::string("null");
}

void DropReference(CGLContextObj context) {
    --context->references;
    --Cgl().liveReferences;
    if (context->references > 0) return;
    --Cgl().liveContexts;
    if (current == context) current = nullptr;
}

}  // namespace

CglState& Cgl() {
    static CglState state;
    return state;
}

int ContextNumber(CGLContextObj context) {
    return context ? context->number : 0;
}

}  // namespace fake

using fake::Cgl;
using fake::LogCall;

CGLError CGLChoosePixelFormat(const CGLPixelFormatAttribute* attribs, CGLPixelFormatObj* pix, int32_t* npix) {
    const std::lock_guard lock(fake::mutex);
    std::string line = "CGLChoosePixelFormat(";
    for (const CGLPixelFormatAttribute* attribute = attribs; *attribute != 0; ++attribute) {
        line += std::to_string(*attribute) + ", ";
    }
    LogCall(line + "0)");
    *pix = nullptr;
    *npix = Cgl().virtualScreens;
    if (Cgl().chooseError != kCGLNoError) return Cgl().chooseError;
    fake::formats.push_back(std::make_unique<_CGLPixelFormatObject>());
    fake::formats.back()->number = ++Cgl().formatsMade;
    *pix = fake::formats.back().get();
    return kCGLNoError;
}

CGLError CGLCreateContext(CGLPixelFormatObj pix, CGLContextObj share, CGLContextObj* ctx) {
    const std::lock_guard lock(fake::mutex);
    LogCall("CGLCreateContext(" + (pix ? "format " + std::to_string(pix->number) : std::string("null")) + ", " +
            fake::Name(share) + ")");
    *ctx = nullptr;
    Cgl().lastShare = share;
    if (!pix) return kCGLBadPixelFormat;
    if (Cgl().createError != kCGLNoError) return Cgl().createError;
    fake::contexts.push_back(std::make_unique<_CGLContextObject>());
    *ctx = fake::contexts.back().get();
    (*ctx)->number = ++Cgl().contextsMade;
    (*ctx)->references = 1;
    ++Cgl().liveContexts;
    ++Cgl().liveReferences;
    return kCGLNoError;
}

CGLContextObj CGLRetainContext(CGLContextObj ctx) {
    const std::lock_guard lock(fake::mutex);
    LogCall("CGLRetainContext(" + fake::Name(ctx) + ")");
    if (!ctx || ctx->references == 0) return ctx;
    ++ctx->references;
    ++Cgl().liveReferences;
    return ctx;
}

void CGLReleaseContext(CGLContextObj ctx) {
    const std::lock_guard lock(fake::mutex);
    LogCall("CGLReleaseContext(" + fake::Name(ctx) + ")");
    if (ctx && ctx->references > 0) fake::DropReference(ctx);
}

CGLError CGLDestroyContext(CGLContextObj ctx) {
    const std::lock_guard lock(fake::mutex);
    LogCall("CGLDestroyContext(" + fake::Name(ctx) + ")");
    if (!ctx || ctx->references == 0) return kCGLBadContext;
    if (Cgl().destroyError != kCGLNoError) return Cgl().destroyError;
    fake::DropReference(ctx);
    return kCGLNoError;
}

CGLError CGLSetCurrentContext(CGLContextObj ctx) {
    const std::lock_guard lock(fake::mutex);
    LogCall("CGLSetCurrentContext(" + fake::Name(ctx) + ")");
    if (ctx && ctx->references == 0) return kCGLBadContext;
    if (ctx && Cgl().setCurrentError != kCGLNoError) return Cgl().setCurrentError;
    fake::current = ctx;
    return kCGLNoError;
}

CGLContextObj CGLGetCurrentContext(void) {
    return fake::current;
}

const char* CGLErrorString(CGLError error) {
    return umbrant::effect::CglErrorWords(error);
}

bool umbrant::effect::OpenGLLostByFork() {
    return fake::Cgl().lostByFork;
}
