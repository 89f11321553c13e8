// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A small general toolkit for a framebuffer with one colour texture. The effect itself uses `Framebuffer`. The calling
// thread's context must be current.

#include <cstdint>
#include <string>

#include "platform/gl_api.h"

/// A texture (or buffer) that a framebuffer draws into.
struct GLRenderBuffer {
    uint32_t width;
    uint32_t height;
    uint32_t count;           ///< always 1
    uint32_t internalFormat;  ///< GL's internal format
    uint32_t id;              ///< the texture or buffer name
    uint32_t target;          ///< GL_TEXTURE_2D
    bool isTexture;
};

struct PX_FBO {
    GLuint fbo;
    GLRenderBuffer colour;
};

/// A texture without data. Depth formats and GL_RGBA32I are sampled to the nearest texel, all others linearly; wrapping
/// repeats.
GLRenderBuffer CreateTextureRenderBuffer(unsigned width, unsigned height, int internalFormat);

/// A framebuffer with `buffer` as colour attachment 0 (none when its id is 0), left bound. 0, with a line on standard
/// output, when GL calls it incomplete.
GLuint CreateFBO(const GLRenderBuffer& buffer);

/// The two above in one. The last argument is not used.
PX_FBO CreateTextureFBO(unsigned width, unsigned height, int internalFormat, int unused);

/// A framebuffer status by name; empty for statuses that the table does not know.
std::string getFrameBufferError(unsigned status);

/// Deletes a texture (or, where `isTexture` is false, a buffer object) and sets the id to 0.
void DeleteRenderBuffer(GLRenderBuffer& buffer);

/// Deletes texture and framebuffer; a null pointer or a 0 framebuffer is ignored.
void DeleteGenericFBO(PX_FBO* fbo);

/// Clears the colour to (0, 0, 0, 0) and leaves framebuffer 0 bound.
void ClearFBO(PX_FBO* fbo);

/// Reads (0, 0, width, height) of `readBuffer` into `destination`, rows `rowLength` pixels apart. Leaves framebuffer 0
/// bound.
void FBOtoBuffer(unsigned framebuffer, unsigned readBuffer, void* destination, unsigned width, unsigned height,
                 unsigned rowLength, unsigned format, unsigned type);

/// The same into RGBA pixels of `bitDepth` 32 (floats) or, for any other value, 8 bits per channel, after `glFinish`.
void FBOtoEffectWorld(PX_FBO& fbo, void* destination, unsigned width, unsigned height, unsigned rowBytes,
                      unsigned bitDepth, int readBuffer);
