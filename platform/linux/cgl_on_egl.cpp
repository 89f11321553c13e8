// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// CGL's calls, answered by EGL contexts without a surface. The current context is kept per thread and references are
// counted, as CGL does both. Objects here have no destructors that run at exit: contexts of other threads may still be
// in use then.

#include <mutex>
#include <new>

#include "platform/cgl_error_words.h"
#include "platform/fork.h"
#include "platform/linux/cgl.h"
#include "platform/linux/egl_target.h"

using namespace umbrant::effect;

struct _CGLContextObject {
    EGLContext egl;
    int references;        ///< 0: destroyed, and only waiting for a thread that still has it current
    int currentOnThreads;  ///< 0 or 1; EGL refuses a context to a second thread
    _CGLContextObject* next;
};

struct _CGLPixelFormatObject {};

namespace umbrant::effect {

namespace {

std::mutex mutex;                       // guards the list and the counts in it
_CGLContextObject* contexts = nullptr;  // every context that has not been freed
_CGLPixelFormatObject coreFormat;       // there is only this one; it needs no freeing

thread_local CGLContextObj current = nullptr;
thread_local bool threadEnding = false;

// A context that somebody else has made current on this thread, as a host that draws with OpenGL does. CGL would give
// it like any other, to be put back later; so does this layer, through an object that represents it.
struct ForeignContext {
    _CGLContextObject object{};
    EGLenum api = EGL_OPENGL_API;
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLSurface draw = EGL_NO_SURFACE;
    EGLSurface read = EGL_NO_SURFACE;
};
thread_local ForeignContext foreign;

bool lostByFork = false;

// The lock may be another thread's of the parent. The contexts stay where they are: the driver would wait for threads
// that are not in this process.
void ForgetDriverInChild() {
    new (&mutex) std::mutex;
    lostByFork = HasBegunEgl();
    current = nullptr;
}
const bool watchingForks = (OnFork(ForgetDriverInChild), true);

bool IsLive(CGLContextObj context) {
    for (CGLContextObj each = contexts; each; each = each->next) {
        if (each == context) return context->references > 0;
    }
    return false;
}

void FreeIfUnused(CGLContextObj context) {
    if (context->references > 0 || context->currentOnThreads > 0) return;
    for (CGLContextObj* link = &contexts; *link; link = &(*link)->next) {
        if (*link != context) continue;
        *link = context->next;
        delete context;
        return;
    }
}

void NoteCurrent(CGLContextObj context) {
    if (current == context) return;
    if (CGLContextObj previous = current) {
        --previous->currentOnThreads;
        FreeIfUnused(previous);
    }
    current = context;
    if (context) ++context->currentOnThreads;
}

// A thread that ends with a context current would keep it from every other thread for good. What is made current after
// this has run, by an owner that is destroyed later, its owner has to clear.
struct ThreadEnd {
    bool armed = false;
    ~ThreadEnd() {
        threadEnding = true;
        CGLSetCurrentContext(nullptr);
    }
};
thread_local ThreadEnd threadEnd;

void DropReference(CGLContextObj context) {
    if (--context->references > 0) return;
    const EglTarget* target = ChooseEglTarget();
    if (current == context) {
        MakeCurrent(*target, EGL_NO_CONTEXT);
        current = nullptr;
        --context->currentOnThreads;
    }
    // EGL puts this off while another thread has the context current.
    eglDestroyContext(target->display, context->egl);
    FreeIfUnused(context);
}

// The one request that is answered: the 3.2 core profile.
CGLError CheckAttributes(const CGLPixelFormatAttribute* attribs) {
    bool core = false;
    for (; *attribs != 0; attribs += 2) {
        if (attribs[0] != kCGLPFAOpenGLProfile) return kCGLBadAttribute;
        if (attribs[1] != kCGLOGLPVersion_3_2_Core) return kCGLBadValue;
        core = true;
    }
    return core ? kCGLNoError : kCGLBadPixelFormat;
}

}  // namespace

}  // namespace umbrant::effect

CGLError CGLChoosePixelFormat(const CGLPixelFormatAttribute* attribs, CGLPixelFormatObj* pix, int32_t* npix) {
    if (!attribs || !pix || !npix) return kCGLBadAddress;
    *pix = nullptr;
    *npix = 0;
    if (const CGLError error = CheckAttributes(attribs); error != kCGLNoError) return error;
    if (lostByFork || !ChooseEglTarget()) return kCGLBadPixelFormat;
    *pix = &coreFormat;
    *npix = 1;
    return kCGLNoError;
}

CGLError CGLCreateContext(CGLPixelFormatObj pix, CGLContextObj share, CGLContextObj* ctx) {
    if (!ctx) return kCGLBadAddress;
    *ctx = nullptr;
    if (pix != &coreFormat) return kCGLBadPixelFormat;
    if (lostByFork) return kCGLBadState;
    const EglTarget* target = ChooseEglTarget();
    const std::lock_guard lock(mutex);
    if (share && !IsLive(share)) return kCGLBadMatch;
    const EGLContext egl = MakeCoreContext(*target, share ? share->egl : EGL_NO_CONTEXT);
    if (egl == EGL_NO_CONTEXT) return kCGLBadAlloc;
    contexts = new _CGLContextObject{egl, 1, 0, contexts};
    *ctx = contexts;
    return kCGLNoError;
}

CGLContextObj CGLRetainContext(CGLContextObj ctx) {
    const std::lock_guard lock(mutex);
    if (ctx && IsLive(ctx)) ++ctx->references;
    return ctx;
}

void CGLReleaseContext(CGLContextObj ctx) {
    if (lostByFork) return;
    const std::lock_guard lock(mutex);
    if (ctx && IsLive(ctx)) DropReference(ctx);
}

CGLError CGLDestroyContext(CGLContextObj ctx) {
    if (lostByFork) return kCGLNoError;
    const std::lock_guard lock(mutex);
    if (!ctx || !IsLive(ctx)) return kCGLBadContext;
    DropReference(ctx);
    return kCGLNoError;
}

CGLError CGLSetCurrentContext(CGLContextObj ctx) {
    if (lostByFork) return ctx ? kCGLBadState : kCGLNoError;
    const std::lock_guard lock(mutex);
    if (ctx && ctx == &foreign.object) {
        if (!eglBindAPI(foreign.api) ||
            !eglMakeCurrent(foreign.display, foreign.draw, foreign.read, foreign.object.egl)) {
            return kCGLBadState;
        }
        NoteCurrent(nullptr);
        return kCGLNoError;
    }
    if (!ctx) {
        if (current && !MakeCurrent(*ChooseEglTarget(), EGL_NO_CONTEXT)) return kCGLBadState;
        NoteCurrent(nullptr);
        return kCGLNoError;
    }
    if (!IsLive(ctx)) return kCGLBadContext;
    if (!threadEnding) threadEnd.armed = true;
    if (!MakeCurrent(*ChooseEglTarget(), ctx->egl)) return kCGLBadState;
    NoteCurrent(ctx);
    return kCGLNoError;
}

CGLContextObj CGLGetCurrentContext(void) {
    if (lostByFork) return nullptr;
    const EGLContext now = eglGetCurrentContext();
    if (now == EGL_NO_CONTEXT || (current && current->egl == now)) return current;
    foreign.object.egl = now;
    foreign.api = eglQueryAPI();
    foreign.display = eglGetCurrentDisplay();
    foreign.draw = eglGetCurrentSurface(EGL_DRAW);
    foreign.read = eglGetCurrentSurface(EGL_READ);
    return &foreign.object;
}

const char* CGLErrorString(CGLError error) {
    return CglErrorWords(error);
}

namespace umbrant::effect {

bool OpenGLLostByFork() {
    return watchingForks && lostByFork;
}

}  // namespace umbrant::effect
