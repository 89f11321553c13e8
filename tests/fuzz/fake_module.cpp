// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Linked into the module on the fake platform, so that a program that loads it can set what the platform fails.

#include "tests/fuzz/fake_module.h"

#include <optional>
#include <string>

#include "platform/fake/call_log.h"
#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake.h"
#include "platform/fake/renderer_choice_fake.h"

using namespace umbrant::effect;

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void UmbrantSetFakePlatform(const FakePlatformScript* script, bool forget) {
    if (forget) fake::Reset();
    fake::ClearCalls();
    fake::CglState& cgl = fake::Cgl();
    fake::GlState& gl = fake::Gl();
    fake::Renderer() = script->processor ? RendererChoice::kProcessor : RendererChoice::kOpenGL;
    cgl.chooseError = static_cast<CGLError>(script->chooseFails);
    cgl.createError = static_cast<CGLError>(script->createFails);
    cgl.setCurrentError = static_cast<CGLError>(script->makeCurrentFails);
    gl.framebufferStatus.assign(script->badFramebuffer, GL_FRAMEBUFFER_COMPLETE);
    if (script->badFramebuffer) gl.framebufferStatus.back() = GL_FRAMEBUFFER_UNSUPPORTED;
    gl.compileFailure = [left = int{script->badShader}](GLenum, const std::string&) mutable {
        return --left == 0 ? std::optional<std::string>("no, %s%n") : std::nullopt;
    };
    gl.linkFailure = [left = int{script->badProgram}](GLuint) mutable {
        return --left == 0 ? std::optional<std::string>(std::string(600, 'x')) : std::nullopt;
    };
    gl.readPixels.assign(1 << 16, script->pixel);
    gl.strings[GL_RENDERER] = "Fake Renderer";
}

EXPORTED FakePlatformObjects UmbrantCountFakePlatform() {
    return {static_cast<int>(fake::Gl().liveTextures.size()), static_cast<int>(fake::Gl().liveFramebuffers.size()),
            fake::Cgl().liveContexts};
}
