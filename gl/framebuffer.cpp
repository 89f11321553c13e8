// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/framebuffer.h"

#include <utility>

#include "pixel/return_message.h"
#include "pixel/world_alpha.h"

using namespace umbrant::effect;

namespace {

constexpr char kAlreadyAllocated[] = "FBO init called on already allocated FBO";
constexpr char kBufferCount[] = "FBO init requested with either too many or too few buffers";
constexpr char kBindFBOTooEarly[] = "UM2 Error: called BindFBO() on uninitialised FBO";
constexpr char kBindFBORange[] = "UM2 Error: called BindFBO() with buffer index out of range (ping pong)";
constexpr char kBindTAOTooEarly[] = "UM2 Error: called bindTAO() on uninitialised FBO/TAO";
constexpr char kBindTAORange[] = "UM2 Error: called bindTAO() with texture index out of range (ping pong)";

// Fills the bound framebuffer's colour attachment with a new level 0 of the bound texture. One 16-bit normalised
// channel, mirrored at the edges, for renders of every depth.
void AttachEmptyTexture(GLuint texture, int32_t width, int32_t height) {
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R16, width, height, 0, GL_RED, GL_UNSIGNED_SHORT, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
}

}  // namespace

Framebuffer::~Framebuffer() {
    CleanUp();
}

Framebuffer::Framebuffer(Framebuffer&& other) noexcept
    : initialised(std::exchange(other.initialised, false)),
      width(other.width),
      height(other.height),
      numBuffers(other.numBuffers),
      bitDepth(other.bitDepth),
      lastError(std::move(other.lastError)),
      zeroSized(other.zeroSized),
      fbos(std::exchange(other.fbos, {})),
      textures(std::exchange(other.textures, {})),
      downloadHandle(std::exchange(other.downloadHandle, nullptr)) {}

bool Framebuffer::FBO_PreInitCheck() {
    if (initialised) lastError = kAlreadyAllocated;
    if (width < 1 || height < 1) zeroSized = true;
    if (numBuffers == 1 || numBuffers == 2) return !initialised;
    lastError = kBufferCount;
    return false;
}

bool Framebuffer::FramebufferInit(int w, int h, int n, unsigned short depth, PF_OutData* out_data) {
    width = w;
    height = h;
    numBuffers = n;
    bitDepth = depth;
    if (!FBO_PreInitCheck()) {
        SendMessage(lastError, out_data);
        return false;
    }
    // Intended: `zeroSized` may stem from an earlier init; it is never cleared.
    if (zeroSized) {
        initialised = true;
        numBuffers = 0;
        return true;
    }

    bool complete = true;
    for (int i = 0; i < n; ++i) {
        // Intended: appended at the end but named at index i, so after a CleanUp the vectors keep the placeholders.
        fbos.push_back(static_cast<GLuint>(i));
        textures.push_back(static_cast<GLuint>(i));
        const auto index = static_cast<size_t>(i);
        glGenFramebuffers(1, &fbos[index]);
        glGenTextures(1, &textures[index]);

        glBindFramebuffer(GL_FRAMEBUFFER, fbos[index]);
        glBindTexture(GL_TEXTURE_2D, textures[index]);
        AttachEmptyTexture(textures[index], width, height);
        glBindTexture(GL_TEXTURE_2D, 0);

        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            lastError = BadBufferMessage(width, height);
            SendMessage(lastError, out_data);
            complete = false;
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }
    if (complete) initialised = true;
    return complete;
}

void Framebuffer::BindFBO(WHICH_BUFFER which, bool clear, PF_OutData* out_data) {
    if (!initialised) {
        SendMessage(kBindFBOTooEarly, out_data);
        return;
    }
    if (static_cast<int32_t>(which) >= numBuffers) {
        SendMessage(kBindFBORange, out_data);
        return;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, fbos.at(which));
    glViewport(0, 0, width, height);
    if (!clear) return;
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
}

void Framebuffer::BindTAO(WHICH_BUFFER which, PF_OutData* out_data) {
    if (!initialised) {
        SendMessage(kBindTAOTooEarly, out_data);
        return;
    }
    // Intended: bounded by the textures there are, not by `numBuffers` as BindFBO is.
    if (static_cast<size_t>(which) >= textures.size()) {
        SendMessage(kBindTAORange, out_data);
        return;
    }
    glBindTexture(GL_TEXTURE_2D, textures[which]);
}

void Framebuffer::CleanUp() {
    for (GLuint& fbo : fbos) {
        if (fbo != 0) glDeleteFramebuffers(1, &fbo);
        fbo = 0;
    }
    for (GLuint& texture : textures) {
        if (texture != 0) glDeleteTextures(1, &texture);
        texture = 0;
    }
    initialised = false;
    width = 0;
}

void Framebuffer::SendMessage(std::string message, PF_OutData* out_data) {
    WriteReturnMessage(message, out_data);
}
